#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "inference/maxima_p.h"
#include "inference/tail.h"

namespace {

using namespace inference;

std::vector<float> upTo(int count) {
  std::vector<float> values;
  for (int i = 1; i <= count; ++i) values.push_back(static_cast<float>(i));
  return values;
}

std::vector<float> exponential(int count, unsigned seed) {
  std::mt19937 random(seed);
  std::exponential_distribution<float> draw;
  std::vector<float> values;
  for (int i = 0; i < count; ++i) values.push_back(5 + draw(random));
  return values;
}

TEST(NullMaxima, CountTheDataAmongTheShuffles) {
  const NullMaxima null = nullOfMaxima(upTo(99), 200, false);
  EXPECT_DOUBLE_EQ(pByMaxima(null, 200), 0.01);
  EXPECT_DOUBLE_EQ(pByMaxima(null, 99.5), 0.01);
  EXPECT_DOUBLE_EQ(pByMaxima(null, 99), 0.02);  // ties count
  EXPECT_DOUBLE_EQ(pByMaxima(null, 0), 1);
}

TEST(NullMaxima, HaveAThresholdAtWhichPIsTheLevel) {
  const NullMaxima null = nullOfMaxima(upTo(99), 99.5F, false);
  EXPECT_DOUBLE_EQ(valueAtLevel(null, 0.05), 96);
  EXPECT_DOUBLE_EQ(pByMaxima(null, 96), 0.05);
  EXPECT_TRUE(std::isinf(valueAtLevel(nullOfMaxima(upTo(18), 30, false), 0.05)));
  EXPECT_DOUBLE_EQ(valueAtLevel(nullOfMaxima(upTo(19), 30, false), 0.05), 30);
  EXPECT_TRUE(std::isinf(valueAtLevel(nullOfMaxima(std::vector<float>(99, 2.0F), 2, false), 0.05)));
}

TEST(NullMaxima, HaveATailOfKnownProbability) {
  const NullMaxima null = nullOfMaxima(exponential(900, 1), 5, true);
  ASSERT_TRUE(null.tail);
  for (const double p : {0.2, 0.05, 0.005})
    EXPECT_NEAR(std::log(pByMaxima(null, 5 - std::log(p))), std::log(p), 0.35);
  const double value = valueAtLevel(null, 0.01);
  EXPECT_NEAR(pByMaxima(null, value), 0.01, 1e-9);
}

TEST(NullMaxima, ClaimNoProbabilityFarBelowTheirNumber) {
  const NullMaxima null = nullOfMaxima(exponential(99, 2), 5, true);
  EXPECT_DOUBLE_EQ(pByMaxima(null, 1000), 1e-4);
}

TEST(NullMaxima, KeepTheirCountsBelowTheTail) {
  const std::vector<float> maxima = exponential(200, 3);
  const NullMaxima smooth = nullOfMaxima(maxima, 5, true), counted = nullOfMaxima(maxima, 5, false);
  EXPECT_EQ(pByMaxima(smooth, 5.2), pByMaxima(counted, 5.2));
  EXPECT_NE(pByMaxima(smooth, 8), pByMaxima(counted, 8));
}

TEST(Tail, IsNotFittedToFewOrEqualValues) {
  EXPECT_FALSE(fitTail(exponential(60, 4)));
  EXPECT_FALSE(fitTail(std::vector<float>(500, 0.0F)));
  EXPECT_TRUE(fitTail(exponential(80, 5)));
}

// A bounded distribution: 1 - (1 - u)^(1/2) has the shape -1/2.
TEST(Tail, RecoversAShape) {
  std::vector<float> values;
  for (int i = 0; i < 4000; ++i) values.push_back(1 - std::sqrt(1 - (static_cast<float>(i) + 0.5F) / 4000));
  const auto tail = fitTail(values);
  ASSERT_TRUE(tail);
  EXPECT_NEAR(tail->shape, -0.5, 0.01);
  EXPECT_NEAR(tail->share, 0.25, 1e-9);
  EXPECT_NEAR(tail->p(0.9), 0.01, 1e-4);
  EXPECT_EQ(tail->p(1.2), tail->leastP);
}

}  // namespace
