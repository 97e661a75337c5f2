#include "simo/orthogonal_search.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/simo/series.h"

namespace {

bool search(const simo::FosAvg<float>& avg, simo::FosOrth<float>& m, int first = 0) {
  return simo::mfosP(avg.lagAvgs, first, first, avg.lagPairAvgs, first, first, m.p, m.coefs, m.invFactors,
                     m.alphas, m.work, m.factor);
}

TEST(OrthogonalSearch, OfOneSeriesAndOrderOneHasItsClosedForm) {
  simo::FosAvg<float> avg(1, 1);
  avg.lagAvgs[0][0][0] = 5.F;
  avg.lagAvgs[1][0][0] = 3.F;
  avg.lagPairAvgs[1][1][0][0] = 4.F;
  simo::FosOrth<float> model(1, 1);
  ASSERT_TRUE(search(avg, model));
  EXPECT_EQ(model.coefs[1][0][0], 3.F / std::sqrt(4.F));
  simo::varEP(avg.lagAvgs, 0, 0, model.coefs, 1, model.errCov, model.explained);
  EXPECT_EQ(model.explained[1][0][0], 2.25F);
  EXPECT_EQ(model.errCov[0][0], 5.F - 9.F / 4.F);
}

TEST(OrthogonalSearch, OfOrderZeroSucceedsAndExplainsNothing) {
  const simo::Matrix<float> x = test::whiteNoise(2, 50, 1);
  simo::FosAvg<float> avg(2, 0);
  simo::accum_actavgs(x, 0, 2, 0, 50, avg);
  simo::FosOrth<float> model(2, 0);
  ASSERT_TRUE(search(avg, model));
  simo::varEP(avg.lagAvgs, 0, 0, model.coefs, 0, model.errCov, model.explained);
  for (std::size_t e = 0; e < 4; ++e) EXPECT_EQ(model.errCov.elements()[e], avg.lagAvgs[0].elements()[e]);
}

TEST(OrthogonalSearch, OfWhiteNoiseExplainsAlmostNothing) {
  const simo::Matrix<float> x = test::whiteNoise(1, 5000, 2);
  simo::FosAvg<float> avg(1, 1);
  simo::accum_actavgs(x, 0, 1, 0, 5000, avg);
  simo::FosOrth<float> model(1, 1);
  ASSERT_TRUE(simo::fitModel(avg, 0, model));
  // F_1 has standard deviation 1 / sqrt(N); five of them.
  EXPECT_NEAR(model.coefs[1][0][0], 0.F, 5 / std::sqrt(5000.F));
  EXPECT_NEAR(model.errCov[0][0], avg.lagAvgs[0][0][0], 25.F / 5000.F);
}

TEST(OrthogonalSearch, FailsOnAPredictableSeriesAndKeepsEarlierCoefficients) {
  simo::FosAvg<float> avg(1, 2);
  avg.lagAvgs[1][0][0] = 3.F;
  avg.lagAvgs[2][0][0] = 3.F;
  avg.lagPairAvgs[1][1][0][0] = 1.F;
  avg.lagPairAvgs[2][1][0][0] = 1.F;
  avg.lagPairAvgs[2][2][0][0] = 1.F;
  simo::FosOrth<float> model(1, 2);
  model.errCov[0][0] = -8.F;
  EXPECT_FALSE(simo::fitModel(avg, 0, model));
  EXPECT_EQ(model.coefs[1][0][0], 3.F);
  EXPECT_EQ(model.coefs[2][0][0], 0.F);
  EXPECT_EQ(model.errCov[0][0], -8.F);
}

TEST(OrthogonalSearch, FailsOnASeriesWithoutVariance) {
  const simo::FosAvg<float> avg(2, 3);
  simo::FosOrth<float> model(2, 3);
  EXPECT_FALSE(search(avg, model));
}

TEST(OrthogonalSearch, LetsNotANumberPass) {
  simo::FosAvg<float> avg(2, 2);
  avg.lagPairAvgs[1][1][0][0] = std::nanf("");
  avg.lagPairAvgs[1][1][1][1] = 1.F;
  simo::FosOrth<float> model(2, 2);
  EXPECT_TRUE(search(avg, model));
  EXPECT_TRUE(std::isnan(model.coefs[1][0][0]));
}

TEST(OrthogonalSearch, OfASubBlockIsTheFitOfThatSeriesAlone) {
  const simo::Matrix<float> x = test::whiteNoise(2, 80, 4);
  simo::FosAvg<float> pair(2, 4);
  simo::accum_actavgs(x, 0, 2, 0, 80, pair);
  for (int i = 0; i < 2; ++i) {
    simo::FosAvg<float> alone(1, 4);
    simo::accum_actavgs(x, i, i + 1, 0, 80, alone);
    simo::FosOrth<float> fromPair(1, 4);
    simo::FosOrth<float> fromAlone(1, 4);
    ASSERT_TRUE(simo::fitModel(pair, i, fromPair));
    ASSERT_TRUE(simo::fitModel(alone, 0, fromAlone));
    EXPECT_EQ(fromPair.errCov[0][0], fromAlone.errCov[0][0]);
    for (int k = 1; k <= 4; ++k) EXPECT_EQ(fromPair.coefs[k][0][0], fromAlone.coefs[k][0][0]);
  }
}

TEST(OrthogonalSearch, ReadsLagAndPairAveragesAtTheirOwnOrigins) {
  const simo::Vector<simo::Matrix<float>> lagAvgs(2, 0, simo::Matrix<float>(3, 3, 0, 0, 0.F));
  const simo::LTMatrix<simo::Matrix<float>> pairAvgs(1, 1, 1, simo::Matrix<float>(3, 3, 0, 0, -1.F));
  lagAvgs.data[1][2][0] = 6.F;
  pairAvgs.store.rows[1][1][1][2] = 9.F;
  simo::FosOrth<float> model(1, 1);
  ASSERT_TRUE(simo::mfosP(lagAvgs, 2, 0, pairAvgs, 1, 2, 1, model.coefs, model.invFactors, model.alphas,
                          model.work, model.factor));
  EXPECT_EQ(model.coefs[1][0][0], 2.F);
  EXPECT_FLOAT_EQ(model.invFactors[1][0][0], 1.F / 3.F);
}

TEST(OrthogonalSearch, InvertsTheFactorOfEachBlock) {
  const simo::Matrix<float> x = test::whiteNoise(3, 100, 5);
  simo::FosAvg<float> avg(3, 2);
  simo::accum_actavgs(x, 0, 3, 0, 100, avg);
  simo::FosOrth<float> model(3, 2);
  ASSERT_TRUE(search(avg, model));
  // `factor` still holds the last block's factor.
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j <= i; ++j) {
      float sum = 0;
      for (int k = j; k <= i; ++k) sum += model.factor[i][k] * model.invFactors[2][k][j];
      EXPECT_NEAR(sum, i == j ? 1.F : 0.F, 1e-6F);
    }
}

