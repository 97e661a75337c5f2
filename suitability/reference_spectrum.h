// Where in frequency the variance of a reference lies, and whether that of its surrogates lies there too.
#ifndef TAVMAP_SUITABILITY_REFERENCE_SPECTRUM_H
#define TAVMAP_SUITABILITY_REFERENCE_SPECTRUM_H

#include <cstddef>
#include <span>
#include <vector>

#include "suitability/courses.h"

namespace suitability {

inline constexpr std::size_t kMostBins = 256;
inline constexpr std::size_t kMostSurrogates = 100;  // that are looked at

// All of one length, by bins of ascending frequency.
struct ReferenceSpectrum {
  Interval interval{0, 0};                // of the course, 0-based
  std::vector<double> hertz;              // mean frequency of each bin
  std::vector<double> reference;          // share of the variance in each; their sum is 1
  std::size_t surrogates = 0;             // that were looked at; 0: the following are empty
  std::vector<double> low, median, high;  // 2.5, 50 and 97.5 % of the surrogates' shares

  [[nodiscard]] bool empty() const { return hertz.empty(); }
};

// Over the longest interval: every series without mean and trend there, under a Hann taper (density.h), up to
// kMostBins bins, each the sum of equally many neighbouring frequencies. surrogates: courses of the same
// length, of which the first kMostSurrogates are looked at; those that do not vary count as none. Empty for
// an interval of fewer than 8 volumes, or a course that does not vary in it or is not finite.
[[nodiscard]] ReferenceSpectrum referenceSpectrum(std::span<const float> course,
                                                  const std::vector<std::span<const float>>& surrogates,
                                                  const std::vector<Interval>& intervals, double trSeconds);

}  // namespace suitability

#endif
