// Stretches of volumes within one run, and what is done with them: cutting out, shortening,
// counting. Volumes are counted from 1; ranges are inclusive at both ends.
#ifndef TAVMAP_REQUEST_VOLUME_RANGES_H
#define TAVMAP_REQUEST_VOLUME_RANGES_H

#include <vector>

namespace study {

struct VolumeRange {
  int first;
  int last;
  bool operator==(const VolumeRange&) const = default;
};

inline int length(const VolumeRange& range) {
  return range.last - range.first + 1;
}
[[nodiscard]] int totalLength(const std::vector<VolumeRange>& ranges);

// Volumes that lie in a range of both lists. A range of a that b divides becomes several.
[[nodiscard]] std::vector<VolumeRange> intersect(const std::vector<VolumeRange>& a,
                                                 const std::vector<VolumeRange>& b);

// The ranges of at least minimumLength volumes, in their order.
[[nodiscard]] std::vector<VolumeRange> dropShort(const std::vector<VolumeRange>& ranges, int minimumLength);

// Samples that a model of the given order is fitted to: each range loses its first `order` volumes.
[[nodiscard]] int effectiveVolumes(const std::vector<VolumeRange>& ranges, int order);

// Every range moved by offset volumes (negative: towards the start).
[[nodiscard]] std::vector<VolumeRange> shifted(const std::vector<VolumeRange>& ranges, int offset);

}  // namespace study

#endif
