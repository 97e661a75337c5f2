#include "connectome/edge_shares.h"

#include <gtest/gtest.h>

#include <cmath>

#include "simo/detrend.h"
#include "simo/pair_fit.h"
#include "tests/connectome/made_series.h"

namespace {

using connectome::EdgeMatrix;
using connectome::Measure;
using connectome::NodeSeries;

// The same fit from lagged products, as maps make it.
simo::Feedback feedbackOf(const NodeSeries& series, int order, std::size_t a, std::size_t b) {
  simo::LaggedMoments xx(order), yy(order), xy(order);
  const auto x = series.courseOf(a), y = series.courseOf(b);
  for (std::size_t run = 0; run < series.runs.size(); ++run) {
    for (const connectome::Interval& interval : series.runs[run].intervals) {
      std::vector<double> u(static_cast<std::size_t>(interval.length)), v = u;
      EXPECT_TRUE(simo::detrendRow(x[run] + interval.first, interval.length, u.data()));
      EXPECT_TRUE(simo::detrendRow(y[run] + interval.first, interval.length, v.data()));
      xx.add(u.data(), u.data(), interval.length);
      yy.add(v.data(), v.data(), interval.length);
      xy.add(u.data(), v.data(), interval.length);
    }
  }
  return simo::PairFit::feedback(*simo::PairFit(order).errors(xx, yy, xy));
}

class EdgeSharesOfOrder : public testing::TestWithParam<int> {};

TEST_P(EdgeSharesOfOrder, GiveTheMeasuresOfEachPairsOwnFit) {
  const int order = GetParam();
  const NodeSeries series = made::pooled(19, 5);
  const connectome::EdgeShares shares = connectome::edgeShares(series, order, 1);
  const EdgeMatrix influence = measureOf(shares, Measure::kInfluence),
                   atOnce = measureOf(shares, Measure::kInstantaneous),
                   net = measureOf(shares, Measure::kNet);
  for (std::size_t a = 0; a < series.nodes; ++a) {
    for (std::size_t b = a + 1; b < series.nodes; ++b) {
      const simo::Feedback pair = feedbackOf(series, order, a, b);
      EXPECT_NEAR(influence.at(a, b), pair.xToY, 1e-9);
      EXPECT_NEAR(influence.at(b, a), pair.yToX, 1e-9);
      EXPECT_NEAR(atOnce.at(a, b), pair.instantaneous, 1e-9);
      EXPECT_NEAR(net.at(a, b), pair.xToY - pair.yToX, 1e-9);
      EXPECT_EQ(net.at(b, a), -net.at(a, b));
      EXPECT_EQ(atOnce.at(b, a), atOnce.at(a, b));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Orders, EdgeSharesOfOrder, testing::Values(1, 2, 5));

TEST(EdgeShares, RowsAreSources) {
  const NodeSeries series = made::series(3, 400, 0.5, 1, {{2, 0, 0.5}});
  const EdgeMatrix influence = measureOf(connectome::edgeShares(series, 1, 1), Measure::kInfluence);
  EXPECT_GT(influence.at(2, 0), 0.1);
  EXPECT_LT(influence.at(0, 2), 0.03);
}

TEST(EdgeShares, DoNotDependOnThreads) {
  const NodeSeries series = made::pooled(20, 3);
  const auto one = connectome::edgeShares(series, 2, 1), four = connectome::edgeShares(series, 2, 4);
  for (const Measure measure : connectome::kMeasures) {
    for (std::size_t i = 1; i < one.of(measure).values.size(); ++i) {
      if (i % 21 == 0) continue;  // the diagonal
      EXPECT_EQ(one.of(measure).values[i], four.of(measure).values[i]);
    }
  }
}

TEST(EdgeShares, OfAConstantSeriesAndOfACopyAreMissing) {
  NodeSeries series = made::series(4, 100, 0.5, 1);
  std::fill_n(series.runs[0].nodes.begin() + 100, 100, 7.0F);                                // node 1
  std::copy_n(series.runs[0].nodes.begin() + 200, 100, series.runs[0].nodes.begin() + 300);  // 3 is 2
  const auto shares = connectome::edgeShares(series, 1, 1);
  EXPECT_TRUE(std::isnan(shares.influence.at(0, 1)));
  EXPECT_TRUE(std::isnan(shares.instantaneous.at(1, 2)));
  EXPECT_TRUE(std::isnan(shares.influence.at(2, 3)));
  EXPECT_TRUE(std::isfinite(shares.influence.at(0, 2)));
  EXPECT_TRUE(std::isnan(shares.influence.at(0, 0)));
}

}  // namespace
