#include "suitability/spectrum.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "suitability/density.h"
#include "suitability/robust.h"

namespace suitability {
namespace {

constexpr double kNearlyNothing = 1e-3;
constexpr double kOfHaemodynamic = 0.02;
constexpr double kLowestUpperEdgeHz = 0.03;
constexpr double kHighestLowerEdgeHz = 0.05;
constexpr int kFewestForSpectrum = 40;

using Spectrum = std::vector<double>;

void add(const Spectrum& shares, Spectrum& sum) {
  for (std::size_t k = 0; k < sum.size(); ++k) sum[k] += shares[k];
}

Spectrum meanDensity(const Courses& courses) {
  Density density(courses.length(), Taper::kHann);
  Spectrum sum = density.of(courses.reference);
  for (const Series& voxel : courses.voxels) add(density.of(voxel), sum);
  return sum;
}

// The power of a response of the shape t^5 e^-t (t in seconds), which peaks after five seconds (Friston et
// al. 1998, NeuroImage 7, 30-40, doi:10.1006/nimg.1997.0306; its undershoot matters at low frequencies only).
Spectrum haemodynamicPower(std::size_t bins, double seconds) {
  Spectrum power(bins);
  for (std::size_t k = 0; k < bins; ++k) {
    const double w = 2 * std::numbers::pi * static_cast<double>(k) / seconds;
    power[k] = std::pow(1 + w * w, -6);
  }
  return power;
}

double mean(const Spectrum& s, std::size_t first, std::size_t end) {
  double sum = 0;
  for (std::size_t k = first; k < end; ++k) sum += s[k];
  return sum / static_cast<double>(end - first);
}

double upperQuartile(const Spectrum& s, std::size_t first, std::size_t end) {
  return quantile(
      {s.begin() + static_cast<std::ptrdiff_t>(first), s.begin() + static_cast<std::ptrdiff_t>(end)}, 0.75);
}

// From bin c on, against the two octaves below it: drifts lie lower.
double restAbove(const Spectrum& s, std::size_t c) {
  return mean(s, c, s.size()) / upperQuartile(s, c / 4, c);
}

// Up to bin c, against the octaves above it. The mean, at bin 0, is gone in any case.
double restBelow(const Spectrum& s, std::size_t c) {
  return mean(s, 1, c + 1) / upperQuartile(s, 2 * c + 1, std::min(16 * c, s.size()));
}

std::size_t binOf(double hz, double seconds) {
  return static_cast<std::size_t>(std::ceil(hz * seconds));
}

std::optional<std::size_t> upperEdge(const Spectrum& s, double seconds) {
  const Spectrum vessels = haemodynamicPower(s.size(), seconds);
  const std::size_t fewestEmpty = std::max<std::size_t>(4, s.size() / 10);
  for (std::size_t c = std::max<std::size_t>(8, binOf(kLowestUpperEdgeHz, seconds));
       c + fewestEmpty <= s.size(); ++c)
    if (restAbove(s, c) < std::min(kNearlyNothing, kOfHaemodynamic * restAbove(vessels, c))) return c;
  return std::nullopt;
}

std::optional<std::size_t> lowerEdge(const Spectrum& s, double seconds) {
  std::optional<std::size_t> edge;
  const std::size_t end = std::min(binOf(kHighestLowerEdgeHz, seconds), s.size() / 4);
  for (std::size_t c = 2; c < end && restBelow(s, c) < kNearlyNothing; ++c) edge = c;
  return edge;
}

}  // namespace

EmptyBands findEmptyBands(const Courses& courses) {
  EmptyBands bands;
  if (courses.length() < kFewestForSpectrum) return bands;
  const Spectrum s = meanDensity(courses);
  const double seconds = courses.seconds();
  const auto hz = [&](std::size_t bin) { return static_cast<double>(bin) / seconds; };
  if (const auto bin = upperEdge(s, seconds)) bands.aboveHz = hz(*bin);
  if (const auto bin = lowerEdge(s, seconds)) bands.belowHz = hz(*bin);
  return bands;
}

}  // namespace suitability
