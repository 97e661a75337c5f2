#include "results/map_histogram.h"

#include <gtest/gtest.h>

#include <limits>
#include <numeric>
#include <random>

namespace study {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(),
                kInfinity = std::numeric_limits<float>::infinity();

using Values = std::vector<float>;

MapHistogram histogramOf(const Values& values, const std::vector<std::uint8_t>& codes, const Values& null) {
  return mapHistogram(values.data(), codes, tav::StoredMap({null}));
}

MapHistogram histogramOf(const Values& values, const Values& null) {
  return histogramOf(values, std::vector<std::uint8_t>(values.size(), 1), null);
}

std::size_t sum(const std::vector<std::size_t>& counts) {
  return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

// Each bin holds its lower edge, the last one both.
TEST(MapHistogram, PutsValuesBetweenTheirEdges) {
  const MapHistogram found = histogramOf({0, 0.5F, 1, 63, 63.5F, 64}, {1, 32});
  ASSERT_EQ(found.edges.size(), kHistogramBins + 1);
  for (std::size_t i = 0; i <= kHistogramBins; ++i) EXPECT_EQ(found.edges[i], static_cast<double>(i));
  EXPECT_EQ(found.observed[0], 2U);
  EXPECT_EQ(found.observed[1], 1U);
  EXPECT_EQ(found.observed[63], 3U);
  EXPECT_EQ(sum(found.observed), 6U);
  EXPECT_EQ(found.null[1], 1U);
  EXPECT_EQ(found.null[32], 1U);
}

TEST(MapHistogram, CountsComputedVoxelsOutsideTheReferenceAlone) {
  const auto inside = static_cast<std::uint8_t>(StatusCode::kInsideReference);
  const MapHistogram found = histogramOf({-1, 100, 3, -200, 0}, {1, inside, 1, 0, 2}, {1});
  EXPECT_EQ(sum(found.observed), 2U);
  EXPECT_EQ(found.edges.front(), -1);
  EXPECT_EQ(found.edges.back(), 3);
}

TEST(MapHistogram, LosesNoValueThatIsANumber) {
  const MapHistogram found = histogramOf({1, kInfinity, -kInfinity, kNan, 2}, {1, kNan, 0, -kInfinity, 2});
  EXPECT_EQ(sum(found.observed), 2U);
  EXPECT_EQ(found.observedBelow, 1U);
  EXPECT_EQ(found.observedAbove, 1U);
  EXPECT_EQ(sum(found.null), 2U);  // zeros stand for what could not be computed
  EXPECT_EQ(found.nullBelow, 1U);
  EXPECT_EQ(found.nullAbove, 0U);
}

// One in two thousand at either end is left to Below and Above.
TEST(MapHistogram, SpansTheCentralNullValues) {
  Values null(20000);
  std::mt19937 random(4);
  std::uniform_real_distribution<float> within(-10, 10);
  for (float& value : null) value = within(random);
  for (std::size_t i = 0; i < 5; ++i) null[i] = 1e6F, null[i + 5] = -1e6F;
  const MapHistogram found = histogramOf({0.5F}, null);
  EXPECT_NEAR(found.edges.front(), -10, 0.1);
  EXPECT_NEAR(found.edges.back(), 10, 0.1);
  EXPECT_GE(found.nullAbove, 5U);
  EXPECT_LE(found.nullAbove, 10U);
  EXPECT_GE(found.nullBelow, 5U);
  EXPECT_LE(found.nullBelow, 10U);
  EXPECT_EQ(sum(found.null) + found.nullBelow + found.nullAbove, 20000U);
}

TEST(MapHistogram, SpansFewNullValuesWhole) {
  const MapHistogram found = histogramOf({0.5F}, {-3, 7});
  EXPECT_EQ(found.edges.front(), -3);
  EXPECT_EQ(found.edges.back(), 7);
}

TEST(MapHistogram, HasRoomForOneValueAndForNone) {
  const MapHistogram one = histogramOf({5}, {5}), none = histogramOf({}, {});
  EXPECT_EQ(one.observed[0], 1U);
  EXPECT_EQ(one.null[0], 1U);
  EXPECT_GT(one.edges.back(), 5);
  EXPECT_EQ(none.edges.size(), kHistogramBins + 1);
  EXPECT_EQ(sum(none.observed), 0U);
}

}  // namespace
}  // namespace study
