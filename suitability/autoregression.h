// Autoregressive models of one series by least squares over its intervals, as the maps' models are fitted.
#ifndef TAVMAP_SUITABILITY_AUTOREGRESSION_H
#define TAVMAP_SUITABILITY_AUTOREGRESSION_H

#include <optional>
#include <vector>

#include "simo/lagged_moments.h"
#include "suitability/courses.h"

namespace suitability {

// The intervals of a series, each without mean and trend. Intervals of fewer than three values are left out.
[[nodiscard]] std::vector<Series> detrendedStretches(const Series& series,
                                                     const std::vector<Interval>& intervals);

struct OwnModel {
  Series coefficients;            // a_1 ... a_p at [0] ... [p - 1]
  std::vector<Series> residuals;  // e(t) = x(t) - sum of a_k x(t - k); a stretch loses its first p values
  simo::LaggedMoments moments;    // of the samples that the model is fitted to

  [[nodiscard]] int order() const { return moments.order(); }
};
[[nodiscard]] double sumOfSquares(const std::vector<Series>& residuals);

// Stretches that are not longer than the order add nothing. Nothing when the lags are degenerate.
[[nodiscard]] std::optional<OwnModel> fitOwnModel(const std::vector<Series>& stretches, int order);

// s with sum over k of M(j, k) s_k = right_j, j = 1 ... p, at [0] ... [p - 1]. Empty when M is degenerate.
[[nodiscard]] Series solveLags(const simo::LaggedMoments& moments, Series right);

// The share 0 ... 1 of the variance that the series' own past predicts, in the sample; or nothing.
[[nodiscard]] std::optional<double> predictability(const std::vector<Series>& stretches, int order);

}  // namespace suitability

#endif
