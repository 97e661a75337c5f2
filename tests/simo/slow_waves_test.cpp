#include "simo/slow_waves.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace {

using Values = std::vector<double>;

Values wave(std::size_t n, int cycles, double height, double phase) {
  Values x;
  for (std::size_t t = 0; t < n; ++t)
    x.push_back(
        height *
        std::cos(2 * std::numbers::pi * cycles * static_cast<double>(t) / static_cast<double>(n) + phase));
  return x;
}

Values sum(Values a, const Values& b) {
  for (std::size_t t = 0; t < a.size(); ++t) a[t] += b[t];
  return a;
}

TEST(SlowWaves, AmplitudesAreHeights) {
  const simo::SlowWaves waves(3, std::vector<bool>(60, true));
  const Values heights = waves.amplitudes(sum(wave(60, 1, 5, 0.3), wave(60, 3, 2, -1)));
  ASSERT_EQ(heights.size(), 3U);
  EXPECT_NEAR(heights[0], 5, 1e-12);
  EXPECT_NEAR(heights[1], 0, 1e-12);
  EXPECT_NEAR(heights[2], 2, 1e-12);
}

TEST(SlowWaves, ScalingKeepsPhasesAndFasterWaves) {
  const simo::SlowWaves waves(2, std::vector<bool>(61, true));
  const Values fast = wave(61, 7, 3, 0.2);
  Values x = sum(sum(wave(61, 1, 5, 0.3), wave(61, 2, 1, 2)), fast);
  waves.scaleTo(Values{10, 0.5}, x);
  const Values expected = sum(sum(wave(61, 1, 10, 0.3), wave(61, 2, 0.5, 2)), fast);
  for (std::size_t t = 0; t < x.size(); ++t) EXPECT_NEAR(x[t], expected[t], 1e-12) << t;
}

TEST(SlowWaves, UnknownValuesPlayNoPart) {
  std::vector<bool> known(80, true);
  Values x = wave(80, 1, 4, 0.5);
  for (std::size_t t = 30; t < 36; ++t) {
    known[t] = false;
    x[t] = std::numeric_limits<double>::quiet_NaN();
  }
  const simo::SlowWaves waves(1, known);
  EXPECT_NEAR(waves.amplitudes(x)[0], 4, 0.5);
  x[30] = 17;
  waves.scaleTo(Values{8}, x);
  EXPECT_EQ(x[30], 17);
  EXPECT_TRUE(std::isnan(x[31]));
  EXPECT_NEAR(waves.amplitudes(x)[0], 8, 0.5);
}

TEST(SlowWaves, AWaveThatIsNotThereStaysAway) {
  const simo::SlowWaves waves(1, std::vector<bool>(40, true));
  Values x(40, 0.0);
  waves.scaleTo(Values{7}, x);
  for (const double value : x) EXPECT_EQ(value, 0);
}

}  // namespace
