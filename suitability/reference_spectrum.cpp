#include "suitability/reference_spectrum.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "suitability/autoregression.h"
#include "suitability/density.h"
#include "suitability/robust.h"

namespace suitability {
namespace {

constexpr int kShortestCourse = 8;
constexpr double kLowShare = 0.025, kMedianShare = 0.5, kHighShare = 0.975;

// Bins of equally many frequencies; the last one may have fewer.
class Bins {
 public:
  explicit Bins(std::size_t frequencies) : each_((frequencies + kMostBins - 1) / kMostBins) {}

  [[nodiscard]] std::vector<double> sums(const std::vector<double>& values) const {
    std::vector<double> sums((values.size() + each_ - 1) / each_);
    for (std::size_t k = 0; k < values.size(); ++k) sums[k / each_] += values[k];
    return sums;
  }
  [[nodiscard]] std::vector<double> means(const std::vector<double>& values) const {
    std::vector<double> means = sums(values);
    for (std::size_t bin = 0; bin < means.size(); ++bin)
      means[bin] /= static_cast<double>(std::min(each_, values.size() - bin * each_));
    return means;
  }

 private:
  std::size_t each_;
};

// Empty where the course does not vary or is not finite.
std::vector<double> sharesOf(std::span<const float> course, const Interval& interval, const Bins& bins,
                             Density& density) {
  const auto part =
      course.subspan(static_cast<std::size_t>(interval.first), static_cast<std::size_t>(interval.length));
  const Series series(part.begin(), part.end());
  const Series stretch = detrendedStretches(series, {{0, interval.length}}).front();
  const std::vector<double> shares = density.of(stretch);
  const double sum = std::accumulate(shares.begin(), shares.end(), 0.0);
  return sum > 0.5 ? bins.sums(shares) : std::vector<double>();
}

std::vector<double> quantiles(const std::vector<std::vector<double>>& spectra, double share) {
  std::vector<double> found;
  for (std::size_t bin = 0; bin < spectra.front().size(); ++bin) {
    std::vector<double> values;
    for (const std::vector<double>& spectrum : spectra) values.push_back(spectrum[bin]);
    found.push_back(quantile(std::move(values), share));
  }
  return found;
}

void addSurrogates(const std::vector<std::vector<double>>& spectra, ReferenceSpectrum& spectrum) {
  spectrum.surrogates = spectra.size();
  if (spectra.empty()) return;
  spectrum.low = quantiles(spectra, kLowShare);
  spectrum.median = quantiles(spectra, kMedianShare);
  spectrum.high = quantiles(spectra, kHighShare);
}

}  // namespace

ReferenceSpectrum referenceSpectrum(std::span<const float> course,
                                    const std::vector<std::span<const float>>& surrogates,
                                    const std::vector<Interval>& intervals, double trSeconds) {
  ReferenceSpectrum spectrum;
  spectrum.interval = longestOf(intervals);
  const int length = spectrum.interval.length;
  if (length < kShortestCourse) return spectrum;
  std::vector<double> hertz;
  for (int k = 0; k <= length / 2; ++k) hertz.push_back(k / (length * trSeconds));
  const Bins bins(hertz.size());
  Density density(length, Taper::kHann);
  spectrum.reference = sharesOf(course, spectrum.interval, bins, density);
  if (spectrum.reference.empty()) return spectrum;
  spectrum.hertz = bins.means(hertz);
  std::vector<std::vector<double>> spectra;
  for (std::size_t i = 0; i < std::min(kMostSurrogates, surrogates.size()); ++i) {
    std::vector<double> shares = sharesOf(surrogates[i], spectrum.interval, bins, density);
    if (!shares.empty()) spectra.push_back(std::move(shares));
  }
  addSurrogates(spectra, spectrum);
  return spectrum;
}

}  // namespace suitability
