#include "simo/pair_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>
#include <vector>

#include "simo/detrend.h"

namespace {

using Series = std::vector<double>;

// x follows its own past and drives y.
struct Pair {
  Series x, y;
};

Pair coupled(std::size_t n, unsigned seed, double smoothness = 0.6) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  Pair pair{Series(n), Series(n)};
  for (std::size_t t = 1; t < n; ++t) {
    pair.x[t] = smoothness * pair.x[t - 1] + normal(random);
    pair.y[t] = 0.3 * pair.y[t - 1] + 0.4 * pair.x[t - 1] + normal(random);
  }
  return pair;
}

double squaredErrors(std::vector<Series> columns, Series target) {  // modified Gram-Schmidt, twice
  for (int round = 0; round < 2; ++round) {
    for (std::size_t j = 0; j < columns.size(); ++j) {
      const auto removeFrom = [&](Series& series) {
        double product = 0, squares = 0;
        for (std::size_t t = 0; t < series.size(); ++t) {
          product += columns[j][t] * series[t];
          squares += columns[j][t] * columns[j][t];
        }
        for (std::size_t t = 0; t < series.size(); ++t) series[t] -= product / squares * columns[j][t];
      };
      for (std::size_t k = j + 1; k < columns.size(); ++k) removeFrom(columns[k]);
      removeFrom(target);
    }
  }
  double sum = 0;
  for (const double value : target) sum += value * value;
  return sum;
}

// Stacked design matrices of several intervals.
struct Design {
  std::vector<Series> xLags, yLags;
  Series x, y;

  Design(const std::vector<Pair>& intervals, int order)
      : xLags(static_cast<std::size_t>(order)), yLags(static_cast<std::size_t>(order)) {
    const auto p = static_cast<std::size_t>(order);
    for (const Pair& pair : intervals) {
      for (std::size_t t = p; t < pair.x.size(); ++t) {
        x.push_back(pair.x[t]);
        y.push_back(pair.y[t]);
        for (std::size_t k = 1; k <= p; ++k) {
          xLags[k - 1].push_back(pair.x[t - k]);
          yLags[k - 1].push_back(pair.y[t - k]);
        }
      }
    }
  }
  [[nodiscard]] std::vector<Series> both() const {
    std::vector<Series> all = yLags;
    all.insert(all.end(), xLags.begin(), xLags.end());
    return all;
  }
};

std::optional<simo::PairErrors> fit(const std::vector<Pair>& intervals, int order) {
  simo::LaggedMoments xx(order), yy(order), xy(order);
  for (const Pair& pair : intervals) {
    const int n = static_cast<int>(pair.x.size());
    xx.add(pair.x.data(), pair.x.data(), n);
    yy.add(pair.y.data(), pair.y.data(), n);
    xy.add(pair.x.data(), pair.y.data(), n);
  }
  return simo::PairFit(order).errors(xx, yy, xy);
}

class PairFitOrder : public ::testing::TestWithParam<int> {};

TEST_P(PairFitOrder, EqualsLeastSquaresOverStackedIntervals) {
  const int order = GetParam();
  const std::vector<Pair> intervals = {coupled(150, 1), coupled(60, 2), coupled(45, 3)};
  const Design design(intervals, order);
  const auto errors = fit(intervals, order);
  ASSERT_TRUE(errors);
  EXPECT_NEAR(errors->x / squaredErrors(design.xLags, design.x), 1, 1e-10);
  EXPECT_NEAR(errors->y / squaredErrors(design.yLags, design.y), 1, 1e-10);
  EXPECT_NEAR(errors->jointX / squaredErrors(design.both(), design.x), 1, 1e-10);
  EXPECT_NEAR(errors->jointY / squaredErrors(design.both(), design.y), 1, 1e-10);
  std::vector<Series> all = design.both();
  all.push_back(design.x);
  EXPECT_NEAR(errors->determinant / errors->jointX / squaredErrors(all, design.y), 1, 1e-10);
}

INSTANTIATE_TEST_SUITE_P(Orders, PairFitOrder, ::testing::Values(1, 2, 3, 5, 8, 13, 20));

TEST(PairFit, ManyShortIntervalsWeighTheirSamples) {
  std::vector<Pair> intervals = {coupled(100, 4)};
  for (unsigned seed = 5; seed < 10; ++seed) intervals.push_back(coupled(8, seed));
  const Design design(intervals, 1);
  EXPECT_EQ(design.x.size(), 99U + 5 * 7U);
  EXPECT_NEAR(fit(intervals, 1)->jointY / squaredErrors(design.both(), design.y), 1, 1e-10);
}

