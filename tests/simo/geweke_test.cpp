#include "simo/geweke.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "simo/cholesky.h"
#include "simo/detrend.h"
#include "tests/simo/measured.h"
#include "tests/simo/series.h"

namespace {

using simo::LagPairForm;

// Averages, work areas and results of one order.
struct Pair {
  simo::FosAvg<float> avg;
  simo::FosOrth<float> full;
  simo::FosOrth<float> restrX;
  simo::FosOrth<float> restrY;
  float x2y = -1;
  float y2x = -1;
  float xy = -1;

  explicit Pair(int p) : avg(2, p), full(2, p), restrX(1, p), restrY(1, p) {}
  bool measure(int ix, int iy) { return simo::gewekeX2Y(avg, ix, iy, full, restrX, restrY, x2y, y2x, xy); }
  void expectUnwritten() const {
    EXPECT_EQ(x2y, -1.F);
    EXPECT_EQ(y2x, -1.F);
    EXPECT_EQ(xy, -1.F);
  }
};

simo::Matrix<float> drivenPair(int length, unsigned seed) {
  return test::autoregression({test::Dense(2, 2, {0.5, 0.0, 0.6, 0.2})},
                              test::Dense(2, 2, {1.0, 0.3, 0.3, 1.0}), length, seed);
}

TEST(Geweke, OfIndependentWhiteNoiseIsCloseToZero) {
  const int length = 2000;
  const simo::Matrix<float> x = test::whiteNoise(2, length, 70);
  for (const int p : {1, 3}) {
    const test::Measured m = test::measure(x, p, LagPairForm::kConsistent);
    ASSERT_TRUE(m.defined);
    // N times a measure is chi-squared with p degrees of freedom (one for fxy): below 31 in all but
    // one of a million draws for p = 3, and rarer for fewer.
    const double bound = 31.0 / length;
    EXPECT_NEAR(static_cast<double>(m.x2y), 0, bound);
    EXPECT_NEAR(static_cast<double>(m.y2x), 0, bound);
    EXPECT_NEAR(static_cast<double>(m.xy), 0, bound);
  }
}

TEST(Geweke, SwapsTheDirectionsWithTheSeries) {
  const simo::Matrix<float> x = drivenPair(400, 71);
  for (const int p : {1, 2, 5}) {
    Pair forth(p);
    Pair back(p);
    simo::accum_actavgs(x, 0, 2, 0, 400, forth.avg);
    simo::accum_actavgs(x, 0, 2, 0, 400, back.avg);
    ASSERT_TRUE(forth.measure(0, 1));
    ASSERT_TRUE(back.measure(1, 0));
    EXPECT_EQ(forth.x2y, back.y2x);
    EXPECT_EQ(forth.y2x, back.x2y);
    EXPECT_EQ(forth.xy, back.xy);
  }
}

TEST(Geweke, ComparesTheDeterminantsOfItsThreeModels) {
  Pair pair(1);
  simo::accum_actavgs(drivenPair(400, 72), 0, 2, 0, 400, pair.avg);
  ASSERT_TRUE(pair.measure(0, 1));
  const simo::Matrix<float>& s = pair.full.errCov;
  EXPECT_NEAR(pair.x2y, std::log(pair.restrY.errCov[0][0] / s[1][1]), 1e-6F);
  EXPECT_NEAR(pair.y2x, std::log(pair.restrX.errCov[0][0] / s[0][0]), 1e-6F);
  EXPECT_NEAR(pair.xy, std::log(s[0][0] * s[1][1] / (s[0][0] * s[1][1] - s[0][1] * s[0][1])), 1e-6F);
  EXPECT_GT(pair.x2y, 0.1F);
}

TEST(Geweke, DoesNotDependOnACommonFactorOfTheAverages) {
  Pair pair(2);
  simo::accum_actavgs(drivenPair(400, 73), 0, 2, 0, 400, pair.avg);
  ASSERT_TRUE(pair.measure(0, 1));
  const float x2y = pair.x2y;
  const float xy = pair.xy;
  pair.avg.scale(4.F);
  ASSERT_TRUE(pair.measure(0, 1));
  EXPECT_FLOAT_EQ(pair.x2y, x2y);
  EXPECT_FLOAT_EQ(pair.xy, xy);
}

TEST(Geweke, IsUndefinedForASeriesWithoutVariance) {
  for (const int constant : {0, 1}) {
    simo::Matrix<float> x = test::whiteNoise(2, 300, 74);
    for (int t = 0; t < 300; ++t) x[constant][t] = 100.F;
    simo::dtrendRowsToRes(x, 0, 2, 0, 300, x, 0, 0);
    Pair pair(1);
    simo::accum_actavgs(x, 0, 2, 0, 300, pair.avg);
    EXPECT_FALSE(pair.measure(0, 1));
    pair.expectUnwritten();
  }
}

TEST(Geweke, IsUndefinedForEqualSeries) {
  simo::Matrix<float> x = test::whiteNoise(2, 256, 75);
  for (int t = 0; t < 256; ++t) x[0][t] = x[1][t] = std::round(8 * x[1][t]);  // sums without rounding
  Pair pair(1);
  simo::accum_actavgs(x, 0, 2, 0, 256, pair.avg);
  EXPECT_FALSE(pair.measure(0, 1));
  pair.expectUnwritten();
}

TEST(Geweke, IsUndefinedWithoutAnyInterval) {
  Pair pair(3);
  EXPECT_FALSE(pair.measure(0, 1));
  pair.expectUnwritten();
}

TEST(Geweke, IsUndefinedWhenAnErrorVarianceIsNotPositive) {
  // Each model fits, but the lags "explain" more than there is.
  for (const int excessive : {0, 1}) {
    Pair pair(1);
    for (int i = 0; i < 2; ++i) {
      pair.avg.lagAvgs[0][i][i] = 1.F;
      pair.avg.lagPairAvgs[1][1][i][i] = 1.F;
    }
    pair.avg.lagAvgs[1][excessive][excessive] = 2.F;
    EXPECT_FALSE(pair.measure(0, 1));
    pair.expectUnwritten();
  }
}

TEST(Geweke, PassesNotANumberThrough) {
  simo::Matrix<float> x = test::whiteNoise(2, 100, 76);
  x[1][50] = std::nanf("");
  Pair pair(2);
  simo::accum_actavgs(x, 0, 2, 0, 100, pair.avg);
  EXPECT_TRUE(pair.measure(0, 1));
  EXPECT_TRUE(std::isnan(pair.x2y));
  EXPECT_TRUE(std::isnan(pair.xy));
}

TEST(Geweke, PassesInfinityThroughAsNotANumber) {
  simo::Matrix<float> x = test::whiteNoise(2, 100, 77);
  x[1][50] = std::numeric_limits<float>::infinity();
  Pair pair(1);
  simo::accum_actavgs(x, 0, 2, 0, 100, pair.avg);
  EXPECT_TRUE(pair.measure(0, 1));
  EXPECT_TRUE(std::isnan(pair.x2y));
}

TEST(Geweke, OfOrderZeroIsTheInstantaneousPartAlone) {
  simo::Matrix<float> x = test::whiteNoise(2, 500, 78);
  for (int t = 0; t < 500; ++t) x[1][t] += x[0][t];
  const test::Measured m = test::measure(x, 0, LagPairForm::kWritten);
  ASSERT_TRUE(m.defined);
  EXPECT_EQ(m.x2y, 0.F);
  EXPECT_EQ(m.y2x, 0.F);
  // Correlation 1 / sqrt 2: ln 2, within five standard deviations of N measures.
  EXPECT_NEAR(static_cast<double>(m.xy), std::log(2.0), 5 * std::sqrt(4 * std::log(2.0) / 500));
}

}  // namespace
