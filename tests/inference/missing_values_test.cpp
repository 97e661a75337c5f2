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

// All permutations by hand: the ages of a permutation, that of the row without a value left out, with the
// values.
void expectPermutedWithTheValues(unsigned seed) {
  made::Data data = made::noise(5, 1, seed);
  data.of(2, 0) = made::kNothing;
  const Model model{{"mean", "age"}, {1, 3, 1, 5, 1, 4, 1, 9, 1, 8.5}, {0, 1}};
  const TestResult result = runTest(model, data.values(), spaceOfPlaces(1), made::permuted(120));
  EXPECT_TRUE(result.isExhaustive);
  std::vector<double> age = {3, 5, 4, 9, 8.5};
  const auto correlation = [&] {  // |t| grows as its magnitude does
    double xx = 0, yy = 0, xy = 0, x = 0, y = 0;
    for (const std::size_t i : {0U, 1U, 3U, 4U}) {
      const double value = data.value(i, 0);
      x += age[i] / 4, y += value / 4;
      xx += age[i] * age[i], yy += value * value, xy += age[i] * value;
    }
    return std::abs((xy - 4 * x * y) / std::sqrt((xx - 4 * x * x) * (yy - 4 * y * y)));
  };
  const double own = correlation();
  EXPECT_NEAR(std::abs(result.t[0]), own * std::sqrt(2 / (1 - own * own)), 1e-4);
  std::sort(age.begin(), age.end());
  int reached = 0;
  do reached += correlation() >= own - 2e-6 ? 1 : 0;
  while (std::next_permutation(age.begin(), age.end()));
  EXPECT_NEAR(result.p[0], reached / 120.0, 1e-6) << seed;
}

TEST(MissingValues, ArePermutedWithTheValues) {
  for (unsigned seed = 7; seed < 17; ++seed) expectPermutedWithTheValues(seed);
}

}  // namespace
