// Least-squares models of a pair of series, and Geweke's measures of feedback between the two.
#ifndef TAVMAP_SIMO_PAIR_FIT_H
#define TAVMAP_SIMO_PAIR_FIT_H

#include <optional>
#include <vector>

#include "simo/lagged_moments.h"

namespace simo {

// Natural logarithms of ratios of error variances. Nested models over the same samples make them at
// least 0; what rounding leaves below is 0.
struct Feedback {
  double xToY = 0;           // ln(E_y / S_yy)
  double yToX = 0;           // ln(E_x / S_xx)
  double instantaneous = 0;  // ln(S_xx S_yy / |S|)
};

// Sums of squared errors of the single models (E) and of the joint one (S), over the same samples.
struct PairErrors {
  double x = 0, y = 0;            // E
  double jointX = 0, jointY = 0;  // S_xx, S_yy
  double jointCross = 0;          // S_xy
  double determinant = 0;         // |S|, from a factorisation
};

// Fits by Cholesky factorisation of the moments, in double precision. The lags of y come first: their
// factor serves the single and the joint model.
class PairFit {
 public:
  explicit PairFit(int order);

  // xx, yy: moments of each series with itself; xy: of x (first index) with y; of this order or a
  // higher one, whose samples then count. Nothing when the lags
  // or the errors of a model are degenerate: what is left of a variable's sum of squares is not above
  // 1e-12 of it. NaN is degenerate. Allocates nothing; about p^3 multiply-adds.
  [[nodiscard]] std::optional<PairErrors> errors(const LaggedMoments& xx, const LaggedMoments& yy,
                                                 const LaggedMoments& xy);

  // The sum of squared errors of one series' model alone, or nothing.
  [[nodiscard]] std::optional<double> singleError(const LaggedMoments& own);

  // The measures of those errors (Geweke 1982, Journal of the American Statistical Association 77,
  // 304-313, doi:10.1080/01621459.1982.10477803).
  [[nodiscard]] static Feedback feedback(const PairErrors& errors);

 private:
  [[nodiscard]] double* row(int i);
  void fillOwn(const LaggedMoments& own, int firstRow, int firstColumn);
  [[nodiscard]] bool factorRows(int first, int end);
  // Eliminates columns first ... end - 1 of a row of moments.
  void eliminate(double* target, int first, int end) const;
  [[nodiscard]] bool fitAlone(const LaggedMoments& own, std::vector<double>& last, double& error);

  int order_;
  std::vector<double> factor_;  // 2p rows of 2p values
  std::vector<double> xLast_, yLast_;
};

}  // namespace simo

#endif
