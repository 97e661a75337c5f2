#include "suitability/autoregression.h"

#include <gtest/gtest.h>

#include "tests/suitability/simulated.h"

namespace {

using suitability::Series;

// Least squares leaves nothing that its predictors could still predict.
TEST(Autoregression, ResidualsAreOrthogonalToTheLags) {
  std::mt19937 random(3);
  const std::vector<Series> stretches = {simulated::autoregressive(0.7, 80, random),
                                         simulated::autoregressive(0.7, 50, random), Series{1, -2}};
  const std::vector<Series> residuals = suitability::fitOwnModel(stretches, 3).value().residuals;
  ASSERT_EQ(residuals.size(), 2U);
  EXPECT_EQ(residuals[0].size(), 77U);
  for (std::size_t lag = 1; lag <= 3; ++lag) {
    double sum = 0;
    for (std::size_t s = 0; s < 2; ++s)
      for (std::size_t t = 0; t < residuals[s].size(); ++t)
        sum += residuals[s][t] * stretches[s][t + 3 - lag];
    EXPECT_NEAR(sum, 0, 1e-10);
  }
}

TEST(Autoregression, PredictabilityIsWhatTheResidualsLack) {
  std::mt19937 random(4);
  const std::vector<Series> stretches = {simulated::autoregressive(0.7, 200, random)};
  const Series e = suitability::fitOwnModel(stretches, 2)->residuals.front();
  double errors = 0, squares = 0;
  for (const double value : e) errors += value * value;
  for (std::size_t t = 2; t < 200; ++t) squares += stretches[0][t] * stretches[0][t];
  EXPECT_NEAR(suitability::predictability(stretches, 2).value(), 1 - errors / squares, 1e-12);
}

TEST(Autoregression, FlatSeriesHaveNoModel) {
  const std::vector<Series> flat = suitability::detrendedStretches(Series(60, 7.0), {{0, 30}, {30, 30}});
  EXPECT_EQ(flat.size(), 2U);
  EXPECT_FALSE(suitability::fitOwnModel(flat, 2));
  EXPECT_FALSE(suitability::predictability(flat, 2));
  EXPECT_TRUE(suitability::detrendedStretches(Series(60, 7.0), {{0, 2}}).empty());
}

}  // namespace
