#include "suitability/drift.h"

#include <numeric>
#include <vector>

#include "suitability/autoregression.h"
#include "suitability/density.h"
#include "suitability/robust.h"

namespace suitability {
namespace {

constexpr double kLargeShare = 0.5;
constexpr double kSteepness = 6;
constexpr double kFewestPeriods = 3, kFewestRawPeriods = 2;

double shareBetween(const std::vector<double>& shares, double seconds, double aboveHz, double uptoHz) {
  double sum = 0;
  for (std::size_t k = 0; k < shares.size(); ++k) {
    const double hz = static_cast<double>(k) / seconds;
    if (hz > aboveHz && hz <= uptoHz) sum += shares[k];
  }
  return sum;
}

Series detrendedOver(const Series& voxel, const Interval& interval) {
  return detrendedStretches(voxel, {interval}).front();
}

Series demeanedOver(const Series& voxel, const Interval& interval) {
  Series stretch(voxel.begin() + interval.first, voxel.begin() + interval.end());
  const double mean = std::accumulate(stretch.begin(), stretch.end(), 0.0) / interval.length;
  for (double& value : stretch) value -= mean;
  return stretch;
}

std::optional<double> driftOf(const Courses& courses, double fewestPeriods,
                              Series (*stretchOf)(const Series&, const Interval&)) {
  const Interval longest = courses.longestInterval();
  const double seconds = longest.length * courses.trSeconds;
  if (seconds * kDriftHz < fewestPeriods || longest.length < 3) return std::nullopt;
  Density density(longest.length, Taper::kNone);
  std::vector<double> slow, next;
  for (const Series& voxel : courses.voxels) {
    const std::vector<double> shares = density.of(stretchOf(voxel, longest));
    slow.push_back(shareBetween(shares, seconds, 0, kDriftHz));
    next.push_back(shareBetween(shares, seconds, kDriftHz, 2 * kDriftHz));
  }
  const double share = median(slow);
  if (share > kLargeShare && share > kSteepness * median(next)) return share;
  return std::nullopt;
}

}  // namespace

std::optional<double> findDrift(const Courses& courses) {
  return driftOf(courses, kFewestPeriods, detrendedOver);
}

std::optional<double> findRawDrift(const Courses& courses) {
  return driftOf(courses, kFewestRawPeriods, demeanedOver);
}

}  // namespace suitability