TEST(ErrorCovariance, GoesIntoAMatrixOfAnyBases) {
  const simo::Matrix<float> x = test::whiteNoise(2, 80, 6);
  simo::FosAvg<float> avg(2, 3);
  simo::accum_actavgs(x, 0, 2, 0, 80, avg);
  simo::FosOrth<float> model(2, 3);
  ASSERT_TRUE(simo::fitModel(avg, 0, model));
  simo::Matrix<float> shifted(2, 2, 1, 1);
  simo::varEP(avg.lagAvgs, 0, 0, model.coefs, 3, shifted, model.explained);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) EXPECT_EQ(shifted[1 + i][1 + j], model.errCov[i][j]);
}

TEST(FosOrth, HasTheStatedShapes) {
  const simo::FosOrth<float> model(2, 3);
  EXPECT_EQ(model.coefs.base, 1);
  EXPECT_EQ(model.coefs.n, 3);
  EXPECT_EQ(model.invFactors.base, 1);
  EXPECT_EQ(model.invFactors[3].n, 2);
  EXPECT_EQ(model.alphas.n, 2);
  EXPECT_EQ(model.alphas.rowBase, 2);
  EXPECT_EQ(model.alphas.colBase, 1);
  EXPECT_EQ(model.explained.n, 3);
  EXPECT_EQ(model.errCov.nRows, 2);
  EXPECT_EQ(model.spare.nCols, 2);
  EXPECT_EQ(simo::FosOrth<float>(1, 0).alphas.n, 0);
  EXPECT_EQ(simo::FosOrth<float>(1, 1).alphas.n, 0);
}

}  // namespace
