#include "tav/tail_thresholds.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "tav/fdr_thresholds.h"

namespace {

using tav::MapPieces;
using tav::MapThreshold;
using tav::ThresholdRule;

// A map with zeros, ties, both signs and now and then NaN, infinities and denormal numbers.
std::vector<float> makeMap(std::mt19937& random, std::size_t size, float shift) {
  std::exponential_distribution<float> magnitude;
  std::uniform_int_distribution<int> kind(0, 999);
  const int specials = kind(random) < 300 ? 20 : 0, zeros = kind(random), ties = kind(random);
  std::vector<float> map(size);
  for (float& value : map) {
    value = magnitude(random) * (kind(random) < 100 ? shift : 1.0F);
    if (ties < 300) value = std::round(value * 8.0F) / 8.0F;
    if (kind(random) < zeros) value = 0.0F;
    if (kind(random) < 500) value = -value;
    const int special = kind(random);
    if (special < specials) value = std::numeric_limits<float>::quiet_NaN();
    if (special == specials + 1) value = std::numeric_limits<float>::infinity();
    if (special == specials + 2) value = std::numeric_limits<float>::denorm_min();
  }
  return map;
}

MapPieces cut(const std::vector<float>& map, std::mt19937& random) {
  MapPieces pieces;
  std::uniform_int_distribution<std::size_t> length(1, std::max<std::size_t>(map.size(), 1));
  for (std::size_t first = 0; first < map.size();) {
    const std::size_t count = std::min(length(random), map.size() - first);
    pieces.emplace_back(map.data() + first, count);
    first += count;
  }
  return pieces;
}

void expectSame(ThresholdRule rule, std::size_t maxSize, int rounds) {
  std::mt19937 random(5);
  std::uniform_int_distribution<std::size_t> size(0, maxSize);
  for (int round = 0; round < rounds; ++round) {
    const float shift = round % 2 == 0 ? 4.0F : 1.0F;
    const auto observed = makeMap(random, size(random), shift), null = makeMap(random, size(random), 1.0F);
    std::vector<float> observedMagnitudes, nullMagnitudes;
    tav::appendMagnitudes(observed, observedMagnitudes);
    tav::appendMagnitudes(null, nullMagnitudes);
    const std::vector<float> qs = {0.1F, 0.01F, 0.05F, 0.9F};
    const int cv = 1 + round % 3 % 2;
    const auto expected = tav::searchThresholds(rule, qs, observedMagnitudes, nullMagnitudes, cv);
    const auto found = tav::searchTailThresholds(rule, qs, tav::StoredMap(cut(observed, random)),
                                                 tav::StoredMap(cut(null, random)), cv);
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t k = 0; k < found.size(); ++k) {
      ASSERT_EQ(found[k].q, expected[k].q);
      ASSERT_EQ(found[k].threshold, expected[k].threshold) << "round " << round << " q " << found[k].q;
      ASSERT_EQ(found[k].nrPassing, expected[k].nrPassing) << "round " << round << " q " << found[k].q;
    }
  }
}

TEST(TailThresholds, WalkLikeAFullSortOnSmallMaps) {
  expectSame(ThresholdRule::kWalk, 60, 4000);
}
TEST(TailThresholds, WalkLikeAFullSortOnLargeMaps) {
  expectSame(ThresholdRule::kWalk, 20000, 120);
}
TEST(TailThresholds, StepUpLikeAFullSortOnSmallMaps) {
  expectSame(ThresholdRule::kStepUp, 60, 4000);
}
TEST(TailThresholds, StepUpLikeAFullSortOnLargeMaps) {
  expectSame(ThresholdRule::kStepUp, 20000, 120);
}

std::vector<MapThreshold> searchOne(ThresholdRule rule, float q, const std::vector<float>& observed,
                                    const std::vector<float>& null) {
  return tav::searchTailThresholds(rule, {q}, tav::StoredMap({observed}), tav::StoredMap({null}), 1);
}

// p and bound are the same number: 1/4 at rank 1 of 2 for q = 1/2. All of it is exact in binary.
TEST(TailThresholds, ACandidateThatMeetsItsBoundExactlyPasses) {
  const auto stepUp = searchOne(ThresholdRule::kStepUp, 0.5F, {10.0F, 1.0F}, {2.0F, 3.0F, 4.0F});
  EXPECT_EQ(stepUp[0].threshold, 10.0F);
  EXPECT_EQ(stepUp[0].nrPassing, 1U);
  const auto walk = searchOne(ThresholdRule::kWalk, 0.5F, {10.0F, 9.0F}, {20.0F, 1.0F, 2.0F, 3.0F});
  EXPECT_EQ(walk[0].threshold, 0.0F);
  EXPECT_EQ(walk[0].nrPassing, 2U);
}

TEST(TailThresholds, AreZeroForEmptyMaps) {
  for (const MapThreshold& result : tav::searchTailThresholds(ThresholdRule::kWalk, {0.05F, 0.01F},
                                                              tav::StoredMap({}), tav::StoredMap({}), 2)) {
    EXPECT_EQ(result.threshold, 0.0F);
    EXPECT_FALSE(result.anyPasses());
  }
}

}  // namespace
