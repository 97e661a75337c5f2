#include "tav/null_p.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(),
                kInfinity = std::numeric_limits<float>::infinity();

using Values = std::vector<float>;

Values pOf(const Values& observed, const Values& null) {
  return tav::nullPValues(tav::StoredMap({observed}), tav::StoredMap({null}));
}

float p(int reaching, int nulls) {
  return static_cast<float>((1.0 + reaching) / (1.0 + nulls));
}

TEST(NullP, CountsNullMagnitudesFromTheValueOn) {
  const Values found = pOf({3, -2, 0.5F, 9}, {1, -2, 2.5F, -4});
  EXPECT_EQ(found, (Values{p(1, 4), p(3, 4), p(4, 4), p(0, 4)}));
}

TEST(NullP, ZerosAndWhatIsNotFiniteAreNoNullValues) {
  EXPECT_EQ(pOf({2}, {0, kNan, kInfinity, -kInfinity, 1, 3}), (Values{p(1, 2)}));
}

TEST(NullP, WhatWasNotComputedHasNone) {
  const Values found = pOf({0, kNan, kInfinity, -1}, {1, 3});
  for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(std::isnan(found[i])) << i;
  EXPECT_EQ(found[3], p(2, 2));
}

TEST(NullP, IsOneWithoutNullValues) {
  EXPECT_EQ(pOf({2, -7}, {}), (Values{1, 1}));
}

TEST(NullP, EqualsCountingByHand) {
  std::mt19937 random(2);
  std::normal_distribution<float> noise;
  Values observed(500), null(3000);
  for (float& value : null) value = std::round(noise(random) * 50) / 50;  // ties
  for (float& value : observed) value = std::round(noise(random) * 50) / 50 + (value == 0 ? 0.02F : 0);
  const Values found = pOf(observed, null);
  const auto nulls = std::count_if(null.begin(), null.end(), [](float value) { return value != 0; });
  for (std::size_t i = 0; i < observed.size(); ++i) {
    if (observed[i] == 0) continue;
    const auto reaching = std::count_if(null.begin(), null.end(), [&](float value) {
      return value != 0 && std::fabs(value) >= std::fabs(observed[i]);
    });
    EXPECT_EQ(found[i], p(static_cast<int>(reaching), static_cast<int>(nulls))) << i;
  }
}

TEST(NullP, TakesPiecesAsOneMap) {
  const Values first = {1, 2}, second = {3}, null = {0.5F, 2.5F};
  const tav::StoredMap observed({std::span(first), std::span(second)});
  EXPECT_EQ(tav::nullPValues(observed, tav::StoredMap({std::span(null)})), pOf({1, 2, 3}, null));
}

}  // namespace
