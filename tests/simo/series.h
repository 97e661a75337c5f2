// Series for tests: noise and autoregressive processes that do not come from the library under test.
#ifndef TAVMAP_TESTS_SIMO_SERIES_H
#define TAVMAP_TESTS_SIMO_SERIES_H

#include <cmath>
#include <random>
#include <vector>

#include "simo/matrix.h"
#include "tests/simo/dense.h"

namespace test {

// rows x cols independent standard normal numbers, bases as given.
inline simo::Matrix<float> whiteNoise(int rows, int cols, unsigned seed, int rowBase = 0, int colBase = 0) {
  std::mt19937_64 engine(seed);
  std::normal_distribution<double> normal;
  simo::Matrix<float> m(rows, cols, rowBase, colBase);
  for (std::size_t i = 0; i < m.size(); ++i) m.elements()[i] = static_cast<float>(normal(engine));
  return m;
}

// `length` points of x(t) = sum of a[k-1] x(t-k) + e(t), e two normal series with covariance sigma,
// after a warm-up of 500 points. One row per series, 0-based.
inline simo::Matrix<float> autoregression(const std::vector<Dense>& a, const Dense& sigma, int length,
                                          unsigned seed) {
  const int warmUp = 500;
  std::mt19937_64 engine(seed);
  std::normal_distribution<double> normal;
  const double l00 = std::sqrt(sigma(0, 0));
  const double l10 = sigma(1, 0) / l00;
  const double l11 = std::sqrt(sigma(1, 1) - l10 * l10);
  std::vector<Dense> past(a.size(), Dense(2, 1));  // past[k-1] is x(t-k)
  simo::Matrix<float> x(2, length, 0, 0);
  for (int t = -warmUp; t < length; ++t) {
    const double z0 = normal(engine);
    const double z1 = normal(engine);
    Dense now(2, 1, {l00 * z0, l10 * z0 + l11 * z1});
    for (std::size_t k = 0; k < a.size(); ++k) {
      const Dense part = product(a[k], past[k]);
      for (std::size_t i = 0; i < 2; ++i) now(i, 0) += part(i, 0);
    }
    if (!past.empty()) {
      past.insert(past.begin(), now);
      past.pop_back();
    }
    if (t < 0) continue;
    for (int i = 0; i < 2; ++i) x[i][t] = static_cast<float>(now(static_cast<std::size_t>(i), 0));
  }
  return x;
}

}  // namespace test

#endif
