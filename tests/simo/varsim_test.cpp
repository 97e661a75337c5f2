#include "simo/varsim.h"

#include <gtest/gtest.h>

#include <cmath>

#include "simo/gaussian.h"
#include "simo/randomness.h"
#include "tests/simo/least_squares.h"

namespace {

using Coefficients = simo::Vector<simo::Matrix<float>>;

class Varsim : public testing::Test {
 protected:
  void SetUp() override { simo::setTimeBase(77); }
  void TearDown() override { simo::setTimeBase(std::nullopt); }
};

simo::Matrix<float> covariance(float s00, float s01, float s11) {
  simo::Matrix<float> sigma(2, 2, 0, 0);
  sigma[0][0] = s00;
  sigma[0][1] = sigma[1][0] = s01;
  sigma[1][1] = s11;
  return sigma;
}

Coefficients noCoefficients() {
  return Coefficients(0, 1, simo::Matrix<float>(1, 1, 0, 0, 0.F));
}

TEST_F(Varsim, OfOneSeriesFollowsItsRecursion) {
  simo::Matrix<float> x(1, 50, 0, 0);
  simo::Matrix<float> noise(1, 50, 0, 0);
  const Coefficients a(1, 1, simo::Matrix<float>(1, 1, 0, 0, 0.5F));
  const simo::Matrix<float> sigma(1, 1, 0, 0, 4.F);
  ASSERT_TRUE(simo::varsim(x, a, sigma, 3));
  simo::randn(noise, 0, 1, 0, 50, 3);
  EXPECT_EQ(x[0][0], 2.F * noise[0][0]);
  for (int t = 1; t < 50; ++t) EXPECT_EQ(x[0][t], 2.F * noise[0][t] + 0.5F * x[0][t - 1]) << t;
}

TEST_F(Varsim, OfSeveralSeriesAndLagsFollowsItsRecursion) {
  const int p = 2;
  const int length = 60;
  simo::Matrix<float> x(2, length, 0, 0);
  Coefficients a(p, 1, simo::Matrix<float>(2, 2, 0, 0, 0.F));
  const float weights[p][2][2] = {{{0.4F, -0.2F}, {0.3F, 0.1F}}, {{0.1F, 0.2F}, {-0.3F, 0.2F}}};
  for (int k = 1; k <= p; ++k)
    for (int i = 0; i < 2; ++i)
      for (int j = 0; j < 2; ++j) a[k][i][j] = weights[k - 1][i][j];
  ASSERT_TRUE(simo::varsim(x, a, covariance(4, 2, 3), 5));

  simo::Matrix<float> expected(2, length, 0, 0);
  simo::randn(expected, 0, 2, 0, length, 5);
  for (int t = 0; t < length; ++t) {
    const double z0 = static_cast<double>(expected[0][t]);
    const double z1 = static_cast<double>(expected[1][t]);
    expected[0][t] = static_cast<float>(2 * z0);
    expected[1][t] = static_cast<float>(z0 + static_cast<double>(std::sqrt(2.F)) * z1);
    for (int i = 0; i < 2 && t >= p; ++i)
      for (int k = 1; k <= p; ++k)
        for (int j = 0; j < 2; ++j) expected[i][t] += weights[k - 1][i][j] * expected[j][t - k];
  }
  for (std::size_t e = 0; e < x.size(); ++e) EXPECT_EQ(x.elements()[e], expected.elements()[e]) << e;
}

TEST_F(Varsim, WithoutCoefficientsIsColouredNoise) {
  const int length = 100000;
  simo::Matrix<float> x(2, length, 0, 0);
  ASSERT_TRUE(simo::varsim(x, noCoefficients(), covariance(4, 1.5F, 2), 8));
  // Covariances and lag-1 products, each within five standard deviations of at most 6 / sqrt(N).
  const double tolerance = 5 * 6 / std::sqrt(static_cast<double>(length));
  const double expected[2][2] = {{4, 1.5}, {1.5, 2}};
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) {
      double sum = 0;
      double lagged = 0;
      for (int t = 1; t < length; ++t) {
        sum += static_cast<double>(x[i][t]) * static_cast<double>(x[j][t]);
        lagged += static_cast<double>(x[i][t]) * static_cast<double>(x[j][t - 1]);
      }
      EXPECT_NEAR(sum / length, expected[i][j], tolerance);
      EXPECT_NEAR(lagged / length, 0, tolerance);
    }
}

