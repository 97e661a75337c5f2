// Fits and measures against least squares on a design matrix.
#include "tests/simo/least_squares.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/simo/measured.h"
#include "tests/simo/series.h"

namespace {

using simo::LagPairForm;

// Driven from x to y, with some of everything else.
simo::Matrix<float> coupledPair(int length, unsigned seed) {
  return test::autoregression(
      {test::Dense(2, 2, {0.6, 0.0, 0.4, 0.3}), test::Dense(2, 2, {-0.2, 0.1, 0.1, 0.2})},
      test::Dense(2, 2, {1.0, 0.4, 0.4, 1.5}), length, seed);
}

// The averages of the consistent form are exactly those of least squares on a series that is zero
// before its start, so only rounding parts the two: variances of size 1 to 2, averages stored with
// 6e-8 each and subtracted some p times.
constexpr double kRounding = 5e-6;

TEST(ConsistentForm, GivesThePreWindowedLeastSquaresMeasures) {
  for (const unsigned seed : {1U, 2U, 3U})
    for (const int p : {1, 2, 3, 5, 20}) {
      const simo::Matrix<float> x = coupledPair(300, seed);
      const test::Measured measured = test::measure(x, p, LagPairForm::kConsistent);
      const test::Feedback expected = test::leastSquaresFeedback(x, p, 0);
      ASSERT_TRUE(measured.defined);
      EXPECT_NEAR(static_cast<double>(measured.x2y), expected.x2y, kRounding) << "order " << p;
      EXPECT_NEAR(static_cast<double>(measured.y2x), expected.y2x, kRounding) << "order " << p;
      EXPECT_NEAR(static_cast<double>(measured.xy), expected.xy, kRounding) << "order " << p;
    }
}

TEST(ConsistentForm, GivesThePreWindowedLeastSquaresErrorCovariance) {
  for (const int p : {1, 2, 3, 5}) {
    const simo::Matrix<float> x = coupledPair(120, 4);
    simo::FosAvg<float> avg(2, p);
    simo::accum_actavgs(x, 0, 2, 0, 120, avg, LagPairForm::kConsistent);
    simo::FosOrth<float> model(2, p);
    ASSERT_TRUE(simo::fitModel(avg, 0, model));
    const test::Dense expected = test::fitLeastSquares(x, {0, 1}, p, 0).errCov;
    for (int i = 0; i < 2; ++i)
      for (int j = 0; j < 2; ++j)
        EXPECT_NEAR(static_cast<double>(model.errCov[i][j]),
                    expected(static_cast<std::size_t>(i), static_cast<std::size_t>(j)), kRounding);
  }
}

// Ordinary least squares leaves out the first p equations. That moves each residual variance, and
// each measure, by a few p / N.
TEST(ConsistentForm, ComesCloseToOrdinaryLeastSquares) {
  const int length = 4000;
  const simo::Matrix<float> x = coupledPair(length, 5);
  for (const int p : {1, 2, 3, 5}) {
    const double tolerance = 2.0 * p / length;
    const test::Measured measured = test::measure(x, p, LagPairForm::kConsistent);
    const test::Feedback expected = test::leastSquaresFeedback(x, p, p);
    ASSERT_TRUE(measured.defined);
    EXPECT_NEAR(static_cast<double>(measured.x2y), expected.x2y, tolerance) << "order " << p;
    EXPECT_NEAR(static_cast<double>(measured.y2x), expected.y2x, tolerance) << "order " << p;
    EXPECT_NEAR(static_cast<double>(measured.xy), expected.xy, tolerance) << "order " << p;
  }
}

TEST(WrittenForm, AgreesWithLeastSquaresAtOrderOneOnly) {
  const simo::Matrix<float> x = coupledPair(300, 6);
  const test::Feedback first = test::leastSquaresFeedback(x, 1, 0);
  const test::Measured measuredFirst = test::measure(x, 1, LagPairForm::kWritten);
  ASSERT_TRUE(measuredFirst.defined);
  EXPECT_NEAR(static_cast<double>(measuredFirst.x2y), first.x2y, kRounding);
  EXPECT_NEAR(static_cast<double>(measuredFirst.y2x), first.y2x, kRounding);

  const test::Feedback second = test::leastSquaresFeedback(x, 2, 0);
  const test::Measured measuredSecond = test::measure(x, 2, LagPairForm::kWritten);
  ASSERT_TRUE(measuredSecond.defined);
  EXPECT_GT(std::abs(static_cast<double>(measuredSecond.y2x) - second.y2x), 1000 * kRounding);
}

}  // namespace
