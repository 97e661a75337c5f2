#include "simo/ar_coefficients.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/simo/least_squares.h"
#include "tests/simo/series.h"

namespace {

TEST(ArCoefficients, OfOrderOneDivideByTheZeroLagPair) {
  simo::FosAvg<float> avg(1, 1);
  avg.lagAvgs[0][0][0] = 5.F;
  avg.lagAvgs[1][0][0] = 3.F;
  avg.lagPairAvgs[1][1][0][0] = 4.F;
  simo::FosOrth<float> model(1, 1);
  ASSERT_TRUE(simo::fitModel(avg, 0, model));
  simo::Vector<simo::Matrix<float>> a(1, 1, simo::Matrix<float>(1, 1, 1, 1, 0.F));
  simo::arCoefficients(model.coefs, model.invFactors, model.alphas, 1, a);
  EXPECT_EQ(a[1][1][1], 0.75F);
}

TEST(ArCoefficients, GiveTheOrthogonalPredictorForAnyRepresentation) {
  const int n = 2;
  const int p = 4;
  std::mt19937 engine(17);
  std::uniform_real_distribution<float> uniform(-1.F, 1.F);
  simo::FosOrth<float> model(n, p);
  for (int m = 1; m <= p; ++m) {
    for (std::size_t e = 0; e < 4; ++e) model.coefs[m].elements()[e] = uniform(engine);
    for (std::size_t e = 0; e < 3; ++e) model.invFactors[m].store.elements()[e] = uniform(engine);
    for (int k = 1; k < m; ++k)
      for (std::size_t e = 0; e < 4; ++e) model.alphas[m][k].elements()[e] = uniform(engine);
  }
  simo::Vector<simo::Matrix<float>> a(p, 1, simo::Matrix<float>(n, n, 1, 3, 0.F));
  simo::arCoefficients(model.coefs, model.invFactors, model.alphas, p, a);

  // Predict from random lagged values, once by q_m = Li_m (x(t-m) - sum A(m,k) q_k), once by a_k.
  double past[p + 1][n];
  double q[p + 1][n];
  double orthogonal[n] = {0, 0};
  double ordinary[n] = {0, 0};
  for (int m = 1; m <= p; ++m) {
    double rest[n];
    for (int i = 0; i < n; ++i) {
      rest[i] = past[m][i] = static_cast<double>(uniform(engine));
      for (int k = 1; k < m; ++k)
        for (int j = 0; j < n; ++j) rest[i] -= static_cast<double>(model.alphas[m][k][i][j]) * q[k][j];
    }
    for (int i = 0; i < n; ++i) {
      q[m][i] = 0;
      for (int j = 0; j <= i; ++j) q[m][i] += static_cast<double>(model.invFactors[m][i][j]) * rest[j];
    }
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) {
        orthogonal[i] += static_cast<double>(model.coefs[m][i][j]) * q[m][j];
        ordinary[i] += static_cast<double>(a[m][1 + i][3 + j]) * past[m][j];
      }
  }
  for (int i = 0; i < n; ++i) EXPECT_NEAR(orthogonal[i], ordinary[i], 1e-5);
}

TEST(ArCoefficients, AreThoseOfLeastSquares) {
  const test::Dense influence(2, 2, {0.5, 0.1, 0.4, 0.3});
  const simo::Matrix<float> x = test::autoregression({influence, test::Dense(2, 2, {-0.3, 0, 0.2, 0.1})},
                                                     test::Dense(2, 2, {1, 0.3, 0.3, 2}), 300, 9);
  for (const int n : {1, 2})
    for (const int p : {1, 2, 3, 5, 10}) {
      simo::FosAvg<float> avg(n, p);
      simo::accum_actavgs(x, 0, n, 0, 300, avg, simo::LagPairForm::kConsistent);
      simo::FosOrth<float> model(n, p);
      ASSERT_TRUE(simo::fitModel(avg, 0, model));
      simo::Vector<simo::Matrix<float>> a(p, 1, simo::Matrix<float>(n, n, 0, 0, 0.F));
      simo::arCoefficients(model.coefs, model.invFactors, model.alphas, p, a);
      const test::Dense expected =
          test::fitLeastSquares(x, n == 1 ? std::vector{0} : std::vector{0, 1}, p, 0).coefficients;
      for (int k = 1; k <= p; ++k)
        for (int i = 0; i < n; ++i)
          for (int j = 0; j < n; ++j)
            EXPECT_NEAR(static_cast<double>(a[k][i][j]),
                        expected(static_cast<std::size_t>(i), static_cast<std::size_t>((k - 1) * n + j)),
                        2e-5)
                << "n " << n << " p " << p << " lag " << k << " element " << i << ',' << j;
    }
}

TEST(ArCoefficients, OfOrderZeroWriteNothing) {
  const simo::FosOrth<float> model(1, 0);
  simo::Vector<simo::Matrix<float>> a(1, 1, simo::Matrix<float>(1, 1, 0, 0, 4.F));
  simo::arCoefficients(model.coefs, model.invFactors, model.alphas, 0, a);
  EXPECT_EQ(a[1][0][0], 4.F);
}

}  // namespace