TEST(PairFit, MeasuresOfNestedModelsAreNeverNegative) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    const Pair own = coupled(40, seed), other = coupled(40, seed + 1000);
    const auto errors = fit({{own.x, other.x}}, 3);
    ASSERT_TRUE(errors);
    EXPECT_LE(errors->jointX, errors->x * (1 + 1e-12));
    EXPECT_LE(errors->jointY, errors->y * (1 + 1e-12));
    const simo::Feedback feedback = simo::PairFit::feedback(*errors);
    EXPECT_GE(feedback.xToY, 0);
    EXPECT_GE(feedback.yToX, 0);
    EXPECT_GE(feedback.instantaneous, 0);
  }
}

TEST(PairFit, FeedbackIsThatOfGeweke) {
  const simo::Feedback feedback = simo::PairFit::feedback({3, 5, 2, 4, 1, 7});
  EXPECT_DOUBLE_EQ(feedback.xToY, std::log(5.0 / 4));
  EXPECT_DOUBLE_EQ(feedback.yToX, std::log(3.0 / 2));
  EXPECT_DOUBLE_EQ(feedback.instantaneous, std::log(2.0 * 4 / 7));
}

TEST(PairFit, ALowerOrderTakesTheSamplesOfTheMoments) {
  const Pair pair = coupled(90, 11);
  simo::LaggedMoments xx(5), yy(5), xy(5);
  xx.add(pair.x.data(), pair.x.data(), 90);
  yy.add(pair.y.data(), pair.y.data(), 90);
  xy.add(pair.x.data(), pair.y.data(), 90);
  const Pair shorter{{pair.x.begin() + 3, pair.x.end()}, {pair.y.begin() + 3, pair.y.end()}};
  const auto expected = fit({shorter}, 2), found = simo::PairFit(2).errors(xx, yy, xy);
  EXPECT_NEAR(found->jointY, expected->jointY, 1e-9);
  EXPECT_NEAR(*simo::PairFit(2).singleError(xx), expected->x, 1e-9);
}

TEST(PairFit, SmoothSeriesKeepTheirDigits) {
  Pair pair = coupled(400, 12);
  for (Series* series : {&pair.x, &pair.y})  // twice through a slow filter
    for (int round = 0; round < 2; ++round)
      for (std::size_t t = 1; t < series->size(); ++t) (*series)[t] += 0.97 * (*series)[t - 1];
  const Design design({pair}, 6);
  const auto errors = fit({pair}, 6);
  ASSERT_TRUE(errors);
  EXPECT_NEAR(errors->jointY / squaredErrors(design.both(), design.y), 1, 1e-6);
}

TEST(PairFit, DegenerateSeriesHaveNoFit) {
  Pair pair = coupled(60, 13);
  EXPECT_FALSE(fit({{pair.x, pair.x}}, 1));           // the same
  EXPECT_FALSE(fit({{pair.x, Series(60, 0.0)}}, 1));  // without variance
  for (std::size_t t = 0; t < 60; ++t) pair.y[t] = t % 3 == 0 ? 1 : 0;
  EXPECT_FALSE(fit({pair}, 3));  // its past tells all
  pair.y[7] = std::nan("");
  EXPECT_FALSE(fit({pair}, 1));
}

TEST(PairFit, AnIntervalNoLongerThanTheOrderAddsNothing) {
  const std::vector<Pair> one = {coupled(80, 14)}, more = {one[0], coupled(4, 15)};
  EXPECT_EQ(fit(one, 4)->determinant, fit(more, 4)->determinant);
}

TEST(DetrendRow, LeavesNoMeanAndNoSlope) {
  const std::vector<float> values = {3, 5, 4, 8, 7, 11};
  std::vector<double> residuals(6);
  ASSERT_TRUE(simo::detrendRow(values.data(), 6, residuals.data()));
  double sum = 0, products = 0;
  for (int t = 0; t < 6; ++t) {
    sum += residuals[static_cast<std::size_t>(t)];
    products += t * residuals[static_cast<std::size_t>(t)];
  }
  EXPECT_NEAR(sum, 0, 1e-12);
  EXPECT_NEAR(products, 0, 1e-12);
}

TEST(DetrendRow, SaysThatNothingIsLeftOfConstantsAndLines) {
  std::vector<double> residuals(50, 1.0);
  EXPECT_FALSE(simo::detrendRow(std::vector<float>(50, 1e6F + 0.1F).data(), 50, residuals.data()));
  EXPECT_EQ(residuals, std::vector<double>(50, 0.0));
  std::vector<std::uint16_t> line(50);
  for (std::size_t t = 0; t < 50; ++t) line[t] = static_cast<std::uint16_t>(300 + 7 * t);
  EXPECT_FALSE(simo::detrendRow(line.data(), 50, residuals.data()));
  EXPECT_EQ(residuals, std::vector<double>(50, 0.0));
}

}  // namespace
