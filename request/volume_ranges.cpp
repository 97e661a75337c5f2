#include "request/volume_ranges.h"

#include <algorithm>

namespace study {

int totalLength(const std::vector<VolumeRange>& ranges) {
  int sum = 0;
  for (const VolumeRange& range : ranges) sum += length(range);
  return sum;
}

std::vector<VolumeRange> intersect(const std::vector<VolumeRange>& a, const std::vector<VolumeRange>& b) {
  std::vector<VolumeRange> common;
  for (const VolumeRange& outer : a) {
    for (const VolumeRange& inner : b) {
      const VolumeRange both{std::max(outer.first, inner.first), std::min(outer.last, inner.last)};
      if (both.first <= both.last) common.push_back(both);
    }
  }
  return common;
}

std::vector<VolumeRange> dropShort(const std::vector<VolumeRange>& ranges, int minimumLength) {
  std::vector<VolumeRange> kept;
  for (const VolumeRange& range : ranges) {
    if (length(range) >= minimumLength) kept.push_back(range);
  }
  return kept;
}

int effectiveVolumes(const std::vector<VolumeRange>& ranges, int order) {
  int sum = 0;
  for (const VolumeRange& range : ranges) sum += std::max(0, length(range) - order);
  return sum;
}

std::vector<VolumeRange> shifted(const std::vector<VolumeRange>& ranges, int offset) {
  std::vector<VolumeRange> moved;
  for (const VolumeRange& range : ranges) moved.push_back({range.first + offset, range.last + offset});
  return moved;
}

}  // namespace study
