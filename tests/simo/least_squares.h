// Autoregressions by ordinary least squares on a design matrix, in double.
#ifndef TAVMAP_TESTS_SIMO_LEAST_SQUARES_H
#define TAVMAP_TESTS_SIMO_LEAST_SQUARES_H

#include <cmath>
#include <vector>

#include "simo/matrix.h"
#include "tests/simo/dense.h"

namespace test {

struct LeastSquaresModel {
  Dense coefficients;  // n x (n p): a_1 ... a_p side by side
  Dense errCov;        // n x n, residual products over the number of equations
};

// Regresses series `rows` of x on their own past: the equations of t = firstTime ... end. Before its
// start a series counts as zero, so that firstTime 0 gives the pre-windowed fit.
inline LeastSquaresModel fitLeastSquares(const simo::Matrix<float>& x, const std::vector<int>& rows, int p,
                                         int firstTime) {
  const std::size_t n = rows.size();
  const std::size_t width = n * static_cast<std::size_t>(p);
  const auto value = [&](std::size_t series, int t) {
    return t < x.colBase ? 0.0 : static_cast<double>(x[rows[series]][t]);
  };
  const auto regressor = [&](std::size_t column, int t) {
    return value(column % n, t - 1 - static_cast<int>(column / n));
  };
  Dense moments(width, width);
  Dense products(width, n);
  Dense total(n, n);
  for (int t = firstTime; t < x.colEnd; ++t) {
    for (std::size_t a = 0; a < width; ++a) {
      for (std::size_t b = 0; b < width; ++b) moments(a, b) += regressor(a, t) * regressor(b, t);
      for (std::size_t i = 0; i < n; ++i) products(a, i) += regressor(a, t) * value(i, t);
    }
    for (std::size_t i = 0; i < n; ++i)
      for (std::size_t j = 0; j < n; ++j) total(i, j) += value(i, t) * value(j, t);
  }
  const Dense coefficients = transposed(solve(moments, products));
  const Dense explained = product(coefficients, products);
  Dense errCov(n, n);
  for (std::size_t e = 0; e < n * n; ++e)
    errCov.values[e] = (total.values[e] - explained.values[e]) / (x.colEnd - firstTime);
  return {coefficients, errCov};
}

struct Feedback {
  double x2y;
  double y2x;
  double xy;
};

// Geweke's measures between rows 0 and 1 of x from three least-squares fits.
inline Feedback leastSquaresFeedback(const simo::Matrix<float>& x, int p, int firstTime) {
  const Dense joint = fitLeastSquares(x, {0, 1}, p, firstTime).errCov;
  const double aloneX = fitLeastSquares(x, {0}, p, firstTime).errCov(0, 0);
  const double aloneY = fitLeastSquares(x, {1}, p, firstTime).errCov(0, 0);
  const double det = joint(0, 0) * joint(1, 1) - joint(0, 1) * joint(1, 0);
  return {std::log(aloneY / joint(1, 1)), std::log(aloneX / joint(0, 0)),
          std::log(joint(0, 0) * joint(1, 1) / det)};
}

}  // namespace test

#endif
