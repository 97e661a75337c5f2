#include "simo/cholesky.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

simo::Matrix<float> twoByTwo(float a, float b, float c, float d, int base = 0) {
  simo::Matrix<float> m(2, 2, base, base);
  m[base][base] = a;
  m[base][base + 1] = b;
  m[base + 1][base] = c;
  m[base + 1][base + 1] = d;
  return m;
}

TEST(Cholesky, FactorisesTheTextbookCase) {
  const simo::Matrix<float> a = twoByTwo(4, 2, 2, 3);
  simo::LTMatrix<float> l(2, 0, 0, 0.F);
  ASSERT_TRUE(simo::cholDcmpP(a, 0, 2, l));
  EXPECT_EQ(l[0][0], 2.F);
  EXPECT_EQ(l[1][0], 1.F);
  EXPECT_EQ(l[1][1], std::sqrt(2.F));
  float det = 0;
  ASSERT_TRUE(simo::detPosDef(a, l, det));
  EXPECT_FLOAT_EQ(det, 8.F);
}

TEST(Cholesky, ReadsTheUpperTriangleOnly) {
  const simo::Matrix<float> garbage = twoByTwo(4, 2, std::nanf(""), 3);
  simo::LTMatrix<float> l(2, 0, 0, 0.F);
  ASSERT_TRUE(simo::cholDcmpP(garbage, 0, 2, l));
  EXPECT_EQ(l[1][0], 1.F);
  EXPECT_EQ(l[1][1], std::sqrt(2.F));
}

TEST(Cholesky, FactorTimesItsTransposeIsTheMatrix) {
  const int n = 6;
  simo::Matrix<float> a(n, n, 0, 0);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) a[i][j] = std::exp(-0.3F * static_cast<float>(std::abs(i - j)));
  simo::LTMatrix<float> l(n, 0, 0, 0.F);
  ASSERT_TRUE(simo::cholDcmpP(a, 0, n, l));
  for (int i = 0; i < n; ++i)
    for (int j = 0; j <= i; ++j) {
      double sum = 0;
      for (int k = 0; k <= j; ++k) sum += static_cast<double>(l[i][k]) * static_cast<double>(l[j][k]);
      // One rounding of each of the at most six factor elements in a row.
      EXPECT_NEAR(sum, static_cast<double>(a[i][j]), 6 * 1.2e-7);
    }
}

TEST(Cholesky, RefusesAPivotOfZeroOrBelow) {
  simo::LTMatrix<float> l(1, 0, 0, 7.F);
  float det = 5;
  for (const float pivot : {0.F, -0.F, -2.F, -kInfinity}) {
    const simo::Matrix<float> a(1, 1, 0, 0, pivot);
    EXPECT_FALSE(simo::cholDcmpP(a, 0, 1, l));
    EXPECT_FALSE(simo::detPosDef(a, l, det));
  }
  EXPECT_EQ(det, 5.F);
  EXPECT_EQ(l[0][0], 7.F);
}

TEST(Cholesky, LeavesTheRowsBeforeARefusedPivotWritten) {
  const simo::Matrix<float> a = twoByTwo(4, 6, 6, 9);
  simo::LTMatrix<float> l(2, 0, 0, -1.F);
  EXPECT_FALSE(simo::cholDcmpP(a, 0, 2, l));
  EXPECT_EQ(l[0][0], 2.F);
  EXPECT_EQ(l[1][0], 3.F);
  EXPECT_EQ(l[1][1], -1.F);
}

TEST(Cholesky, OfASubBlockFillsTheFactorsFirstRow) {
  const simo::Matrix<float> a = twoByTwo(-1, 2, 2, 9);
  simo::LTMatrix<float> l(1, 0, 0, 0.F);
  ASSERT_TRUE(simo::cholDcmpP(a, 1, 2, l));
  EXPECT_EQ(l[0][0], 3.F);
}

TEST(Cholesky, MapsIndicesFromAnyBases) {
  const simo::Matrix<float> a = twoByTwo(4, 2, 2, 3, 5);
  simo::LTMatrix<float> l(2, -3, 8, 0.F);
  float det = 0;
  ASSERT_TRUE(simo::detPosDef(a, l, det));
  EXPECT_EQ(l[-3][8], 2.F);
  EXPECT_EQ(l[-2][8], 1.F);
  EXPECT_FLOAT_EQ(det, 8.F);
}

