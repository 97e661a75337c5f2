#include "inference/run_test.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

using namespace inference;

struct Data {
  std::size_t rows, places;
  std::vector<float> at;
  [[nodiscard]] Values values() const { return {rows, places, at.data()}; }
};

Data noise(std::size_t rows, std::size_t places, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<float> normal;
  Data data{rows, places, std::vector<float>(rows * places)};
  for (float& value : data.at) value = normal(random);
  return data;
}

Model oneSample(std::size_t rows) {
  return {{"mean"}, std::vector<double>(rows, 1.0), {1.0}};
}

TestOptions plain(int shuffles) {
  TestOptions options;
  options.shuffles = shuffles;
  options.enhance = false;
  options.clusterFormingZ = 0;
  options.tail = Tail::kCounted;
  return options;
}

TEST(RunTest, OneSampleTIsTheMeanByItsStandardError) {
  const Data data = noise(12, 50, 1);
  const TestResult result = runTest(oneSample(12), data.values(), spaceOfPlaces(50), plain(100));
  for (std::size_t place = 0; place < 50; ++place) {
    double sum = 0, squares = 0;
    for (std::size_t row = 0; row < 12; ++row) {
      const auto value = static_cast<double>(data.at[row * 50 + place]);
      sum += value, squares += value * value;
    }
    const double mean = sum / 12, variance = (squares - sum * mean) / 11;
    EXPECT_NEAR(result.effect[place], mean, 1e-6);
    EXPECT_NEAR(result.t[place], mean / std::sqrt(variance / 12), 1e-5);
  }
}

// Every sign flip by hand.
TEST(RunTest, ListsAllSignFlipsWhenTheyAreFew) {
  const Data data = noise(6, 7, 2);
  const TestResult result = runTest(oneSample(6), data.values(), spaceOfPlaces(7), plain(64));
  EXPECT_TRUE(result.isExhaustive);
  ASSERT_EQ(result.shuffles, 64U);
  const auto tOf = [&](unsigned flips, std::size_t place) {
    double sum = 0, squares = 0;
    for (std::size_t row = 0; row < 6; ++row) {
      const double value = static_cast<double>(data.at[row * 7 + place]) * ((flips >> row) & 1U ? -1 : 1);
      sum += value, squares += value * value;
    }
    return std::abs(sum / 6 / std::sqrt((squares - sum * sum / 6) / 5 / 6));
  };
  for (std::size_t place = 0; place < 7; ++place) {
    int reached = 0, anywhere = 0;
    for (unsigned flips = 0; flips < 64; ++flips) {
      double largest = 0;
      for (std::size_t other = 0; other < 7; ++other) largest = std::max(largest, tOf(flips, other));
      if (tOf(flips, place) >= tOf(0, place) - 1e-6) ++reached;
      if (largest >= tOf(0, place) - 1e-6) ++anywhere;
    }
    EXPECT_FLOAT_EQ(result.p[place], static_cast<float>(reached / 64.0));
    EXPECT_FLOAT_EQ(result.pFwe[place], static_cast<float>(anywhere / 64.0));
  }
}

}  // namespace
