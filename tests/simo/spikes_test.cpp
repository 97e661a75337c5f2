#include "simo/spikes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using Values = std::vector<double>;

Values remembering(std::size_t n, double memory, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  Values x(n);
  double state = 0;
  for (double& value : x) value = state = memory * state + normal(random);
  return x;
}

TEST(Spikes, AreWhatLiesSixRobustDeviationsAway) {
  Values residuals;
  for (int i = 0; i < 100; ++i) residuals.push_back(i % 2 == 0 ? 1 : -1);  // a robust deviation of 1.4826
  residuals[10] = 6.1 * 1.4826;
  residuals[20] = -6.1 * 1.4826;
  residuals[30] = 5.9 * 1.4826;
  const std::vector<bool> spikes = simo::spikesAmong(residuals);
  for (std::size_t i = 0; i < 100; ++i) EXPECT_EQ(spikes[i], i == 10 || i == 20) << i;
  EXPECT_TRUE(simo::spikesAmong({}).empty());
}

TEST(FitBetweenSpikes, IsBurgsFitWhereThereAreNone) {
  const Values x = remembering(300, 0.6, 1);
  const std::vector<simo::Stretch> stretches = {{0, 140}, {150, 300}};
  const simo::BurgModel plain = simo::fitBurg(x, stretches, simo::mostBurgOrder(290));
  const simo::BurgModel model = simo::fitBetweenSpikes(x, stretches);
  EXPECT_EQ(model.coefficients, plain.coefficients);
  EXPECT_EQ(model.residuals, plain.residuals);
}

// Three spikes of 30 standard deviations hide the memory from a plain fit.
TEST(FitBetweenSpikes, FindsTheMemoryThatSpikesHide) {
  Values x = remembering(400, 0.8, 2);
  for (const std::size_t t : {std::size_t{50}, std::size_t{180}, std::size_t{333}}) x[t] += 50;
  const simo::BurgModel plain = simo::fitBurg(x, {{0, 400}}, 1);
  ASSERT_EQ(plain.order(), 1);
  EXPECT_LT(plain.coefficients[0], 0.4);
  const simo::BurgModel model = simo::fitBetweenSpikes(x, {{0, 400}});
  ASSERT_GE(model.order(), 1);
  EXPECT_NEAR(model.coefficients[0], 0.8, 0.1);
}

// Driven with its residuals the model gives the series, spikes and all; those at the ends of a stretch have
// one neighbour, and two side by side have none between them.
TEST(FitBetweenSpikes, ResidualsMakeTheSeriesAgain) {
  Values x = remembering(300, 0.7, 3);
  for (const std::size_t t : {std::size_t{100}, std::size_t{101}, std::size_t{299}}) x[t] -= 40;
  const simo::BurgModel model = simo::fitBetweenSpikes(x, {{0, 300}});
  const auto order = static_cast<std::size_t>(model.order());
  ASSERT_GE(order, 1U);
  for (std::size_t t = order; t < x.size(); ++t) {
    double value = model.residuals[t];
    for (std::size_t k = 1; k <= order; ++k) value += model.coefficients[k - 1] * x[t - k];
    ASSERT_NEAR(value, x[t], 1e-9) << t;
  }
}

TEST(FitBetweenSpikes, AStretchDoesNotAnswerToASpikeOfAnother) {
  Values x = remembering(300, 0.7, 4);
  x[149] += 40;
  const std::vector<simo::Stretch> stretches = {{0, 150}, {150, 300}};
  const simo::BurgModel model = simo::fitBetweenSpikes(x, stretches);
  ASSERT_GE(model.order(), 1);
  double most = 0;
  for (std::size_t t = 150; t < 160; ++t) most = std::max(most, std::abs(model.residuals[t]));
  EXPECT_LT(most, 5);
}

}  // namespace
