// Autoregressive models of one series by Burg's method, over several stretches of it.
#ifndef TAVMAP_SIMO_BURG_H
#define TAVMAP_SIMO_BURG_H

#include <span>
#include <vector>

namespace simo {

// Values first ... end - 1 of a series.
struct Stretch {
  int first;
  int end;
};

struct BurgModel {
  std::vector<double> coefficients;  // a_1 ... a_p of x(t) = sum a_k x(t - k) + e(t)
  double errorVariance = 0;
  // One residual per value of the stretches, in their order. The first values of a stretch have
  // residuals of the models of lower order, scaled to the variance of the chosen one's.
  std::vector<double> residuals;
  [[nodiscard]] int order() const { return static_cast<int>(coefficients.size()); }
};

// The largest order that is tried for so many values: min(40, n / 4), at least 1.
[[nodiscard]] int mostBurgOrder(int values);

// Fits orders 0 ... mostOrder and keeps the one with the smallest n ln(variance) + 2 p (Akaike 1974).
// series: without mean and trend; values outside the stretches are not looked at. The model is stable.
// Orders end early where a model leaves no error. Without any variance or with values that are not
// finite the model has order 0 and variance 0 or NaN. O(n p).
//
// J. P. Burg 1975, Maximum entropy spectral analysis (thesis, Stanford); several stretches as in
// de Waele & Broersen 2000, IEEE Transactions on Signal Processing 48, doi:10.1109/78.869039.
[[nodiscard]] BurgModel fitBurg(std::span<const double> series, const std::vector<Stretch>& stretches,
                                int mostOrder);

}  // namespace simo

#endif
