#include "prepare/censor.h"

#include <algorithm>

namespace study {

std::vector<bool> volumesBelowThreshold(const std::vector<double>& fdMm, const CensorSettings& settings) {
  const int volumes = static_cast<int>(fdMm.size());
  std::vector<bool> kept(fdMm.size(), true);
  if (settings.fdThresholdMm <= 0) return kept;
  for (int v = 0; v < volumes; ++v) {
    if (!(fdMm[static_cast<std::size_t>(v)] > settings.fdThresholdMm)) continue;
    const int first = std::max(0, v - settings.alsoBefore);
    const int end = std::min(volumes, v + settings.alsoAfter + 1);
    std::fill(kept.begin() + first, kept.begin() + end, false);
  }
  return kept;
}

std::vector<VolumeRange> keptSegments(const std::vector<bool>& kept, int minimumSegment) {
  std::vector<VolumeRange> segments;
  const int volumes = static_cast<int>(kept.size());
  for (int v = 0; v < volumes; ++v) {
    if (!kept[static_cast<std::size_t>(v)]) continue;
    const bool continues = !segments.empty() && segments.back().last == v;
    if (continues) {
      ++segments.back().last;
    } else {
      segments.push_back({v + 1, v + 1});
    }
  }
  return dropShort(segments, std::max(1, minimumSegment));
}

}  // namespace study
