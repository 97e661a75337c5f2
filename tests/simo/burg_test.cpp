#include "simo/burg.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using Series = std::vector<double>;

Series autoregressive(const std::vector<double>& a, std::size_t n, unsigned seed, double sd = 1) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal(0, sd);
  Series x(n + 200, 0.0);
  for (std::size_t t = 0; t < x.size(); ++t) {
    x[t] = normal(random);
    for (std::size_t k = 1; k <= a.size() && k <= t; ++k) x[t] += a[k - 1] * x[t - k];
  }
  return {x.begin() + 200, x.end()};
}

std::vector<simo::Stretch> whole(const Series& x) {
  return {{0, static_cast<int>(x.size())}};
}

TEST(Burg, FindsOrderAndCoefficients) {
  const Series x = autoregressive({1.2, -0.8}, 4000, 1, 2);
  const simo::BurgModel model = simo::fitBurg(x, whole(x), 20);
  ASSERT_GE(model.order(), 2);
  EXPECT_LE(model.order(), 6);
  EXPECT_NEAR(model.coefficients[0], 1.2, 0.05);
  EXPECT_NEAR(model.coefficients[1], -0.8, 0.05);
  EXPECT_NEAR(model.errorVariance, 4, 0.3);
}

// With one lag the reflection coefficient has a closed form.
TEST(Burg, OrderOneIsTheHarmonicMeanOfBothDirections) {
  const Series x = {1, 3, 2, -1, -2, 0.5, 1.5, -1};
  double products = 0, squares = 0, sum = 0;
  for (std::size_t t = 1; t < x.size(); ++t) {
    products += x[t] * x[t - 1];
    squares += x[t] * x[t] + x[t - 1] * x[t - 1];
  }
  for (const double value : x) sum += value * value;
  const double a = 2 * products / squares;
  const simo::BurgModel model = simo::fitBurg(x, whole(x), 1);
  for (const double coefficient : model.coefficients) EXPECT_NEAR(coefficient, a, 1e-12);
  const double n = static_cast<double>(x.size());
  EXPECT_EQ(model.order(), n * std::log(1 - a * a) + 2 < 0 ? 1 : 0);
  EXPECT_NEAR(model.errorVariance, sum / n * (model.order() == 1 ? 1 - a * a : 1), 1e-12);
}

TEST(Burg, ResidualsAreThoseOfTheModel) {
  const Series x = autoregressive({0.5, 0.2, -0.3}, 300, 2);
  const simo::BurgModel model = simo::fitBurg(x, whole(x), 30);
  const auto p = static_cast<std::size_t>(model.order());
  ASSERT_GT(p, 0U);
  ASSERT_EQ(model.residuals.size(), x.size());
  for (std::size_t t = p; t < x.size(); ++t) {
    double expected = x[t];
    for (std::size_t k = 1; k <= p; ++k) expected -= model.coefficients[k - 1] * x[t - k];
    EXPECT_NEAR(model.residuals[t], expected, 1e-9) << t;
  }
}

// The first value has no past: it is its own residual, brought to the model's variance.
TEST(Burg, FirstResidualsComeFromLowerOrdersAtTheModelsVariance) {
  const Series x = autoregressive({0.9}, 400, 3);
  const simo::BurgModel model = simo::fitBurg(x, whole(x), 10);
  double variance = 0;
  for (const double value : x) variance += value * value / static_cast<double>(x.size());
  EXPECT_NEAR(model.residuals[0], x[0] * std::sqrt(model.errorVariance / variance), 1e-9);
}

TEST(Burg, StretchesAreNotStitched) {
  const Series x = autoregressive({0.6}, 200, 4);
  Series broken = x;
  for (std::size_t t = 90; t < 110; ++t) broken[t] = 1e6;  // between the stretches
  const std::vector<simo::Stretch> stretches = {{0, 90}, {110, 200}};
  const simo::BurgModel model = simo::fitBurg(broken, stretches, 10);
  EXPECT_EQ(model.residuals.size(), 180U);
  EXPECT_NEAR(model.coefficients[0], 0.6, 0.2);
  EXPECT_LT(model.errorVariance, 2);
}

TEST(Burg, IsStable) {  // an impulse response that does not grow, even for a pure tone
  Series x(200);
  for (std::size_t t = 0; t < x.size(); ++t) x[t] = std::sin(0.3 * static_cast<double>(t));
  const simo::BurgModel model = simo::fitBurg(x, whole(x), 40);
  Series response(20000, 0.0);
  response[0] = 1;
  for (std::size_t t = 1; t < response.size(); ++t)
    for (std::size_t k = 1; k <= model.coefficients.size() && k <= t; ++k)
      response[t] += model.coefficients[k - 1] * response[t - k];
  const auto largest = [&](std::size_t first, std::size_t end) {
    double most = 0;
    for (std::size_t t = first; t < end; ++t) most = std::max(most, std::abs(response[t]));
    return most;
  };
  EXPECT_LT(largest(19000, 20000), largest(0, 1000));
}

TEST(Burg, SeriesWithoutVarianceHaveOrderZero) {
  const Series x(50, 0.0);
  const simo::BurgModel model = simo::fitBurg(x, whole(x), 10);
  EXPECT_EQ(model.order(), 0);
  EXPECT_EQ(model.errorVariance, 0);
}

TEST(Burg, TriesAQuarterOfTheValuesAndFortyAtMost) {
  EXPECT_EQ(simo::mostBurgOrder(100), 25);
  EXPECT_EQ(simo::mostBurgOrder(1000), 40);
  EXPECT_EQ(simo::mostBurgOrder(3), 1);
}

}  // namespace
