// What removing mean and trend from every interval does to the autocorrelations of a model's residuals.
#ifndef TAVMAP_SUITABILITY_DETRENDING_BIAS_H
#define TAVMAP_SUITABILITY_DETRENDING_BIAS_H

#include <vector>

#include "suitability/autoregression.h"

namespace suitability {

// The autocorrelations, at [lag - 1] for lags 1 ... lags, that the residuals have in expectation when the
// errors are white: good to 0.02 for stretches of 30 values and more. Two effects: detrended white noise is
// negatively correlated, by the projection on mean and trend; and the coefficients are too small, which
// leaves some of the series in the residuals (Nickell 1981, Econometrica 49, 1417-1426, doi:10.2307/1911408).
// O(120 n).
[[nodiscard]] std::vector<double> detrendingBias(const OwnModel& model, int lags);

}  // namespace suitability

#endif
