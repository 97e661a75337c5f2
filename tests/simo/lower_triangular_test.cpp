#include "simo/lower_triangular.h"

#include <gtest/gtest.h>

#include "simo/matrix.h"

namespace {

TEST(LTData, StoresTheTriangleRowAfterRow) {
  simo::LTData<float> t(3, 1, 1, 0.F);
  ASSERT_EQ(t.size(), 6U);
  float value = 0;
  for (int r = 1; r <= 3; ++r)
    for (int c = 1; c <= r; ++c) t.rows[r][c] = ++value;
  for (int i = 0; i < 6; ++i) EXPECT_EQ(t.elements()[i], static_cast<float>(i + 1));
}

TEST(LTData, KeepsUnequalBasesApart) {
  // The strict lower triangle of a 4 x 4 array: rows 2 ... 4, columns 1 ... row - 1.
  simo::LTData<float> t(3, 2, 1, 5.F);
  EXPECT_EQ(t.rowEnd, 5);
  EXPECT_EQ(&t.rows[2][1], t.elements());
  EXPECT_EQ(&t.rows[4][3], t.elements() + 5);
  EXPECT_EQ(t.rows[4][3], 5.F);
}

TEST(LTData, CopyIsIndependentOfItsSource) {
  const simo::LTData<float> source(2, -1, -1, 3.F);
  simo::LTData<float> copy(source);
  copy.rows[0][-1] = 8.F;
  EXPECT_EQ(source.rows[0][-1], 3.F);
  EXPECT_EQ(copy.rows[0][0], 3.F);
  EXPECT_EQ(copy.rowBase, -1);
  EXPECT_EQ(copy.colBase, -1);
}

TEST(LTData, OfMatricesGivesEachElementItsOwnStorage) {
  simo::LTData<simo::Matrix<float>> t(2, 1, 1, simo::Matrix<float>(2, 2, 0, 0, 1.F));
  t.rows[2][1][0][0] = 6.F;
  EXPECT_EQ(t.rows[1][1][0][0], 1.F);
  EXPECT_EQ(t.rows[2][2][0][0], 1.F);
}

TEST(LTData, WithoutRowsHoldsNothing) {
  const simo::LTData<float> t(0, 1, 1, 0.F);
  EXPECT_EQ(t.size(), 0U);
  EXPECT_EQ(t.rows, nullptr);
  EXPECT_EQ(simo::LTData<float>(t).rows, nullptr);
}

TEST(LTMatrix, HasTheShapeOfItsStore) {
  simo::LTMatrix<float> m(2, 3, 4, 1.F);
  EXPECT_EQ(m.n, m.store.n);
  EXPECT_EQ(m.rowBase, m.store.rowBase);
  EXPECT_EQ(m.colBase, m.store.colBase);
  EXPECT_EQ(m.rowEnd, m.store.rowEnd);
  EXPECT_EQ(m.rowEnd, 5);
  m[4][5] = 2.F;
  EXPECT_EQ(m.store.rows[4][5], 2.F);
}

TEST(LTMatrix, CopyIsIndependentOfItsSource) {
  const simo::LTMatrix<float> source(2, 0, 0, 1.F);
  simo::LTMatrix<float> copy(source);
  copy[1][0] = 4.F;
  EXPECT_EQ(source[1][0], 1.F);
}

}  // namespace
