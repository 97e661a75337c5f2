// The routines of the voxel loop allocate nothing.
#include <gtest/gtest.h>

#include "simo/smatrix.h"
#include "tests/simo/counting_new.h"

namespace {

using test::allocationsOf;

// Filled records of order 3.
struct Fixture {
  simo::Matrix<float> raw{2, 100, 0, 0};
  simo::Matrix<float> residuals{2, 100, 0, 0};
  simo::FosAvg<float> avg{2, 3};
  simo::FosOrth<float> full{2, 3};
  simo::FosOrth<float> restrX{1, 3};
  simo::FosOrth<float> restrY{1, 3};
  bool succeeded = false;

  Fixture() {
    simo::randn(raw, 0, 2, 0, 100, 1);
    simo::dtrendRowsToRes(raw, 0, 2, 0, 100, residuals, 0, 0);
    simo::accum_actavgs(residuals, 0, 2, 0, 100, avg);
    succeeded = simo::fitModel(avg, 0, full);
  }
};

TEST(Allocations, AreCounted) {
  EXPECT_EQ(allocationsOf([] { const simo::Matrix<float> m(2, 2, 0, 0, 0.F); }), 2);
  EXPECT_EQ(allocationsOf([] { const simo::LTMatrix<float> m(2, 0, 0, 0.F); }), 2);
  EXPECT_EQ(allocationsOf([] { const Array3D<float> a(2, 2, 2); }), 3);
}

TEST(Allocations, AreNotMadeByEmptyContainers) {
  EXPECT_EQ(allocationsOf([] {
              const simo::Matrix<float> noRows(0, 3, 0, 0);
              const simo::Matrix<float> noCols(3, 0, 0, 0, 1.F);
              const simo::Vector<float> vector(0, 1, 0.F);
              const simo::LTData<float> triangle(0, 1, 1, 0.F);
            }),
            0);
}

TEST(Allocations, AreNotMadeByDetrending) {
  Fixture f;
  EXPECT_EQ(allocationsOf([&] { simo::dtrendRowsToRes(f.raw, 0, 2, 0, 100, f.residuals, 0, 0); }), 0);
}

TEST(Allocations, AreNotMadeByAccumulation) {
  Fixture f;
  for (const auto form : {simo::LagPairForm::kWritten, simo::LagPairForm::kConsistent})
    EXPECT_EQ(allocationsOf([&] {
                f.avg.clear();
                simo::accum_actavgs(f.residuals, 0, 2, 0, 100, f.avg, form);
                f.avg.scale(0.5F);
              }),
              0);
}

TEST(Allocations, AreNotMadeByTheSearchOrTheErrorCovariance) {
  Fixture f;
  EXPECT_EQ(allocationsOf([&] {
              f.succeeded = simo::mfosP(f.avg.lagAvgs, 0, 0, f.avg.lagPairAvgs, 0, 0, 3, f.full.coefs,
                                        f.full.invFactors, f.full.alphas, f.full.work, f.full.factor);
              simo::varEP(f.avg.lagAvgs, 0, 0, f.full.coefs, 3, f.full.errCov, f.full.explained);
            }),
            0);
  EXPECT_TRUE(f.succeeded);
}

TEST(Allocations, AreNotMadeByTheMeasures) {
  Fixture f;
  float x2y = 0, y2x = 0, xy = 0;
  EXPECT_EQ(allocationsOf([&] {
              f.succeeded = simo::gewekeX2Y(f.avg, 0, 1, f.full, f.restrX, f.restrY, x2y, y2x, xy);
            }),
            0);
  EXPECT_TRUE(f.succeeded);
}

TEST(Allocations, AreNotMadeByDeterminants) {
  Fixture f;
  float det = 0;
  EXPECT_EQ(allocationsOf([&] { f.succeeded = simo::detPosDef(f.full.errCov, f.full.factor, det); }), 0);
  EXPECT_TRUE(f.succeeded);
}

TEST(Allocations, AreNotMadeByCoefficientConversion) {
  Fixture f;
  simo::Vector<simo::Matrix<float>> a(3, 1, simo::Matrix<float>(2, 2, 0, 0, 0.F));
  EXPECT_EQ(
      allocationsOf([&] { simo::arCoefficients(f.full.coefs, f.full.invFactors, f.full.alphas, 3, a); }), 0);
}

TEST(Allocations, AreNotMadeByRandomNumbers) {
  Fixture f;
  EXPECT_EQ(allocationsOf([&] { simo::randn(f.raw, 0, 2, 0, 100, 2); }), 0);
}

}  // namespace
