#include "render/upright.h"

#include <gtest/gtest.h>

namespace render {
namespace {

// Stored x runs to the left, y to the front, z up, as scanners like to store.
constexpr Affine kLas = {-2, 0, 0, 10, 0, 3, 0, 20, 0, 0, 4, 30, 0, 0, 0, 1};

TEST(Upright, ReversesAnAxisThatRunsToTheLeft) {
  const Upright view({3, 4, 5}, kLas);
  EXPECT_EQ(view.storedIndex(0, 0, 0), 2U);  // the patient's leftmost voxel is stored last
  EXPECT_EQ(view.storedIndex(2, 1, 1), 0U + 3U + 12U);
}

// Each axis reversed alone, on a box whose extents all differ.
TEST(Upright, ReversesEachAxisByItself) {
  const Affine identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  const std::size_t ofFirstVoxel[3] = {2, 3 * 3, 4 * 12};  // the stored voxel that comes first instead
  const std::size_t step[3] = {1, 3, 12};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    Affine reversed = identity;
    reversed[4 * axis + axis] = -1;
    const Upright view({3, 4, 5}, reversed);
    EXPECT_EQ(view.storedIndex(0, 0, 0), ofFirstVoxel[axis]) << axis;
    const int one[3] = {axis == 0 ? 1 : 0, axis == 1 ? 1 : 0, axis == 2 ? 1 : 0};
    EXPECT_EQ(view.storedIndex(one[0], one[1], one[2]), ofFirstVoxel[axis] - step[axis]) << axis;
    for (std::size_t other = 0; other < 3; ++other) {
      if (other == axis) continue;
      EXPECT_EQ(view.storedIndex(other == 0 ? 1 : 0, other == 1 ? 1 : 0, other == 2 ? 1 : 0),
                ofFirstVoxel[axis] + step[other])
          << axis << " " << other;
    }
  }
}

TEST(Upright, GivesVoxelEdgesPerPatientAxis) {
  const Upright view({3, 4, 5}, kLas);
  EXPECT_DOUBLE_EQ(view.voxelMm(0), 2);
  EXPECT_DOUBLE_EQ(view.voxelMm(1), 3);
  EXPECT_DOUBLE_EQ(view.voxelMm(2), 4);
}

TEST(Upright, FollowsPermutedAxes) {
  // Stored axes: top, right, front.
  const Affine permuted = {0, 2, 0, 0, 0, 0, 3, 0, 4, 0, 0, 0, 0, 0, 0, 1};
  const Upright view({5, 3, 4}, permuted);
  EXPECT_EQ(view.dim(0), 3);
  EXPECT_EQ(view.dim(1), 4);
  EXPECT_EQ(view.dim(2), 5);
  EXPECT_DOUBLE_EQ(view.voxelMm(0), 2);
  EXPECT_DOUBLE_EQ(view.voxelMm(1), 3);
  EXPECT_DOUBLE_EQ(view.voxelMm(2), 4);
  EXPECT_EQ(view.storedIndex(1, 0, 0), 5U);
  EXPECT_EQ(view.storedIndex(0, 1, 0), 15U);
  EXPECT_EQ(view.storedIndex(0, 0, 1), 1U);
}

TEST(Upright, AssignsObliqueAxesWithoutUsingOneTwice) {
  // Rotated by 40 degrees about x: front and top mix, none may be lost.
  const Affine oblique = {1, 0, 0, 0, 0, 0.766, -0.643, 0, 0, 0.643, 0.766, 0, 0, 0, 0, 1};
  const Upright view({3, 4, 5}, oblique);
  EXPECT_EQ(view.dim(0), 3);
  EXPECT_EQ(view.dim(1), 4);
  EXPECT_EQ(view.dim(2), 5);
}

}  // namespace
}  // namespace render