TEST(Cholesky, OfAnEmptyBlockSucceedsAndWritesNothing) {
  const simo::Matrix<float> a = twoByTwo(-1, 0, 0, -1);
  simo::LTMatrix<float> l(2, 0, 0, 7.F);
  EXPECT_TRUE(simo::cholDcmpP(a, 1, 1, l));
  EXPECT_TRUE(simo::cholDcmpP(a, 2, 0, l));
  for (std::size_t e = 0; e < 3; ++e) EXPECT_EQ(l.store.elements()[e], 7.F);
}

TEST(Cholesky, LetsANotANumberPivotPass) {
  const float nan = std::nanf("");
  simo::LTMatrix<float> l(2, 0, 0, 0.F);
  float det = 0;
  ASSERT_TRUE(simo::detPosDef(twoByTwo(nan, 1, 1, 1), l, det));
  EXPECT_TRUE(std::isnan(l[0][0]));
  EXPECT_TRUE(std::isnan(l[1][1]));
  EXPECT_TRUE(std::isnan(det));
}

TEST(Cholesky, PassesInfinitiesOn) {
  simo::LTMatrix<float> l(2, 0, 0, 0.F);
  float det = 0;
  ASSERT_TRUE(simo::detPosDef(twoByTwo(kInfinity, 1, 1, 1), l, det));
  EXPECT_EQ(l[1][0], 0.F);
  EXPECT_EQ(det, kInfinity);
}

TEST(Cholesky, MultipliesInDouble) {
  // 1 + 2^-20 squared is 1 + 2^-19 + 2^-40: single precision would lose the last term, and the pivot.
  const float offDiagonal = 1.F + 0x1p-20F;
  simo::LTMatrix<float> l(2, 0, 0, 0.F);
  EXPECT_FALSE(simo::cholDcmpP(twoByTwo(1, offDiagonal, offDiagonal, 1.F + 0x1p-19F), 0, 2, l));
  ASSERT_TRUE(simo::cholDcmpP(twoByTwo(1, offDiagonal, offDiagonal, 1.F + 0x1p-19F + 0x1p-23F), 0, 2, l));
  EXPECT_EQ(l[1][1], static_cast<float>(std::sqrt(0x1p-23 - 0x1p-40)));
}

TEST(Cholesky, SumsInDouble) {
  // The last pivot is 1 - 2^-26 - (1 - 2^-24)^2: single precision would round the first step back to 1.
  simo::Matrix<float> a(3, 3, 0, 0, 0.F);
  a[0][0] = a[1][1] = a[2][2] = 1.F;
  a[0][2] = 1.F - 0x1p-24F;
  a[1][2] = 0x1p-13F;
  simo::LTMatrix<float> l(3, 0, 0, 0.F);
  ASSERT_TRUE(simo::cholDcmpP(a, 0, 3, l));
  EXPECT_EQ(l[2][2], static_cast<float>(std::sqrt(0x1p-23 - 0x1p-26 - 0x1p-48)));
}

TEST(Determinant, OfAFactorWithoutRowsIsOne) {
  const simo::Matrix<float> a(0, 0, 0, 0);
  simo::LTMatrix<float> l(0, 0, 0, 0.F);
  float det = 0;
  ASSERT_TRUE(simo::detPosDef(a, l, det));
  EXPECT_EQ(det, 1.F);
}

TEST(Determinant, MultipliesAndSquaresInDouble) {
  simo::LTMatrix<float> l(4, 0, 0, 0.F);
  // In single precision the product would be 0 after two of the four factors.
  l[0][0] = l[1][1] = 1e-25F;
  l[2][2] = l[3][3] = 1.7e25F;
  double product = 1;
  for (int i = 0; i < 4; ++i) product *= static_cast<double>(l[i][i]);
  EXPECT_EQ(simo::squaredDiagonalProduct(l), static_cast<float>(product * product));
}

TEST(Determinant, RoundsOnceAfterSquaring) {
  simo::LTMatrix<float> l(2, 0, 0, 0.F);
  l[0][0] = 1.1F;
  l[1][1] = 1.7F;
  const double product = static_cast<double>(1.1F) * static_cast<double>(1.7F);
  const auto roundedFirst = static_cast<float>(product);
  ASSERT_NE(static_cast<float>(product * product), roundedFirst * roundedFirst);
  EXPECT_EQ(simo::squaredDiagonalProduct(l), static_cast<float>(product * product));
}

}  // namespace
