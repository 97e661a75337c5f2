#include "prepare/cosines.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <numeric>

namespace study {
namespace {

TEST(HighPassCosines, AreAsManyAsAreSlowerThanThePeriod) {
  EXPECT_EQ(highPassCosines(200, 2, 128).size(), 6U);  // 800 / 128 = 6.25
  EXPECT_EQ(highPassCosines(160, 0.8, 128).size(), 2U);
  EXPECT_EQ(highPassCosines(30, 0.7, 21).size(), 2U);  // 42 / 21, with rounding below 2
  EXPECT_EQ(highPassCosines(63, 1, 128).size(), 0U);
  EXPECT_EQ(highPassCosines(64, 1, 128).size(), 1U);
  EXPECT_EQ(highPassCosines(200, 2, 0).size(), 0U);
  EXPECT_EQ(highPassCosines(20, 2, 0.5).size(), 19U);  // there are no more
}

// Four volumes: cos(pi k / 8), cos(3 pi k / 8), ... times sqrt(1/2).
TEST(HighPassCosines, AreThoseOfTheSecondTransform) {
  const auto columns = highPassCosines(4, 1, 4);
  ASSERT_EQ(columns.size(), 2U);
  for (std::size_t k = 1; k <= 2; ++k) {
    for (std::size_t t = 0; t < 4; ++t) {
      const double angle = std::numbers::pi * static_cast<double>(k * (2 * t + 1)) / 8;
      EXPECT_NEAR(columns[k - 1][t], std::sqrt(0.5) * std::cos(angle), 1e-15);
    }
  }
}

TEST(HighPassCosines, AreOrthonormalAndWithoutMean) {
  const auto columns = highPassCosines(37, 2.2, 20);
  ASSERT_EQ(columns.size(), 8U);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    EXPECT_NEAR(std::accumulate(columns[i].begin(), columns[i].end(), 0.0), 0, 1e-13);
    for (std::size_t j = 0; j <= i; ++j)
      EXPECT_NEAR(std::inner_product(columns[i].begin(), columns[i].end(), columns[j].begin(), 0.0),
                  i == j ? 1 : 0, 1e-13);
  }
}

TEST(HighPassCosines, HaveNamesOfTheirOwn) {
  EXPECT_EQ(highPassName(0), "high_pass00");
  EXPECT_EQ(highPassName(12), "high_pass12");
}

}  // namespace
}  // namespace study
