#include "suitability/whiteness.h"

#include <gtest/gtest.h>

#include <cmath>

#include "suitability/autoregression.h"
#include "suitability/detrending_bias.h"
#include "tests/suitability/simulated.h"

namespace {

using suitability::chiSquareTail;
using suitability::Series;

TEST(ChiSquareTail, IsTheTabulatedOne) {
  EXPECT_NEAR(chiSquareTail(3.841458821, 1), 0.05, 1e-9);
  EXPECT_NEAR(chiSquareTail(5.991464547, 2), 0.05, 1e-9);
  EXPECT_NEAR(chiSquareTail(16.26623620, 3), 0.001, 1e-9);
  EXPECT_NEAR(chiSquareTail(31.41043284, 20), 0.05, 1e-9);
  EXPECT_NEAR(chiSquareTail(43.82019596, 19), 0.001, 1e-9);
  EXPECT_EQ(chiSquareTail(0, 5), 1);
}

suitability::OwnModel modelOf(double a, std::size_t n, int order, unsigned seed) {
  std::mt19937 random(seed);
  return suitability::fitOwnModel({simulated::autoregressive(a, n, random)}, order).value();
}

TEST(LjungBox, IsTheFormulaForOneLongStretch) {
  const suitability::OwnModel model = modelOf(0.5, 4002, 2, 4);
  const Series& e = model.residuals.front();
  const double n = 4000;
  double squares = 0, expected = 0;
  for (const double value : e) squares += value * value;
  for (std::size_t lag = 1; lag <= 22; ++lag) {
    double sum = 0;
    for (std::size_t t = lag; t < e.size(); ++t) sum += e[t] * e[t - lag];
    expected += n * (n + 2) * sum * sum / (squares * squares * (n - static_cast<double>(lag)));
  }
  const auto test = suitability::ljungBox(model).value();
  EXPECT_EQ(test.degrees, 20);
  EXPECT_NEAR(test.statistic, expected, 1);  // detrending costs two products of 4000
  EXPECT_NE(test.statistic, expected);
}

TEST(LjungBox, TakesNoMoreLagsThanAFifthOfTheSamples) {
  EXPECT_EQ(suitability::ljungBox(modelOf(0, 51, 1, 5))->degrees, 10);
}

// Over two stretches: products run within each, shares are of all squares.
TEST(ResidualCorrelations, AreThoseOfTheResidualsLagByLag) {
  suitability::OwnModel model = modelOf(0.5, 40, 1, 6);
  model.residuals = {{1, 2, -1}, {3, 1}};
  const auto found = suitability::residualCorrelations(model, 3);
  ASSERT_EQ(found.size(), 3U);
  const std::vector<double> sums = {2 - 2 + 3, -1, 0}, pairs = {3, 1, 0};
  const std::vector<double> expected = suitability::detrendingBias(model, 3);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(found[i].seen, sums[i] / 16);
    EXPECT_EQ(found[i].pairs, pairs[i]);
    EXPECT_EQ(found[i].expected, expected[i]);
  }
  model.residuals = {{0, 0, 0}};
  EXPECT_TRUE(suitability::residualCorrelations(model, 3).empty());
}

// The mean autocorrelations of residuals over many simulated runs of 40 intervals.
TEST(DetrendingBias, IsWhatSimulationsShow) {
  std::vector<suitability::Interval> intervals;
  for (int i = 0; i < 40; ++i) intervals.push_back({i * 30, 30});
  Series seen(8), expected(8);
  for (unsigned seed = 0; seed < 200; ++seed) {
    std::mt19937 random(seed + 70);
    const Series x = simulated::autoregressive(0.5, 1200, random);
    const auto model = suitability::fitOwnModel(suitability::detrendedStretches(x, intervals), 1).value();
    const std::vector<double> bias = suitability::detrendingBias(model, 8);
    double squares = 0;
    for (const Series& e : model.residuals)
      for (const double value : e) squares += value * value;
    for (std::size_t lag = 1; lag <= seen.size(); ++lag) {
      expected[lag - 1] += bias[lag - 1] / 200;
      for (const Series& e : model.residuals)
        for (std::size_t t = lag; t < e.size(); ++t) seen[lag - 1] += e[t] * e[t - lag] / squares / 200;
    }
  }
  for (std::size_t i = 0; i < seen.size(); ++i) EXPECT_NEAR(seen[i], expected[i], 0.02) << "lag " << i + 1;
  EXPECT_LT(expected[2], -0.05);
}

std::optional<suitability::NotWhite> notWhite(const suitability::Courses& courses, int order) {
  return suitability::findNotWhite(courses, suitability::ownResiduals(courses, order).value());
}

int countNotWhite(int intervals, int length, double a, int order) {
  int count = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed + 9);
    suitability::Courses courses;
    courses.reference = simulated::autoregressive(a, static_cast<std::size_t>(intervals * length), random);
    for (int i = 0; i < intervals; ++i) courses.intervals.push_back({i * length, length});
    if (notWhite(courses, order)) ++count;
  }
  return count;
}

// A level of 0.001 would give 0.3 of them; detrending alone makes all of the short ones look coloured.
TEST(Whiteness, HoldsItsLevelInManyShortIntervals) {
  EXPECT_LE(countNotWhite(1, 300, 0.6, 1), 3);
  EXPECT_LE(countNotWhite(10, 30, 0.3, 1), 3);
  EXPECT_LE(countNotWhite(20, 30, 0.3, 2), 3);
  EXPECT_LE(countNotWhite(20, 30, 0.6, 1), 3);
}

TEST(Whiteness, NamesTheLowestOrderThatSuffices) {
  int exact = 0, higher = 0;
  for (unsigned seed = 0; seed < 100; ++seed) {
    std::mt19937 random(seed + 31);
    const Series e = simulated::white(600, random);
    suitability::Courses courses;
    courses.intervals = {{0, 600}};
    courses.reference = e;
    Series& x = courses.reference;
    for (std::size_t t = 3; t < x.size(); ++t) x[t] += 0.3 * x[t - 1] - 0.3 * x[t - 2] + 0.4 * x[t - 3];
    const auto found = notWhite(courses, 1);
    ASSERT_TRUE(found);
    if (found->whiteOrder == 3) ++exact;
    if (found->whiteOrder > 3) ++higher;
  }
  EXPECT_GE(exact, 85);  // one in twenty are above it by chance
  EXPECT_EQ(exact + higher, 100);
}

}  // namespace
