#include "formats/inclusion.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace formats {
namespace {

// As the value will be stored and compared by the engine.
bool exceeds(float first, double shift, double threshold, bool rounded) {
  const double shifted = static_cast<double>(first) + shift;
  return (rounded ? std::nearbyint(shifted) : static_cast<double>(static_cast<float>(shifted))) > threshold;
}

}  // namespace

InclusionPlan planInclusion(const std::vector<float>& firstValues, const std::vector<std::uint8_t>& inMask,
                            double threshold, bool rounded) {
  const auto isInside = [&](std::size_t i) { return inMask.empty() || inMask[i] != 0; };
  InclusionPlan plan;
  float least = std::numeric_limits<float>::max();
  for (std::size_t i = 0; i < firstValues.size(); ++i) {
    if (!isInside(i)) continue;
    ++plan.voxelsInMask;
    if (!std::isfinite(firstValues[i])) ++plan.notFinite;
    if (std::isfinite(firstValues[i])) least = std::min(least, firstValues[i]);
  }
  const bool needed =
      !inMask.empty() && plan.voxelsInMask > plan.notFinite && !exceeds(least, 0, threshold, rounded);
  // One more than needed, so that rounding cannot take a voxel back below the threshold.
  if (needed) plan.shift = std::ceil(threshold - static_cast<double>(least)) + 1;
  for (std::size_t i = 0; i < firstValues.size(); ++i) {
    if (isInside(i) && exceeds(firstValues[i], plan.shift, threshold, rounded)) ++plan.voxelsIncluded;
  }
  return plan;
}

double meanChange(const std::vector<float>& a, const std::vector<float>& b,
                  const std::vector<std::uint8_t>& inMask) {
  double sum = 0;
  std::size_t count = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const double change = std::abs(static_cast<double>(a[i]) - static_cast<double>(b[i]));
    if ((!inMask.empty() && inMask[i] == 0) || !std::isfinite(change)) continue;
    sum += change;
    ++count;
  }
  return count > 0 ? sum / static_cast<double>(count) : 0;
}

}  // namespace formats
