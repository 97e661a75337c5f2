#include "simo/normal_quantile.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

double shareBelow(double z) {
  return 0.5 * std::erfc(-z / std::sqrt(2.0));
}

TEST(NormalQuantile, IsTheInverseOfTheDistribution) {
  for (double p = 1e-300; p < 0.5; p *= 3) {
    const double z = simo::normalQuantile(p);
    EXPECT_NEAR(shareBelow(z) / p, 1, 1e-13 * std::fmax(1, z * z)) << p;
  }
}

TEST(NormalQuantile, IsSymmetric) {
  EXPECT_EQ(simo::normalQuantile(0.5), 0);
  for (const double p : {0.01, 0.05, 0.2, 0.4}) {
    EXPECT_NEAR(simo::normalQuantile(p), -simo::normalQuantile(1 - p), 1e-13) << p;
  }
}

TEST(NormalQuantile, KnowsTabledValues) {
  EXPECT_NEAR(simo::normalQuantile(0.975), 1.959963984540054, 1e-14);
  EXPECT_NEAR(simo::normalQuantile(0.001), -3.090232306167813, 1e-14);
}

TEST(NormalQuantile, HasNoneOutsideProbabilities) {
  for (const double p : {0.0, 1.0, -0.1, 1.1, std::nan("")}) EXPECT_TRUE(std::isnan(simo::normalQuantile(p)));
}

}  // namespace
