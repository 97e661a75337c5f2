#include "tav/search_curve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "tav/tail_thresholds.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(),
                kInfinity = std::numeric_limits<float>::infinity();

using Values = std::vector<float>;

tav::SearchCurve curveOf(const Values& observed, const Values& null,
                         const std::vector<std::size_t>& alsoAt = {}) {
  return tav::searchCurve(tav::StoredMap({observed}), tav::StoredMap({null}), alsoAt);
}

TEST(SearchCurve, HasEveryRankOfASmallMap) {
  const tav::SearchCurve curve = curveOf({3, -5, 0, 1, kNan}, {2, -3, 0, 4, kNan, kInfinity, 0.5F});
  EXPECT_EQ(curve.voxels, 4U);
  ASSERT_EQ(curve.points.size(), 3U);
  const Values magnitudes = {5, 3, 1};
  const std::vector<double> reaching = {1, 3, 4};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(curve.points[i].rank, i + 1);
    EXPECT_EQ(curve.points[i].magnitude, magnitudes[i]);
    EXPECT_EQ(curve.points[i].p, (1 + reaching[i]) / 7) << i;
  }
}

TEST(SearchCurve, IsEmptyWithoutANumber) {
  EXPECT_TRUE(curveOf({0, kNan}, {1, 2}).empty());
  EXPECT_EQ(curveOf({0, kNan}, {1, 2}).voxels, 1U);
}

TEST(SearchCurve, SpreadsItsRanksOverTheLogarithm) {
  Values observed(100000);
  for (std::size_t i = 0; i < observed.size(); ++i) observed[i] = static_cast<float>(i + 1);
  const std::vector<std::size_t> alsoAt = {7777, 77777, 100001, 0};
  const auto points = curveOf(observed, {1}, alsoAt).points;
  EXPECT_LE(points.size(), tav::kMostSearchPoints);
  EXPECT_EQ(points.front().rank, 1U);
  EXPECT_EQ(points.back().rank, 100000U);
  const auto hasRank = [&](std::size_t rank) {
    return std::any_of(points.begin(), points.end(), [&](const auto& point) { return point.rank == rank; });
  };
  EXPECT_TRUE(hasRank(7777) && hasRank(77777));
  for (std::size_t i = 1; i < points.size(); ++i) {
    ASSERT_LT(points[i - 1].rank, points[i].rank);
    if (points[i].rank < 50) continue;
    EXPECT_LT(static_cast<double>(points[i].rank), 1.08 * static_cast<double>(points[i - 1].rank));
  }
}

// At the rank of every threshold p is within the bound of its q, and at no later rank.
TEST(SearchCurve, SaysWhatTheSearchDecidedBy) {
  std::mt19937 random(3);
  std::normal_distribution<float> noise;
  Values observed(400), null(2000);
  for (float& value : null) value = std::round(noise(random) * 64) / 64;
  for (std::size_t i = 0; i < observed.size(); ++i)
    observed[i] = std::round(noise(random) * 64) / 64 + (i < 60 ? 5.0F : 0.0F);
  const std::vector<float> qs = {0.01F, 0.05F, 0.1F};
  const auto thresholds = tav::searchTailThresholds(tav::ThresholdRule::kStepUp, qs,
                                                    tav::StoredMap({observed}), tav::StoredMap({null}), 1);
  std::vector<std::size_t> ranks(400);
  for (std::size_t i = 0; i < ranks.size(); ++i) ranks[i] = i + 1;
  const tav::SearchCurve curve = curveOf(observed, null, ranks);
  for (std::size_t k = 0; k < qs.size(); ++k) {
    std::size_t last = 0;
    float magnitude = 0;
    for (const tav::SearchPoint& point : curve.points) {
      const double bound =
          static_cast<double>(point.rank) / static_cast<double>(curve.voxels) * static_cast<double>(qs[k]);
      if (point.p <= bound) last = point.rank, magnitude = point.magnitude;
    }
    EXPECT_GT(last, 0U);
    EXPECT_EQ(last, thresholds[k].nrPassing);
    EXPECT_EQ(magnitude, thresholds[k].threshold);
  }
}

TEST(SearchCurve, ScalesNullValuesAsTheirMapDoes) {
  class Doubled : public tav::StoredMap {
   public:
    using StoredMap::StoredMap;
    [[nodiscard]] float scale() const override { return 2; }
  };
  const Values observed = {3}, null = {1, 1.5F, 2};
  const auto curve = tav::searchCurve(tav::StoredMap({observed}), Doubled({std::span(null)}), {});
  EXPECT_EQ(curve.points.at(0).p, 3.0 / 4);
}

}  // namespace
