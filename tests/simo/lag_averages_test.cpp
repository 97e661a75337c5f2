#include "simo/lag_averages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/simo/series.h"

namespace {

using simo::LagPairForm;

// Relative to sums of a few hundred products of size 1, stored and combined in single precision.
constexpr double kTolerance = 2e-6;

double at(const simo::Matrix<float>& m, int row, int t) {
  return static_cast<double>(m[row][t]);
}

// The interval [first, end) of rows 0 ... n - 1, and the averages it should give.
struct Interval {
  const simo::Matrix<float>& x;
  int first;
  int end;

  double lagAverage(int k, int i, int j) const {
    double sum = 0;
    for (int t = first + k; t < end; ++t) sum += at(x, i, t) * at(x, j, t - k);
    return sum / (end - first);
  }
  // The definition of the consistent form.
  double consistentPair(int m, int k, int i, int j) const {
    double sum = 0;
    for (int t = first + m; t < end; ++t) sum += at(x, i, t - m) * at(x, j, t - k);
    return sum / (end - first);
  }
  // The written form, literally: lag sum in its orientation, edge products in the other.
  double writtenPair(int m, int k, int i, int j) const {
    const int d = m - k;
    double sum = 0;
    for (int t = first + d; t < end; ++t) sum += at(x, i, t) * at(x, j, t - d);
    for (int u = end - k; u < end; ++u) sum -= at(x, i, u - d) * at(x, j, u);
    return sum / (end - first);
  }
  double pair(LagPairForm form, int m, int k, int i, int j) const {
    return form == LagPairForm::kWritten ? writtenPair(m, k, i, j) : consistentPair(m, k, i, j);
  }
};

void expectAverages(const simo::FosAvg<float>& avg, const Interval& interval, LagPairForm form) {
  for (int i = 0; i < avg.n; ++i)
    for (int j = 0; j < avg.n; ++j) {
      for (int k = 0; k <= avg.p; ++k)
        EXPECT_NEAR(static_cast<double>(avg.lagAvgs[k][i][j]), interval.lagAverage(k, i, j), kTolerance)
            << "lag " << k << " element " << i << ',' << j;
      for (int m = 1; m <= avg.p; ++m)
        for (int k = 1; k <= m; ++k)
          EXPECT_NEAR(static_cast<double>(avg.lagPairAvgs[m][k][i][j]), interval.pair(form, m, k, i, j),
                      kTolerance)
              << "lags " << m << ',' << k << " element " << i << ',' << j;
    }
}

class AccumulatedAverages : public testing::TestWithParam<LagPairForm> {};

TEST_P(AccumulatedAverages, EqualTheirDefinitionForAnyCountOrderAndLength) {
  for (const int n : {1, 2, 3})
    for (const int p : {0, 1, 2, 3, 5, 20})
      for (const int length : {p + 1, p + 2, p + 3, p + 4, 200}) {
        const simo::Matrix<float> x = test::whiteNoise(n, length + 7, static_cast<unsigned>(100 * n + p));
        simo::FosAvg<float> avg(n, p);
        simo::accum_actavgs(x, 0, n, 4, 4 + length, avg, GetParam());
        expectAverages(avg, {x, 4, 4 + length}, GetParam());
      }
}

TEST_P(AccumulatedAverages, NeverLookOutsideTheInterval) {
  for (const int length : {2, 3, 6, 30}) {
    simo::Matrix<float> x = test::whiteNoise(2, 60, 8);
    for (int r = 0; r < 2; ++r)
      for (int t = 0; t < 60; ++t)
        if (t < 20 || t >= 20 + length) x[r][t] = std::nanf("");
    simo::FosAvg<float> avg(2, 5);
    simo::accum_actavgs(x, 0, 2, 20, 20 + length, avg, GetParam());
    for (int m = 1; m <= 5; ++m)
      for (int k = 1; k <= m; ++k)
        for (std::size_t e = 0; e < 4; ++e) {
          EXPECT_FALSE(std::isnan(avg.lagPairAvgs[m][k].elements()[e])) << length << ' ' << m << ' ' << k;
          EXPECT_FALSE(std::isnan(avg.lagAvgs[m].elements()[e])) << length << ' ' << m;
        }
  }
}

TEST_P(AccumulatedAverages, OfTwoEqualIntervalsAreTwiceThoseOfOne) {
  const simo::Matrix<float> x = test::whiteNoise(2, 64, 21);
  simo::FosAvg<float> once(2, 3);
  simo::FosAvg<float> twice(2, 3);
  simo::accum_actavgs(x, 0, 2, 0, 64, once, GetParam());
  simo::accum_actavgs(x, 0, 2, 0, 64, twice, GetParam());
  simo::accum_actavgs(x, 0, 2, 0, 64, twice, GetParam());
  for (std::size_t e = 0; e < 4; ++e) {
    EXPECT_EQ(twice.lagAvgs[2].elements()[e], 2 * once.lagAvgs[2].elements()[e]);
    EXPECT_EQ(twice.lagPairAvgs[3][1].elements()[e], 2 * once.lagPairAvgs[3][1].elements()[e]);
  }
}

TEST_P(AccumulatedAverages, DivideByTheFullLengthForEveryLag) {
  const simo::Matrix<float> x(1, 10, 0, 0, 1.F);
  simo::FosAvg<float> avg(1, 3);
  simo::accum_actavgs(x, 0, 1, 0, 10, avg, GetParam());
  for (int k = 0; k <= 3; ++k) EXPECT_FLOAT_EQ(avg.lagAvgs[k][0][0], static_cast<float>(10 - k) / 10.F);
  EXPECT_FLOAT_EQ(avg.lagPairAvgs[3][2][0][0], 0.7F);
}

INSTANTIATE_TEST_SUITE_P(Forms, AccumulatedAverages,
                         testing::Values(LagPairForm::kWritten, LagPairForm::kConsistent),
                         [](const auto& tested) {
                           return tested.param == LagPairForm::kWritten ? "Written" : "Consistent";
                         });

TEST(LagPairForms, AgreeForOneSeriesAndForOrderOne) {
  const simo::Matrix<float> x = test::whiteNoise(2, 90, 33);
  for (const auto& [n, p] : {std::pair{1, 6}, std::pair{2, 1}}) {
    simo::FosAvg<float> written(n, p);
    simo::FosAvg<float> consistent(n, p);
    simo::accum_actavgs(x, 0, n, 0, 90, written);
    simo::accum_actavgs(x, 0, n, 0, 90, consistent, LagPairForm::kConsistent);
    for (int m = 1; m <= p; ++m)
      for (int k = 1; k <= m; ++k)
        for (std::size_t e = 0; e < written.lagPairAvgs[m][k].size(); ++e)
          EXPECT_EQ(written.lagPairAvgs[m][k].elements()[e], consistent.lagPairAvgs[m][k].elements()[e]);
  }
}

TEST(LagPairForms, DifferForTwoSeriesFromOrderTwoOn) {
  simo::Matrix<float> x = test::whiteNoise(2, 200, 34);
  for (int t = 1; t < 200; ++t) x[1][t] += x[0][t - 1];
  simo::FosAvg<float> written(2, 2);
  simo::FosAvg<float> consistent(2, 2);
  simo::accum_actavgs(x, 0, 2, 0, 200, written);
  simo::accum_actavgs(x, 0, 2, 0, 200, consistent, LagPairForm::kConsistent);
  EXPECT_GT(std::abs(written.lagPairAvgs[2][1][0][1] - consistent.lagPairAvgs[2][1][0][1]), 0.5F);
}

TEST(AccumActavgs, DefaultsToTheWrittenForm) {
  const simo::Matrix<float> x = test::whiteNoise(2, 50, 35);
  simo::FosAvg<float> avg(2, 2);
  simo::accum_actavgs(x, 0, 2, 0, 50, avg);
  expectAverages(avg, {x, 0, 50}, LagPairForm::kWritten);
}

TEST(AccumActavgs, AlignsTheSecondMatrixByItsFirstColumn) {
  const simo::Matrix<float> x = test::whiteNoise(1, 40, 36);
  simo::Matrix<float> y(3, 30, 5, 100, 0.F);
  for (int t = 0; t < 20; ++t) y[6][102 + t] = x[0][7 + t];
  simo::FosAvg<float> apart(1, 3);
  simo::FosAvg<float> same(1, 3);
  simo::accum_actavgs(x, 0, 1, 7, 27, y, 6, 7, 102, apart.lagSums, apart.lagAvgs, apart.lagPairAvgs, 3,
                      apart.edgeWork, apart.scaleWork);
  simo::accum_actavgs(x, 0, 1, 7, 27, same);
  for (int k = 0; k <= 3; ++k) EXPECT_EQ(apart.lagAvgs[k][0][0], same.lagAvgs[k][0][0]);
  for (int k = 1; k <= 3; ++k) EXPECT_EQ(apart.lagPairAvgs[3][k][0][0], same.lagPairAvgs[3][k][0][0]);
}

TEST(AccumActavgs, OfFewerSeriesThanTheRecordFillsTheFirstOnes) {
  const simo::Matrix<float> x = test::whiteNoise(1, 40, 37, 1, 1);
  simo::FosAvg<float> wide(2, 2);
  simo::FosAvg<float> narrow(1, 2);
  simo::accum_actavgs(x, 1, 2, 1, 41, wide);
  simo::accum_actavgs(x, 1, 2, 1, 41, narrow);
  EXPECT_EQ(wide.lagAvgs[1][0][0], narrow.lagAvgs[1][0][0]);
  EXPECT_EQ(wide.lagPairAvgs[2][1][0][0], narrow.lagPairAvgs[2][1][0][0]);
  EXPECT_EQ(wide.lagAvgs[1][0][1], 0.F);
  EXPECT_EQ(wide.lagPairAvgs[2][1][1][1], 0.F);
}

TEST(AccumActavgs, OfNegativeOrderReturnsAtOnce) {
  const simo::Matrix<float> x = test::whiteNoise(2, 40, 38);
  simo::FosAvg<float> avg(2, 1);
  simo::accum_actavgs(x, 0, 2, 0, 40, x, 0, 2, 0, avg.lagSums, avg.lagAvgs, avg.lagPairAvgs, -1, avg.edgeWork,
                      avg.scaleWork);
  EXPECT_EQ(avg.lagSums[0][0][0], 0.F);
  EXPECT_EQ(avg.lagAvgs[0][0][0], 0.F);
}

TEST(AccumActavgs, OfOrderZeroFillsTheZeroLagAverageAlone) {
  const simo::Matrix<float> x = test::whiteNoise(2, 40, 39);
  simo::FosAvg<float> avg(2, 2);
  simo::accum_actavgs(x, 0, 2, 0, 40, x, 0, 2, 0, avg.lagSums, avg.lagAvgs, avg.lagPairAvgs, 0, avg.edgeWork,
                      avg.scaleWork);
  EXPECT_NEAR(avg.lagAvgs[0][0][0], 1.F, 0.5F);
  EXPECT_EQ(avg.lagAvgs[1][0][0], 0.F);
  EXPECT_EQ(avg.lagPairAvgs[1][1][0][0], 0.F);
}

TEST(AccumActavgs, SumsInDouble) {
  // 2^24 + 63: in single precision every further 1 would be lost.
  simo::Matrix<float> x(1, 64, 0, 0, 1.F);
  x[0][0] = 4096.F;
  simo::FosAvg<float> avg(1, 0);
  simo::accum_actavgs(x, 0, 1, 0, 64, avg);
  EXPECT_EQ(avg.lagSums[0][0][0], 0x1p24F + 64.F);
}

TEST(AccumActavgs, PassesInfinityOn) {
  simo::Matrix<float> x = test::whiteNoise(1, 40, 40);
  x[0][20] = std::numeric_limits<float>::infinity();
  simo::FosAvg<float> avg(1, 1);
  simo::accum_actavgs(x, 0, 1, 0, 40, avg);
  EXPECT_TRUE(std::isinf(avg.lagAvgs[0][0][0]));
}

TEST(FosAvg, StartsAtZeroWithTheStatedShapes) {
  const simo::FosAvg<float> avg(2, 3);
  EXPECT_EQ(avg.lagSums.n, 4);
  EXPECT_EQ(avg.lagSums.base, 0);
  EXPECT_EQ(avg.lagAvgs.end, 4);
  EXPECT_EQ(avg.lagPairAvgs.rowBase, 1);
  EXPECT_EQ(avg.lagPairAvgs.colBase, 1);
  EXPECT_EQ(avg.lagPairAvgs.rowEnd, 4);
  for (int k = 0; k <= 3; ++k)
    for (std::size_t e = 0; e < 4; ++e) EXPECT_EQ(avg.lagAvgs[k].elements()[e], 0.F);
  EXPECT_EQ(avg.lagPairAvgs[3][2][1][1], 0.F);
  EXPECT_EQ(avg.edgeWork.nRows, 2);
  EXPECT_EQ(avg.scaleWork.nCols, 2);
}

TEST(FosAvg, ClearsAndScalesEveryAccumulatedAverage) {
  const simo::Matrix<float> x = test::whiteNoise(2, 40, 41);
  simo::FosAvg<float> avg(2, 2);
  simo::FosAvg<float> scaled(2, 2);
  simo::accum_actavgs(x, 0, 2, 0, 40, avg);
  simo::accum_actavgs(x, 0, 2, 0, 40, scaled);
  scaled.scale(0.25F);
  for (std::size_t e = 0; e < 4; ++e) {
    for (int k = 0; k <= 2; ++k) EXPECT_EQ(scaled.lagAvgs[k].elements()[e], avg.lagAvgs[k].elements()[e] / 4);
    EXPECT_EQ(scaled.lagPairAvgs[2][1].elements()[e], avg.lagPairAvgs[2][1].elements()[e] / 4);
    EXPECT_EQ(scaled.lagPairAvgs[2][2].elements()[e], avg.lagPairAvgs[2][2].elements()[e] / 4);
  }
  avg.clear();
  for (std::size_t e = 0; e < 4; ++e) {
    for (int k = 0; k <= 2; ++k) EXPECT_EQ(avg.lagAvgs[k].elements()[e], 0.F);
    for (int m = 1; m <= 2; ++m)
      for (int k = 1; k <= m; ++k) EXPECT_EQ(avg.lagPairAvgs[m][k].elements()[e], 0.F);
  }
}

}  // namespace
