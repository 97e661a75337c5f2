#include "connectome/edge_null.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "connectome/edge_tests.h"
#include "connectome/surrogate_shares.h"
#include "tests/connectome/made_series.h"

namespace {

using connectome::Measure;
using connectome::NodeSeries;

// A surrogate put in the place of its node, and fitted in double precision.
connectome::EdgeShares withSurrogate(NodeSeries series, std::size_t node, std::size_t draw, int order) {
  connectome::NodeSurrogates surrogates(series, draw + 1, 9);
  EXPECT_TRUE(surrogates.begin(node));
  const auto course = surrogates.draw(draw);
  NodeSeries replaced = series;
  for (std::size_t run = 0; run < series.runs.size(); ++run) {
    const auto volumes = static_cast<std::size_t>(series.runs[run].volumes);
    std::copy_n(course[run], volumes,
                replaced.runs[run].nodes.begin() + static_cast<std::ptrdiff_t>(node * volumes));
  }
  return connectome::edgeShares(replaced, order, 1);
}

class SurrogateSharesOfOrder : public testing::TestWithParam<int> {};

TEST_P(SurrogateSharesOfOrder, AreThoseOfTheNodeReplaced) {
  const int order = GetParam();
  const NodeSeries series = made::pooled(20, 2);
  const connectome::FixedNodes fixed(series, order, connectome::Given::kNothing, 1);
  connectome::SurrogateShares shares(fixed, order, 70);  // more than one chunk
  connectome::NodeSurrogates surrogates(series, 70, 9);
  ASSERT_TRUE(surrogates.begin(3));
  shares.compute(surrogates);
  for (const std::size_t draw : {0UL, 69UL}) {
    const auto expected = withSurrogate(series, 3, draw, order);
    for (std::size_t other = 0; other < series.nodes; ++other) {
      if (other == 3) continue;
      const std::size_t at = draw * fixed.columns + other;
      EXPECT_NEAR(static_cast<double>(shares.toOthers()[at]), expected.influence.at(3, other), 2e-6);
      EXPECT_NEAR(static_cast<double>(shares.fromOthers()[at]), expected.influence.at(other, 3), 2e-6);
      EXPECT_NEAR(static_cast<double>(shares.instantaneous()[at]), expected.instantaneous.at(3, other), 2e-6);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Orders, SurrogateSharesOfOrder, testing::Values(1, 2, 6));

// Nodes that are copies have surrogates that are copies: one draw flips the same residuals of all.
TEST(NodeSurrogates, OfRelatedNodesAreRelatedAndUnrelatedToTheData) {
  NodeSeries series = made::series(2, 400, 0.5, 1);
  std::copy_n(series.runs[0].nodes.begin(), 400, series.runs[0].nodes.begin() + 400);
  connectome::NodeSurrogates a(series, 2, 1), b(series, 2, 1);
  ASSERT_TRUE(a.begin(0) && b.begin(1));
  const float *first = a.draw(1)[0], *second = b.draw(1)[0], *own = series.runs[0].nodes.data();
  double related = 0, unrelated = 0, size = 0;
  for (std::size_t t = 0; t < 400; ++t) {
    related += static_cast<double>(first[t]) * static_cast<double>(second[t]);
    unrelated += static_cast<double>(first[t]) * (static_cast<double>(own[t]) - 100);
    size += static_cast<double>(first[t]) * static_cast<double>(first[t]);
  }
  EXPECT_NEAR(related / size, 1, 1e-6);
  EXPECT_LT(std::abs(unrelated / size), 0.4);
}

TEST(EdgeNull, DoesNotDependOnThreads) {
  const NodeSeries series = made::pooled(9, 6);
  const auto one = connectome::edgeNull(series, 1, {100, 5, 1}),
             three = connectome::edgeNull(series, 1, {100, 5, 3});
  for (const Measure measure : connectome::kMeasures) {
    EXPECT_EQ(one.maxima(measure), three.maxima(measure));
    EXPECT_EQ(one.counts(measure).total(), three.counts(measure).total());
    for (const float z : {0.1F, 1.0F, 8.0F})
      EXPECT_EQ(one.counts(measure).atLeast(z), three.counts(measure).atLeast(z));
    EXPECT_EQ(one.scale(measure, 2, 5), three.scale(measure, 2, 5));
  }
}

TEST(EdgeNull, CountsEveryEdgeOfEveryDrawOfBothEnds) {
  const auto null = connectome::edgeNull(made::series(5, 150, 0.4, 3), 1, {100, 1, 2});
  EXPECT_EQ(null.counts(Measure::kInfluence).total(), 5U * 4 * 2 * 100);
  EXPECT_EQ(null.counts(Measure::kInstantaneous).total(), 5U * 4 * 100);
  EXPECT_EQ(null.counts(Measure::kNet).total(), 5U * 4 * 100);
  EXPECT_EQ(null.maxima(Measure::kNet).size(), 200U);
}

TEST(EdgeNull, HasTheScaleOfALeastSquaresFitOfUnrelatedSeries) {
  const auto null = connectome::edgeNull(made::series(6, 400, 0.4, 3), 2, {200, 1, 2});
  for (std::size_t b = 1; b < 6; ++b) EXPECT_NEAR(null.scale(Measure::kInfluence, 0, b), 2.0 / 398, 1e-3);
}

TEST(EdgeTests, FindAPlantedNetworkAndNothingElse) {
  const NodeSeries series = made::series(12, 500, 0.5, 8, {{0, 1, 0.4}, {3, 7, 0.4}, {10, 2, 0.4}});
  const auto shares = connectome::edgeShares(series, 1, 2);
  const auto null = connectome::edgeNull(series, 1, {200, 2, 2});
  for (const Measure measure : {Measure::kInfluence, Measure::kNet}) {
    const auto tests = testEdges(shares, measure, null, 1);
    std::vector<std::pair<std::size_t, std::size_t>> found;
    for (std::size_t a = 0; a < 12; ++a)
      for (std::size_t b = 0; b < 12; ++b)
        if (tests.pFamilyWise.at(a, b) <= 0.05 && shares.of(measure).at(a, b) > 0) found.emplace_back(a, b);
    EXPECT_EQ(found, (std::vector<std::pair<std::size_t, std::size_t>>{{0, 1}, {3, 7}, {10, 2}}));
    EXPECT_LT(tests.q.at(0, 1), 0.01);
  }
}

TEST(EdgeTests, EqualCountingByHand) {
  const NodeSeries series = made::series(6, 200, 0.5, 8, {{0, 1, 0.3}});
  const auto shares = connectome::edgeShares(series, 1, 1);
  const auto null = connectome::edgeNull(series, 1, {50, 2, 1});
  for (const Measure measure : connectome::kMeasures) {
    const auto tests = testEdges(shares, measure, null, 1);
    EXPECT_EQ(tests.edges, measure == Measure::kInfluence ? 30U : 15U);
    EXPECT_TRUE(std::isnan(tests.pFamilyWise.at(2, 2)));
    const auto maxima = null.maxima(measure);
    for (const auto& [from, to] : {std::pair{0U, 1U}, {1U, 0U}, {3U, 5U}}) {
      const auto scaled =
          static_cast<float>(std::abs(shares.of(measure).at(from, to)) / null.scale(measure, from, to));
      const auto reach = std::ranges::count_if(maxima, [&](float largest) { return largest >= scaled; });
      EXPECT_DOUBLE_EQ(tests.pFamilyWise.at(from, to),
                       (1 + static_cast<double>(reach)) / (1 + static_cast<double>(maxima.size())));
      const auto& counts = null.counts(measure);
      EXPECT_DOUBLE_EQ(tests.p.at(from, to), (1 + static_cast<double>(counts.atLeast(scaled))) /
                                                 (1 + static_cast<double>(counts.total())));
    }
  }
}

TEST(EdgeTests, AdjustPAsBenjaminiAndHochbergDo) {
  const std::vector<double> p{0.01, std::nan(""), 0.04, 0.03, 0.5};
  const auto q = connectome::adjustedQ(p, 1);
  EXPECT_DOUBLE_EQ(q[0], 0.04);
  EXPECT_TRUE(std::isnan(q[1]));
  EXPECT_NEAR(q[2], 0.16 / 3, 1e-12);
  EXPECT_NEAR(q[3], 0.16 / 3, 1e-12);
  EXPECT_DOUBLE_EQ(q[4], 0.5);
  EXPECT_DOUBLE_EQ(connectome::adjustedQ(p, 1.5)[0], 0.06);
}

TEST(MagnitudeCounts, CountWhatReachesAMagnitude) {
  connectome::MagnitudeCounts counts;
  for (const float value : {0.0F, 0.5F, 1.0F, 2.0F, 1e9F}) counts.add(value);
  counts.close();
  EXPECT_EQ(counts.total(), 5U);
  EXPECT_EQ(counts.atLeast(0.6F), 3U);
  EXPECT_EQ(counts.atLeast(1.0F), 3U);
  EXPECT_EQ(counts.atLeast(3.0F), 1U);
}

}  // namespace
