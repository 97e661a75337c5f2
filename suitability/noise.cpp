#include "suitability/noise.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "suitability/autoregression.h"
#include "suitability/robust.h"

namespace suitability {
namespace {

constexpr double kMostVoxels = 0.75;
constexpr double kStandardErrors = 3;
constexpr double kNoisierBy = 0.1;
constexpr double kCleanerBy = 0.3;

// Of a first-order model's share R^2 = a^2, where var(a) = (1 - a^2) / n, and the chance fit of p
// coefficients.
double variance(double share, double samples, int order) {
  return 4 * share * (1 - share) / samples + 2 * order / (samples * samples);
}

std::vector<double> voxelShares(const Courses& courses, int order) {
  std::vector<double> shares;
  for (const Series& voxel : courses.voxels)
    if (const auto share = predictability(detrendedStretches(voxel, courses.intervals), order))
      shares.push_back(*share);
  return shares;
}

std::size_t countOnOtherSide(const std::vector<double>& shares, const UnequalNoise& noise) {
  return static_cast<std::size_t>(std::count_if(shares.begin(), shares.end(), [&](double share) {
    return noise.referenceIsNoisier() ? share > noise.reference : share < noise.reference;
  }));
}

bool isLarge(const UnequalNoise& noise, double samples, int order) {
  const double least = noise.referenceIsNoisier() ? kNoisierBy : kCleanerBy;
  const double error = std::sqrt(
      std::max(variance(noise.reference, samples, order), variance(noise.medianVoxel, samples, order)));
  return std::abs(noise.reference - noise.medianVoxel) > std::max(least, kStandardErrors * error);
}

}  // namespace

double Predictabilities::medianVoxel() const {
  return median(voxels);
}

std::optional<Predictabilities> predictabilities(const Courses& courses, int order) {
  const auto own = predictability(detrendedStretches(courses.reference, courses.intervals), order);
  std::vector<double> voxels = voxelShares(courses, order);
  if (!own || voxels.empty()) return std::nullopt;
  return Predictabilities{*own, std::move(voxels)};
}

std::optional<UnequalNoise> findUnequalNoise(const Courses& courses, const Predictabilities& shares,
                                             int order) {
  const double samples = effectiveSamples(courses.intervals, order, courses.length(), 0);
  if (samples < 1) return std::nullopt;
  const UnequalNoise noise{shares.reference, shares.medianVoxel()};
  const double others = static_cast<double>(countOnOtherSide(shares.voxels, noise));
  if (others < kMostVoxels * static_cast<double>(shares.voxels.size())) return std::nullopt;
  if (!isLarge(noise, samples, order)) return std::nullopt;
  return noise;
}

double effectiveSamples(const std::vector<Interval>& intervals, int order, int runVolumes, int confoundRank) {
  double samples = 0;
  for (const Interval& interval : intervals) samples += std::max(0, interval.length - order);
  const double lost = runVolumes > 0 ? static_cast<double>(confoundRank) / runVolumes : 0;
  return samples * std::max(0.0, 1 - lost);
}

}  // namespace suitability
