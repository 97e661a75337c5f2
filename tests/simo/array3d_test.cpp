#include "simo/array3d.h"

#include <gtest/gtest.h>

namespace {

TEST(Array3D, HoldsAllElementsInOneBlock) {
  Array3D<float> a(2, 3, 4);
  EXPECT_EQ(a.size(), 24U);
  EXPECT_EQ(a.ownsData, 1);
  EXPECT_EQ(&a[1][0][0], &a[0][0][0] + 12);
  for (unsigned i = 0; i < 2; ++i)
    for (unsigned j = 0; j < 3; ++j)
      for (unsigned k = 0; k < 4; ++k) a[i][j][k] = static_cast<float>((i * 3 + j) * 4 + k);
  for (int e = 0; e < 24; ++e) EXPECT_EQ(a[0][0][e], static_cast<float>(e));
}

TEST(Array3D, SharesOneTableOfRows) {
  const Array3D<float> a(2, 3, 4);
  EXPECT_EQ(a.planes[1], a.planes[0] + 3);
  EXPECT_EQ(a[1][2], a.elements() + 20);
}

TEST(Array3D, WithoutElementsHoldsNothing) {
  EXPECT_EQ(Array3D<float>(0, 3, 4).size(), 0U);
  EXPECT_EQ(Array3D<float>(2, 0, 4).size(), 0U);
  EXPECT_EQ(Array3D<float>(2, 3, 0).size(), 0U);
}

TEST(Array3D, LeavesABlockThatItDoesNotOwn) {
  float* block = nullptr;
  {
    Array3D<float> a(1, 1, 2);
    block = a.elements();
    a[0][0][1] = 5.F;
    a.ownsData = 0;
  }
  EXPECT_EQ(block[1], 5.F);
  delete[] block;
}

}  // namespace
