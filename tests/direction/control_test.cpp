#include "direction/control.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using direction::Control;
using direction::Interval;
using direction::RunSeries;
using Series = std::vector<float>;

struct Pair {
  Series reference, voxel;
};

Series autoregressive(double a, std::size_t n, std::mt19937& random) {
  std::normal_distribution<double> normal;
  Series x(n);
  double state = 0;
  for (int i = 0; i < 100; ++i) state = a * state + normal(random);
  for (float& value : x) value = static_cast<float>(state = a * state + normal(random));
  return x;
}

void addNoise(double sd, Series& x, std::mt19937& random) {
  std::normal_distribution<double> normal(0, sd);
  for (float& value : x) value += static_cast<float>(normal(random));
}

// The same signal at the same moment, with noise of its own in each.
Pair shared(double referenceNoise, double voxelNoise, unsigned seed) {
  std::mt19937 random(seed);
  const Series signal = autoregressive(0.9, 300, random);
  Pair pair{signal, signal};
  addNoise(referenceNoise, pair.reference, random);
  addNoise(voxelNoise, pair.voxel, random);
  return pair;
}

// The voxel follows one volume later.
Pair driven(double noise, unsigned seed) {
  std::mt19937 random(seed);
  const Series signal = autoregressive(0.6, 301, random);
  Pair pair{{signal.begin() + 1, signal.end()}, {signal.begin(), signal.end() - 1}};
  addNoise(0.3, pair.reference, random);
  addNoise(noise, pair.voxel, random);
  return pair;
}

direction::Verdict judge(const Pair& pair, unsigned seed, int order = 1) {
  const std::vector<Interval> whole = {{0, static_cast<int>(pair.voxel.size())}};
  Control control(order, {static_cast<int>(pair.voxel.size())});
  simo::RandomStream random(seed);
  return control.judge({{pair.reference, pair.voxel, &whole}}, random).value();
}

// Without a control every one of these is called "the cleaner one leads".
TEST(DirectionControl, UnequalNoiseIsNoDirection) {
  int supported = 0, misled = 0;
  for (unsigned seed = 0; seed < 100; ++seed) {
    const direction::Verdict verdict = judge(shared(0.6, 3, seed), seed + 1);
    if (verdict.dtav > 0) ++misled;
    if (verdict.isSupported()) ++supported;
  }
  EXPECT_GE(misled, 95);
  EXPECT_LE(supported, 11);  // 5 expected
}

TEST(DirectionControl, ALeadIsSupportedOnItsSide) {
  for (const bool isForwards : {true, false}) {
    int supported = 0;
    for (unsigned seed = 0; seed < 40; ++seed) {
      Pair pair = driven(1, seed);
      if (!isForwards) std::swap(pair.reference, pair.voxel);
      const direction::Verdict verdict = judge(pair, seed + 1);
      if (verdict.isSupported()) {
        ++supported;
        EXPECT_EQ(verdict.dtav > 0, isForwards);
      }
    }
    EXPECT_GE(supported, 38);
  }
}

// A literal computation with reversed series.
TEST(DirectionControl, TheDifferenceIsThatOfTheReversedSeries) {
  Pair pair = driven(0.5, 7);
  const double forwards = judge(pair, 1, 2).dtav, difference = judge(pair, 1, 2).difference;
  std::reverse(pair.reference.begin(), pair.reference.end());
  std::reverse(pair.voxel.begin(), pair.voxel.end());
  EXPECT_NEAR(judge(pair, 1, 2).dtav, forwards - difference, 1e-9);
  EXPECT_NEAR(judge(pair, 1, 2).difference, -difference, 1e-9);
}

TEST(DirectionControl, IntervalsAndRunsAreOneModel) {
  const Pair a = driven(0.5, 8), b = driven(0.5, 9);
  const std::vector<Interval> parts = {{0, 120}, {150, 140}}, whole = {{0, 300}};
  Control control(1, {300, 300});
  simo::RandomStream random(3);
  const auto verdict =
      control.judge({{a.reference, a.voxel, &parts}, {b.reference, b.voxel, &whole}}, random);
  ASSERT_TRUE(verdict);
  EXPECT_TRUE(verdict->isSupported());
}

TEST(DirectionControl, DegeneratePairsHaveNoVerdict) {
  const Pair pair = driven(0.5, 10);
  const std::vector<Interval> whole = {{0, 300}};
  Control control(1, {300});
  simo::RandomStream random(4);
  EXPECT_FALSE(control.judge({{pair.reference, pair.reference, &whole}}, random));
  const Series flat(300, 5.0F);
  EXPECT_FALSE(control.judge({{pair.reference, flat, &whole}}, random));
}

TEST(DirectionControl, TheSameStreamGivesTheSameVerdict) {
  const Pair pair = shared(1, 1, 11);
  EXPECT_EQ(judge(pair, 5).reached, judge(pair, 5).reached);
}

}  // namespace
