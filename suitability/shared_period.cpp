#include "suitability/shared_period.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "suitability/density.h"
#include "suitability/robust.h"

namespace suitability {
namespace {

constexpr double kFalseAlarms = 0.01;  // of all runs
constexpr double kNeighbours = 13;     // independent ones among 20 tapered frequencies
constexpr double kOfReference = 0.5;   // height that is enough in a voxel
constexpr double kShareOfVoxels = 1.0 / 3;
constexpr std::size_t kNear = 3, kFar = 12;  // frequencies away: beyond the line's own width, and no further
constexpr std::size_t kFirstBin = 5;         // with two frequencies on its lower side
constexpr std::size_t kFewestBins = 20;
constexpr double kPeriodsPerInterval = 2;

using Spectrum = std::vector<double>;

double sideMedian(const Spectrum& s, std::size_t first, std::size_t end) {
  if (first >= end) return 0;
  return median(
      {s.begin() + static_cast<std::ptrdiff_t>(first), s.begin() + static_cast<std::ptrdiff_t>(end)});
}

// How far bin k >= kFirstBin stands above the higher of its sides; 0 below the mean density.
double height(const Spectrum& s, std::size_t k) {
  if (s[k] * static_cast<double>(s.size()) < 1) return 0;
  const double lower = sideMedian(s, k > kFar ? k - kFar : 1, k - kNear + 1);
  const double upper = sideMedian(s, k + kNear, std::min(k + kFar + 1, s.size()));
  const double side = std::max(lower, upper);
  return side > 0 ? s[k] / side : 0;
}

// The height that one of so many frequencies of noise reaches by chance in a share kFalseAlarms of all runs.
// Above the mean of m others, x times it has the chance (1 + x / m)^-m: Fisher's F with 2 and 2m degrees of
// freedom. The median of exponential values is ln 2 of their mean.
double heightByChance(std::size_t frequencies) {
  const double chances = static_cast<double>(frequencies) / kFalseAlarms;
  return kNeighbours * (std::pow(chances, 1 / kNeighbours) - 1) / std::numbers::ln2;
}

double heightAbout(const Spectrum& s, std::size_t k) {
  const std::size_t after = std::min(k + 1, s.size() - 1);
  return std::max({height(s, std::max(k - 1, kFirstBin)), height(s, k), height(s, after)});
}

std::optional<std::size_t> strongestLine(const Spectrum& s) {
  std::optional<std::size_t> line;
  double highest = heightByChance(s.size());
  for (std::size_t k = kFirstBin; k < s.size(); ++k) {
    const double h = height(s, k);
    if (h < highest) continue;
    highest = h;
    line = k;
  }
  return line;
}

// Frequency of a line between bins, as the mean of its own width.
double centre(const Spectrum& s, std::size_t k) {
  double sum = 0, moment = 0;
  for (std::size_t i = k - 1; i <= std::min(k + 1, s.size() - 1); ++i) {
    sum += s[i];
    moment += static_cast<double>(i) * s[i];
  }
  return moment / sum;
}

}  // namespace

std::optional<SharedPeriod> findSharedPeriod(const Courses& courses) {
  Density density(std::max(2, courses.length()), Taper::kHann);
  const Spectrum reference = density.of(courses.reference);
  if (reference.size() < kFewestBins) return std::nullopt;
  const std::optional<std::size_t> line = strongestLine(reference);
  if (!line) return std::nullopt;
  SharedPeriod shared{courses.seconds() / centre(reference, *line), 0};
  if (courses.longestInterval().length * courses.trSeconds < kPeriodsPerInterval * shared.seconds)
    return std::nullopt;
  const double enough = kOfReference * heightByChance(reference.size());
  for (const Series& voxel : courses.voxels)
    if (heightAbout(density.of(voxel), *line) >= enough) ++shared.voxels;
  if (!courses.areMany(shared.voxels, kShareOfVoxels)) return std::nullopt;
  return shared;
}

}  // namespace suitability
