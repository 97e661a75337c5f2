#include "suitability/spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <numeric>

#include "suitability/density.h"
#include "suitability/shared_period.h"
#include "tests/suitability/simulated.h"

namespace {

using suitability::Density;
using suitability::Series;
using suitability::Taper;

Series cosine(std::size_t n, double cycles) {
  Series x(n);
  for (std::size_t t = 0; t < n; ++t)
    x[t] = std::cos(2 * std::numbers::pi * cycles * static_cast<double>(t) / static_cast<double>(n));
  return x;
}

TEST(Density, SharesAreThoseOfTheVariance) {
  for (const std::size_t n : {60U, 61U}) {
    Density density(static_cast<int>(n), Taper::kNone);
    Series x = cosine(n, 7);
    const Series weaker = cosine(n, 20);
    for (std::size_t t = 0; t < n; ++t) x[t] += 0.5 * weaker[t];
    const std::vector<double> shares = density.of(x);
    ASSERT_EQ(shares.size(), n / 2 + 1);
    EXPECT_NEAR(shares[7], 0.8, 1e-12);
    EXPECT_NEAR(shares[20], 0.2, 1e-12);
    EXPECT_NEAR(std::accumulate(shares.begin(), shares.end(), 0.0), 1, 1e-12);
  }
}

TEST(Density, TaperedLinesStayWithinTwoBins) {
  Density density(200, Taper::kHann);
  const std::vector<double> shares = density.of(cosine(200, 30.5));
  double near = 0;
  for (std::size_t k = 29; k <= 32; ++k) near += shares[k];
  EXPECT_GT(near, 0.999);
  EXPECT_LT(shares[40], 1e-6);
}

suitability::Courses coursesOf(const simulated::Run& run) {
  return {run.reference, run.voxels, run.intervals, run.trSeconds};
}

TEST(SharedPeriod, IsNoMatterWithinIntervalsThatAreShorter) {
  simulated::Run run = simulated::independent(0.3, 2, 200, 8);
  run.each([](simulated::Values& values, std::size_t) {
    const Series blocks = cosine(values.size(), 10);
    for (std::size_t t = 0; t < values.size(); ++t) values[t] += 3 * blocks[t];
  });
  const auto shared = suitability::findSharedPeriod(coursesOf(run));
  ASSERT_TRUE(shared);
  EXPECT_NEAR(shared->seconds, 40, 0.5);
  EXPECT_EQ(shared->voxels, simulated::kVoxels);
  run.intervals = {{0, 30}, {60, 30}};
  EXPECT_FALSE(suitability::findSharedPeriod(coursesOf(run)));
}

TEST(SharedPeriod, MustBeInTheVoxelsToo) {
  simulated::Run run = simulated::independent(0.3, 2, 200, 8);
  const Series blocks = cosine(200, 10);
  const auto add = [&](simulated::Values& values) {
    for (std::size_t t = 0; t < 200; ++t) values[t] += 3 * blocks[t];
  };
  add(run.reference);
  for (std::size_t v = 0; v < 9; ++v) add(run.voxels[v]);
  EXPECT_FALSE(suitability::findSharedPeriod(coursesOf(run)));
  add(run.voxels[9]);
  EXPECT_TRUE(suitability::findSharedPeriod(coursesOf(run)));
}

}  // namespace
