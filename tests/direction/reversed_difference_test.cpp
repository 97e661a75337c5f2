#include "direction/reversed_difference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "simo/random_stream.h"

namespace {

using direction::Control;
using direction::Interval;
using direction::ReversedDifference;
using Series = std::vector<float>;

Series noise(std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<float> normal;
  Series x(n);
  for (float& value : x) value = normal(random);
  return x;
}

// The voxel follows the reference one volume later.
Series follower(const Series& reference, float share, unsigned seed) {
  Series y = noise(reference.size(), seed);
  for (std::size_t t = 1; t < y.size(); ++t) y[t] += share * reference[t - 1] + 0.3F * y[t - 1];
  return y;
}

const std::vector<Interval> kTwo = {{5, 90}, {120, 70}};

TEST(ReversedDifference, IsThatOfTheVerdicts) {
  for (const int order : {1, 3}) {
    const Series reference = noise(200, 1), voxel = follower(reference, 0.5F, 2);
    Control control(order, {200});
    simo::RandomStream random(4);
    const auto verdict = control.judge({{reference, voxel, &kTwo}}, random);
    ReversedDifference difference(order, {{reference, kTwo}});
    EXPECT_NEAR(difference.of({voxel}).value(), verdict.value().difference, 1e-9);
  }
}

TEST(ReversedDifference, ChangesSidesWhenTheTwoDo) {
  const Series reference = noise(200, 5), voxel = follower(reference, 0.4F, 6);
  ReversedDifference forwards(2, {{reference, kTwo}}), swapped(2, {{voxel, kTwo}});
  EXPECT_NEAR(forwards.of({voxel}).value(), -swapped.of({reference}).value(), 1e-9);
}

TEST(ReversedDifference, PoolsRuns) {
  const Series a = noise(150, 7), b = noise(100, 8);
  const Series ofA = follower(a, 0.5F, 9), ofB = follower(b, 0.5F, 10);
  ReversedDifference both(1, {{a, {{0, 150}}}, {b, {{0, 100}}}}), alone(1, {{a, {{0, 150}}}});
  EXPECT_NE(both.of({ofA, ofB}).value(), alone.of({ofA}).value());
  EXPECT_GT(both.of({ofA, ofB}).value(), 0.2);
}

TEST(ReversedDifference, HasNoneForAConstantVoxel) {
  const Series reference = noise(150, 11);
  ReversedDifference difference(1, {{reference, {{0, 150}}}});
  EXPECT_EQ(difference.of({Series(150, 3.0F)}), std::nullopt);
  EXPECT_TRUE(difference.of({noise(150, 12)}).has_value()) << "the next voxel is as before";
}

// Unequal noise on one signal gives DTAV a sign, and none to D.
TEST(ReversedDifference, IsZeroOnAverageForSignalsSharedAtTheSameMoment) {
  double sum = 0, squares = 0;
  constexpr int kPairs = 400;
  for (unsigned seed = 0; seed < kPairs; ++seed) {
    Series signal = noise(300, 1000 + seed);
    for (std::size_t t = 1; t < signal.size(); ++t) signal[t] += 0.9F * signal[t - 1];
    Series clean = signal, noisy = signal;
    const Series little = noise(300, 5000 + seed), much = noise(300, 9000 + seed);
    for (std::size_t t = 0; t < 300; ++t) clean[t] += 0.3F * little[t], noisy[t] += 2.0F * much[t];
    const double d = ReversedDifference(1, {{clean, {{0, 300}}}}).of({noisy}).value();
    sum += d, squares += d * d;
  }
  const double mean = sum / kPairs, error = std::sqrt((squares / kPairs - mean * mean) / kPairs);
  EXPECT_LT(std::fabs(mean), 4 * error);
}

}  // namespace
