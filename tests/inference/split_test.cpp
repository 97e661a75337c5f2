#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "inference/contrast_split.h"
#include "tests/inference/made_data.h"

namespace {

using namespace inference;

double product(const std::vector<double>& a, const std::vector<double>& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

const Model kAges{{"a", "b", "age"}, {1, 0, 3, 1, 0, 5, 1, 0, 1, 0, 1, 4, 0, 1, 8, 0, 1, 2}, {1, -1, 0}};

TEST(ContrastSplit, IsOrthonormal) {
  const auto split = splitContrast(kAges, allRows(6), {});
  ASSERT_TRUE(split);
  ASSERT_EQ(split->nuisances.size(), 2U);
  EXPECT_EQ(split->freedom, 3);
  EXPECT_NEAR(product(split->effect, split->effect), 1, 1e-12);
  for (const auto& a : split->nuisances) {
    EXPECT_NEAR(product(a, split->effect), 0, 1e-12);
    for (const auto& b : split->nuisances) EXPECT_NEAR(product(a, b), &a == &b ? 1 : 0, 1e-12);
  }
}

TEST(ContrastSplit, EstimatesTheContrastOfExactValues) {
  const auto split = splitContrast(kAges, allRows(6), {});
  std::vector<double> values;
  for (std::size_t row = 0; row < 6; ++row)
    values.push_back(2.5 * kAges.design[3 * row] + 1.5 * kAges.design[3 * row + 1] +
                     7 * kAges.design[3 * row + 2]);
  EXPECT_NEAR(split->scale * product(split->effect, values), 1.0, 1e-10);
}

// Permutations leave the mean of what they permute as it is, within blocks.
TEST(ContrastSplit, KnowsWhichNuisancesPermutationsMove) {
  EXPECT_EQ(splitContrast(made::twoSamples(6), allRows(6), {})->moving, 1U);
  const std::vector<int> one(6, 0), two = {0, 0, 1, 1, 2, 2};
  EXPECT_EQ(splitContrast(made::twoSamples(6), allRows(6), one)->moving, 0U);
  EXPECT_EQ(splitContrast(kAges, allRows(6), one)->moving, 1U);
  Model pairs{{"p", "q", "r", "condition"},
              {1, 0, 0, 1, 1, 0, 0, -1, 0, 1, 0, 1, 0, 1, 0, -1, 0, 0, 1, 1, 0, 0, 1, -1},
              {0, 0, 0, 1}};
  EXPECT_EQ(splitContrast(pairs, allRows(6), two)->moving, 0U);
  EXPECT_EQ(splitContrast(pairs, allRows(6), one)->moving, 2U);
}

TEST(ContrastSplit, IsNoneWhereRowsDoNotTell) {
  EXPECT_FALSE(splitContrast(made::twoSamples(6), std::vector<int>{0, 1, 2}, {}));
  EXPECT_FALSE(splitContrast(made::twoSamples(6), std::vector<int>{0, 3}, {}));
  EXPECT_TRUE(splitContrast(made::twoSamples(6), std::vector<int>{0, 1, 3}, {}));
}

}  // namespace