TEST_F(Varsim, IsFittedBackToItsCoefficients) {
  const int length = 100000;
  simo::Matrix<float> x(2, length, 0, 0);
  Coefficients a(2, 1, simo::Matrix<float>(2, 2, 0, 0, 0.F));
  const double weights[] = {0.4, -0.2, 0.1, 0.2, 0.3, 0.1, -0.3, 0.2};  // row 0, row 1: a_1, a_2 side by side
  for (int i = 0; i < 2; ++i)
    for (int k = 1; k <= 2; ++k)
      for (int j = 0; j < 2; ++j) a[k][i][j] = static_cast<float>(weights[4 * i + 2 * (k - 1) + j]);
  ASSERT_TRUE(simo::varsim(x, a, covariance(1, 0.3F, 2), 4));
  const test::LeastSquaresModel fitted = test::fitLeastSquares(x, {0, 1}, 2, 2);
  // Standard deviations of at most sqrt(2 / N); five of them.
  for (std::size_t e = 0; e < 8; ++e)
    EXPECT_NEAR(fitted.coefficients.values[e], weights[e], 5 * std::sqrt(2.0 / length));
  const double sigma[] = {1, 0.3, 0.3, 2};
  for (std::size_t e = 0; e < 4; ++e)
    EXPECT_NEAR(fitted.errCov.values[e], sigma[e], 5 * std::sqrt(8.0 / length));
}

TEST_F(Varsim, RefusesACovarianceThatIsNotPositiveDefiniteAndDrawsNothing) {
  simo::Matrix<float> x(2, 10, 0, 0, 6.F);
  simo::randomStream().seed(12);
  const int next = simo::randomStream().next();
  simo::randomStream().seed(12);
  EXPECT_FALSE(simo::varsim(x, noCoefficients(), covariance(1, 0, 0), 1));
  EXPECT_FALSE(simo::varsim(x, noCoefficients(), covariance(0, 0, 1), 1));
  EXPECT_FALSE(simo::varsim(x, noCoefficients(), covariance(1, 2, 1), 1));
  for (std::size_t e = 0; e < x.size(); ++e) EXPECT_EQ(x.elements()[e], 6.F);
  EXPECT_EQ(simo::randomStream().next(), next);
}

TEST_F(Varsim, StartsColdForAsManyColumnsAsTheOrder) {
  simo::Matrix<float> x(1, 20, 1, 1);
  simo::Matrix<float> noise(1, 20, 1, 1);
  const Coefficients a(3, 1, simo::Matrix<float>(1, 1, 1, 1, 0.3F));
  ASSERT_TRUE(simo::varsim(x, a, simo::Matrix<float>(1, 1, 1, 1, 1.F), 2));
  simo::randn(noise, 1, 2, 1, 21, 2);
  for (int t = 1; t <= 3; ++t) EXPECT_EQ(x[1][t], noise[1][t]);
  EXPECT_NE(x[1][4], noise[1][4]);
}

TEST_F(Varsim, DoesNotDependOnBases) {
  simo::Matrix<float> plain(2, 30, 0, 0);
  simo::Matrix<float> shifted(2, 30, 1, -5);
  const Coefficients a(2, 1, simo::Matrix<float>(2, 2, 0, 0, 0.2F));
  const Coefficients aShifted(2, 1, simo::Matrix<float>(2, 2, 4, 3, 0.2F));
  const simo::Matrix<float> sigma = covariance(2, 1, 2);
  simo::Matrix<float> sigmaShifted(2, 2, 7, 7);
  sigmaShifted.assign(sigma, 0, 0);
  ASSERT_TRUE(simo::varsim(plain, a, sigma, 1));
  ASSERT_TRUE(simo::varsim(shifted, aShifted, sigmaShifted, 1));
  for (std::size_t e = 0; e < plain.size(); ++e) EXPECT_EQ(plain.elements()[e], shifted.elements()[e]);
}

TEST_F(Varsim, OfFewerPointsThanTheOrderIsNoiseAlone) {
  simo::Matrix<float> x(1, 2, 0, 0);
  simo::Matrix<float> noise(1, 2, 0, 0);
  const Coefficients a(3, 1, simo::Matrix<float>(1, 1, 0, 0, 0.3F));
  ASSERT_TRUE(simo::varsim(x, a, simo::Matrix<float>(1, 1, 0, 0, 1.F), 2));
  simo::randn(noise, 0, 1, 0, 2, 2);
  EXPECT_EQ(x[0][0], noise[0][0]);
  EXPECT_EQ(x[0][1], noise[0][1]);
}

}  // namespace
