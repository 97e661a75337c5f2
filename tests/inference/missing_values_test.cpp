#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "inference/run_test.h"
#include "tests/inference/made_data.h"

namespace {

using namespace inference;

TEST(MissingValues, LeaveAPlaceTheModelOfItsOtherRows) {
  made::Data data = made::noise(10, 40, 1);
  for (std::size_t place = 0; place < 40; ++place)
    if (place % 3 != 0) data.of(place % 10, place) = made::kNothing;
  const TestResult result =
      runTest(made::twoSamples(10), data.values(), spaceOfPlaces(40), made::permuted(50));
  for (std::size_t place = 0; place < 40; ++place) {
    double sum[2] = {}, squares[2] = {}, count[2] = {};
    for (std::size_t row = 0; row < 10; ++row) {
      const double value = data.value(row, place);
      if (std::isnan(value)) continue;
      sum[row / 5] += value, squares[row / 5] += value * value, ++count[row / 5];
    }
    const double effect = sum[0] / count[0] - sum[1] / count[1];
    const double rest = squares[0] - sum[0] * sum[0] / count[0] + squares[1] - sum[1] * sum[1] / count[1];
    const double error = std::sqrt(rest / (count[0] + count[1] - 2) * (1 / count[0] + 1 / count[1]));
    EXPECT_NEAR(result.effect[place], effect, 1e-5);
    EXPECT_NEAR(result.t[place], effect / error, 1e-5);
    EXPECT_EQ(result.rows[place], place % 3 == 0 ? 10 : 9);
  }
}

TEST(MissingValues, AreAllowedUpToAShareOfTheRows) {
  made::Data data = made::noise(10, 3, 2);
  data.of(0, 1) = data.of(4, 1) = made::kNothing;
  data.of(0, 2) = data.of(4, 2) = data.of(5, 2) = made::kNothing;
  const TestResult result = runTest(made::oneSample(10), data.values(), spaceOfPlaces(3), made::plain(50));
  EXPECT_EQ(result.tested, 2U);
  EXPECT_FALSE(std::isnan(result.t[1]));
  EXPECT_TRUE(std::isnan(result.t[2]));
  EXPECT_TRUE(std::isnan(result.pFwe[2]));
  EXPECT_EQ(result.rows[2], 7);
}

TEST(MissingValues, LeaveAPlaceUntestedWhereAGroupIsGone) {
  made::Data data = made::noise(6, 2, 3);
  for (std::size_t row = 0; row < 3; ++row) data.of(row, 1) = made::kNothing;
  TestOptions options = made::permuted(20);
  options.smallestShare = 0.5;
  const TestResult result = runTest(made::twoSamples(6), data.values(), spaceOfPlaces(2), options);
  EXPECT_FALSE(std::isnan(result.t[0]));
  EXPECT_TRUE(std::isnan(result.t[1]));
}

TEST(MissingValues, LeaveAPlaceUntestedWhereNoBlockHasTwoKinds) {
  made::Data data = made::noise(6, 2, 4);
  data.of(0, 1) = data.of(4, 1) = made::kNothing;  // one of each pair but the third
  TestOptions options = made::permuted(20);
  options.smallestShare = 0.5;
  options.blocks = {0, 1, 2, 0, 1, 2};
  const TestResult both = runTest(made::twoSamples(6), data.values(), spaceOfPlaces(2), options);
  EXPECT_FALSE(std::isnan(both.t[1]));
  data.of(2, 1) = made::kNothing;
  const TestResult neither = runTest(made::twoSamples(6), data.values(), spaceOfPlaces(2), options);
  EXPECT_TRUE(std::isnan(neither.t[1]));
}

TEST(MissingValues, LeaveAParticipantsColumnOut) {
  // Three participants, two conditions; one map of the last one is missing.
  const Model model{{"a", "b", "c", "condition"},
                    {1, 0, 0, 1, 1, 0, 0, -1, 0, 1, 0, 1, 0, 1, 0, -1, 0, 0, 1, 1, 0, 0, 1, -1},
                    {0, 0, 0, 1}};
  made::Data data = made::noise(6, 2, 5);
  data.of(5, 1) = made::kNothing;
  TestOptions options = made::permuted(20);
  options.blocks = {0, 0, 1, 1, 2, 2};
  const TestResult result = runTest(model, data.values(), spaceOfPlaces(2), options);
  const double first = data.value(0, 1) - data.value(1, 1), second = data.value(2, 1) - data.value(3, 1);
  EXPECT_NEAR(result.effect[1], (first + second) / 4, 1e-6);
}

TEST(MissingValues, DoNotVary) {
  made::Data data = made::noise(6, 3, 6);
  for (std::size_t row = 0; row < 6; ++row) data.of(row, 1) = 4.7F, data.of(row, 2) = 0;
  const TestResult result = runTest(made::oneSample(6), data.values(), spaceOfPlaces(3), made::plain(20));
  EXPECT_EQ(result.tested, 1U);
  EXPECT_EQ(result.rows[1], 6);
}

// All permutations of the rows that are there, by hand, of a covariate.
TEST(MissingValues, ArePermutedAroundInEveryWay) {
  made::Data data = made::noise(5, 1, 7);
  data.of(2, 0) = made::kNothing;
  const Model model{{"mean", "age"}, {1, 3, 1, 5, 1, 4, 1, 9, 1, 8.5}, {0, 1}};
  const TestResult result = runTest(model, data.values(), spaceOfPlaces(1), made::permuted(120));
  EXPECT_TRUE(result.isExhaustive);
  const std::vector<double> age = {3, 5, 9, 8.5};
  const std::vector<double> values = {data.value(0, 0), data.value(1, 0), data.value(3, 0), data.value(4, 0)};
  std::vector<std::size_t> order = {0, 1, 2, 3};
  const auto slope = [&] {  // |t| grows as the correlation does, and as this
    double sum = 0;
    for (std::size_t i = 0; i < 4; ++i) sum += (age[i] - 6.375) * values[order[i]];
    return std::abs(sum);
  };
  const double own = slope();
  int reached = 0;
  do reached += slope() >= own - 1e-6 ? 1 : 0;
  while (std::next_permutation(order.begin(), order.end()));
  EXPECT_NEAR(result.p[0], reached / 24.0, 1e-6);
}

}  // namespace
