#include "simo/matrix.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>

namespace {

TEST(Matrix, AddressesElementsFromItsBasesAndStoresThemRowByRow) {
  simo::Matrix<float> m(3, 2, 1, 1);
  float value = 0;
  for (int r = 1; r <= 3; ++r)
    for (int c = 1; c <= 2; ++c) m[r][c] = ++value;
  for (int i = 0; i < 6; ++i) EXPECT_EQ(m.elements()[i], static_cast<float>(i + 1));
  EXPECT_EQ(&m[1][1], m.elements());
  EXPECT_EQ(&m[3][2], m.elements() + 5);
}

TEST(Matrix, ReportsItsShape) {
  const simo::Matrix<float> m(3, 2, -4, 7, 0.F);
  EXPECT_EQ(m.nRows, 3);
  EXPECT_EQ(m.nCols, 2);
  EXPECT_EQ(m.rowBase, -4);
  EXPECT_EQ(m.colBase, 7);
  EXPECT_EQ(m.rowEnd, -1);
  EXPECT_EQ(m.colEnd, 9);
  EXPECT_EQ(m.ownsData, 1);
  EXPECT_EQ(m.rows[-4] + 7, m.elements());
}

TEST(Matrix, FillsEveryElement) {
  simo::Matrix<float> m(3, 4, -1, 2, 2.5F);
  for (std::size_t i = 0; i < m.size(); ++i) EXPECT_EQ(m.elements()[i], 2.5F);
  m.fill(-1.F);
  EXPECT_EQ(m[1][5], -1.F);
}

TEST(Matrix, AssignCopiesTheBlockOfItsOwnShape) {
  simo::Matrix<float> source(5, 5, 0, 0);
  for (int r = 0; r < 5; ++r)
    for (int c = 0; c < 5; ++c) source[r][c] = static_cast<float>(10 * r + c);
  simo::Matrix<float> target(2, 3, 1, 1);
  EXPECT_EQ(&target.assign(source, 2, 1), &target);
  for (int r = 0; r < 2; ++r)
    for (int c = 0; c < 3; ++c) EXPECT_EQ(target[1 + r][1 + c], static_cast<float>(10 * (2 + r) + 1 + c));
}

TEST(Matrix, AssignLeavesAMatrixWithoutRowsUnchanged) {
  const simo::Matrix<float> source(2, 2, 0, 0, 1.F);
  simo::Matrix<float> target(0, 2, 0, 0);
  EXPECT_EQ(&target.assign(source, 0, 0), &target);
  EXPECT_EQ(target.rows, nullptr);
}

TEST(Matrix, WithoutRowsOrColumnsHoldsNothing) {
  const simo::Matrix<float> noRows(0, 3, 1, 1);
  const simo::Matrix<float> noCols(3, 0, 1, 1, 5.F);
  for (const auto* m : {&noRows, &noCols}) {
    EXPECT_EQ(m->size(), 0U);
    EXPECT_EQ(m->elements(), nullptr);
    EXPECT_EQ(simo::Matrix<float>(*m).elements(), nullptr);
  }
  EXPECT_EQ(noCols.rowEnd, 4);
}

TEST(Matrix, CopyIsIndependentOfItsSource) {
  const simo::Matrix<float> source(2, 2, 3, 4, 1.F);
  simo::Matrix<float> copy(source);
  copy[3][4] = 9.F;
  EXPECT_EQ(source[3][4], 1.F);
  EXPECT_EQ(copy[4][5], 1.F);
  EXPECT_EQ(copy.rowBase, 3);
  EXPECT_EQ(copy.colBase, 4);
}

TEST(Matrix, LeavesStorageThatItDoesNotOwn) {
  float* block = nullptr;
  float** rows = nullptr;
  {
    simo::Matrix<float> m(1, 2, 0, 0, 3.F);
    block = m.elements();
    rows = m.rows;
    m.ownsData = 0;
  }
  EXPECT_EQ(block[1], 3.F);
  EXPECT_EQ(rows[0], block);
  delete[] block;
  delete[] rows;
}

#if !defined(TAVMAP_SANITIZED)  // they end the program instead
TEST(Matrix, ThrowsWhenMemoryIsExhausted) {
  const int huge = std::numeric_limits<int>::max();
  EXPECT_THROW(simo::Matrix<float>(1 << 20, huge, 0, 0), std::bad_alloc);
}
#endif

}  // namespace
