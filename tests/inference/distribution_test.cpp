#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "inference/false_discovery.h"
#include "inference/lanes.h"
#include "inference/t_distribution.h"
#include "inference/z_table.h"

namespace {

using namespace inference;

// By hand: with one degree of freedom t is tan(pi (1/2 - p)), with two (1 - 2 p) / sqrt(2 p (1 - p)).
TEST(TDistribution, HasTheZOfTheSameProbability) {
  for (const double z : {0.1, 1.0, 2.5, 5.0}) {
    const double p = std::erfc(z / std::sqrt(2.0)) / 2;
    EXPECT_NEAR(zOfT(1 / std::tan(std::acos(-1.0) * p), 1), z, 1e-9);
    EXPECT_NEAR(zOfT((1 - 2 * p) / std::sqrt(2 * p * (1 - p)), 2), z, 1e-9);
    EXPECT_NEAR(tOfZ(zOfT(3 * z, 7), 7), 3 * z, 1e-9 * z);
  }
  EXPECT_EQ(zOfT(-2, 5), -zOfT(2, 5));
  EXPECT_NEAR(zOfT(1.7, 1000000), 1.7, 1e-5);
  EXPECT_TRUE(std::isfinite(zOfT(1e9, 200)));
}

TEST(TDistribution, GoesWithCorrelations) {
  EXPECT_NEAR(tOfCorrelation(0.6, 16), 3, 1e-12);
  EXPECT_NEAR(correlationOfT(3, 16), 0.6, 1e-12);
}

TEST(ZTable, IsWithinAMillionthOfTheExactZ) {
  for (const int freedom : {1, 2, 7, 19, 150}) {
    const ZTable table(freedom);
    for (double r = 1e-5; r < 0.9999; r += 0.00037) {
      const auto rounded = static_cast<float>(r);
      for (const float correlation : {rounded, -rounded}) {
        float z = correlation;
        zOfCorrelations(&z, 1, table.values().data());
        const double exact = zOfT(tOfCorrelation(static_cast<double>(correlation), freedom), freedom);
        // What rounding 1 - r r to a float does near 1 is of r, not of the table.
        const double rounding = 1e-7 / (1 - r * r) / (1 + exact * exact / freedom);
        ASSERT_NEAR(z, exact, (2e-6 + rounding) * std::abs(exact)) << freedom << " " << r;
      }
    }
  }
}

TEST(ZTable, StaysFiniteForPerfectCorrelations) {
  std::vector<float> z = {1.0F, -1.0F, 1.0000001F, 0.0F};
  zOfCorrelations(z.data(), z.size(), ZTable(10).values().data());
  EXPECT_TRUE(std::isfinite(z[0]));
  EXPECT_EQ(z[1], -z[0]);
  EXPECT_NEAR(z[2], z[0], 1e-5);
  EXPECT_EQ(z[3], 0.0F);
}

// Known: Benjamini & Hochberg's adjusted p of five, by hand.
TEST(FalseDiscovery, AdjustsByRankAndKeepsOrder) {
  const std::vector<float> q = adjustedForDiscovery({0.01F, std::nanf(""), 0.04F, 0.03F, 0.9F, 0.005F});
  EXPECT_FLOAT_EQ(q[0], 0.025F);
  EXPECT_TRUE(std::isnan(q[1]));
  EXPECT_FLOAT_EQ(q[2], 0.05F);
  EXPECT_FLOAT_EQ(q[3], 0.05F);
  EXPECT_FLOAT_EQ(q[4], 0.9F);
  EXPECT_FLOAT_EQ(q[5], 0.025F);
}

}  // namespace
