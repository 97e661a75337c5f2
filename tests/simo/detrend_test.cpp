#include "simo/detrend.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/simo/series.h"

namespace {

// Residuals about the least-squares line, in double, from the normal equations on 1 and t.
std::vector<double> lineResiduals(const std::vector<double>& y) {
  const auto n = static_cast<double>(y.size());
  double sumT = 0, sumTt = 0, sumY = 0, sumTy = 0;
  for (std::size_t i = 0; i < y.size(); ++i) {
    const auto t = static_cast<double>(i);
    sumT += t;
    sumTt += t * t;
    sumY += y[i];
    sumTy += t * y[i];
  }
  const double slope = (n * sumTy - sumT * sumY) / (n * sumTt - sumT * sumT);
  const double intercept = (sumY - slope * sumT) / n;
  std::vector<double> residuals;
  for (std::size_t i = 0; i < y.size(); ++i)
    residuals.push_back(y[i] - intercept - slope * static_cast<double>(i));
  return residuals;
}

TEST(Detrend, RemovesALineWhole) {
  simo::Matrix<float> m(1, 3, 0, 0);
  for (int t = 0; t < 3; ++t) m[0][t] = static_cast<float>(t + 1);
  simo::Matrix<float> residuals(1, 3, 0, 0, 9.F);
  simo::dtrendRowsToRes(m, 0, 1, 0, 3, residuals, 0, 0);
  for (int t = 0; t < 3; ++t) EXPECT_EQ(residuals[0][t], 0.F);
}

TEST(Detrend, LeavesLeastSquaresResiduals) {
  const int n = 301;
  const simo::Matrix<float> noise = test::whiteNoise(1, n, 11);
  simo::Matrix<float> m(1, n, 0, 0);
  std::vector<double> y;
  for (int t = 0; t < n; ++t) {
    m[0][t] = 500.F + 0.7F * static_cast<float>(t) + noise[0][t];
    y.push_back(static_cast<double>(m[0][t]));
  }
  simo::Matrix<float> residuals(1, n, 0, 0);
  simo::dtrendRowsToRes(m, 0, 1, 0, n, residuals, 0, 0);
  const std::vector<double> expected = lineResiduals(y);
  // Single-precision sums of n values of size 700: n / 2 roundings of half an ulp at worst.
  const double tolerance = 0.5 * n * 700 * 6e-8;
  for (int t = 0; t < n; ++t)
    EXPECT_NEAR(static_cast<double>(residuals[0][t]), expected[static_cast<std::size_t>(t)], tolerance);
}

TEST(Detrend, FitsEachRowOfTheBlockOnItsOwnAndTouchesNothingElse) {
  simo::Matrix<float> source(4, 10, 1, 1, 1000.F);
  for (int t = 1; t <= 10; ++t) {
    source[2][t] = static_cast<float>(t * t);
    source[3][t] = static_cast<float>(-2 * t * t);
  }
  simo::Matrix<float> target(3, 9, 0, 0, -7.F);
  simo::dtrendRowsToRes(source, 2, 4, 3, 8, target, 1, 4);
  // t^2 at five points about its line: 2, -1, -2, -1, 2.
  const float expected[] = {2, -1, -2, -1, 2};
  for (int t = 0; t < 5; ++t) {
    EXPECT_NEAR(target[1][4 + t], expected[t], 1e-5F);
    EXPECT_NEAR(target[2][4 + t], -2 * expected[t], 2e-5F);
  }
  for (int c = 0; c < 9; ++c) EXPECT_EQ(target[0][c], -7.F);
  for (int c = 0; c < 4; ++c) EXPECT_EQ(target[1][c], -7.F);
}

TEST(Detrend, WorksInPlace) {
  simo::Matrix<float> m = test::whiteNoise(2, 50, 3);
  simo::Matrix<float> apart(2, 50, 0, 0);
  simo::dtrendRowsToRes(m, 0, 2, 0, 50, apart, 0, 0);
  simo::dtrendRowsToRes(m, 0, 2, 0, 50, m, 0, 0);
  for (std::size_t i = 0; i < m.size(); ++i) EXPECT_EQ(m.elements()[i], apart.elements()[i]);
}

TEST(Detrend, OfTwoPointsLeavesNothing) {
  simo::Matrix<float> m(1, 2, 0, 0);
  m[0][0] = 3.F;
  m[0][1] = -8.F;
  simo::dtrendRowsToRes(m, 0, 1, 0, 2, m, 0, 0);
  EXPECT_EQ(m[0][0], 0.F);
  EXPECT_EQ(m[0][1], 0.F);
}

TEST(Detrend, OfOnePointIsNotANumber) {
  const simo::Matrix<float> m(1, 1, 0, 0, 5.F);
  simo::Matrix<float> residuals(1, 1, 0, 0, 0.F);
  simo::dtrendRowsToRes(m, 0, 1, 0, 1, residuals, 0, 0);
  EXPECT_TRUE(std::isnan(residuals[0][0]));
}

TEST(Detrend, PassesNotANumberOn) {
  simo::Matrix<float> m = test::whiteNoise(1, 20, 5);
  m[0][7] = std::nanf("");
  simo::dtrendRowsToRes(m, 0, 1, 0, 20, m, 0, 0);
  for (int t = 0; t < 20; ++t) EXPECT_TRUE(std::isnan(m[0][t]));
}

}  // namespace
