#include "suitability/drift.h"

#include <vector>

#include "suitability/autoregression.h"
#include "suitability/density.h"
#include "suitability/robust.h"

namespace suitability {
namespace {

constexpr double kLargeShare = 0.5;
constexpr double kSteepness = 6;
constexpr double kFewestPeriods = 3;

double shareBetween(const std::vector<double>& shares, double seconds, double aboveHz, double uptoHz) {
  double sum = 0;
  for (std::size_t k = 0; k < shares.size(); ++k) {
    const double hz = static_cast<double>(k) / seconds;
    if (hz > aboveHz && hz <= uptoHz) sum += shares[k];
  }
  return sum;
}

}  // namespace

std::optional<double> findDrift(const Courses& courses) {
  const Interval longest = courses.longestInterval();
  const double seconds = longest.length * courses.trSeconds;
  if (seconds * kDriftHz < kFewestPeriods || longest.length < 3) return std::nullopt;
  Density density(longest.length, Taper::kNone);
  std::vector<double> slow, next;
  for (const Series& voxel : courses.voxels) {
    const std::vector<double> shares = density.of(detrendedStretches(voxel, {longest}).front());
    slow.push_back(shareBetween(shares, seconds, 0, kDriftHz));
    next.push_back(shareBetween(shares, seconds, kDriftHz, 2 * kDriftHz));
  }
  const double share = median(slow);
  if (share > kLargeShare && share > kSteepness * median(next)) return share;
  return std::nullopt;
}

}  // namespace suitability
