#include "prepare/effective_volumes.h"

#include <algorithm>
#include <cmath>

namespace study {

int effectiveAfterRegression(const std::vector<VolumeRange>& ranges, int order, double costPerVolume) {
  constexpr double kRankRounding = 1e-9;  // a whole run loses the rank and no more
  const double lost = std::ceil(costPerVolume * totalLength(ranges) - kRankRounding);
  return std::max(0, effectiveVolumes(ranges, order) - static_cast<int>(lost));
}

}  // namespace study
