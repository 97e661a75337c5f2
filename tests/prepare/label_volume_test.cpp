#include "prepare/label_volume.h"

#include <gtest/gtest.h>

namespace study {
namespace {

Grid line(int voxels, double step, double start) {
  Grid grid;
  grid.size = {voxels, 1, 1};
  grid.affine = formats::Affine{{step, 0, 0, start, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1}};
  return grid;
}

TEST(ReachOfLabels, CountsVoxelsWhoseCentreLiesOutsideTheGrid) {
  const LabelVolume image{line(6, 2, -4), {1, 1, 0, 2, 2, 1}, {}, "x"};
  const auto reaches = reachOfLabels(image, line(4, 3, -2));  // from -3.5 to 8.5 mm
  ASSERT_EQ(reaches.size(), 2U);
  EXPECT_EQ(reaches.at(1).voxels, 3U);
  EXPECT_EQ(reaches.at(1).beyond, 1U);
  EXPECT_EQ(reaches.at(2).voxels, 2U);
  EXPECT_EQ(reaches.at(2).beyond, 0U);
  EXPECT_DOUBLE_EQ(reaches.at(1).shareInside(), 2.0 / 3);
}

TEST(ReachOfLabels, OnTheSameGridThereIsNothingToCount) {
  EXPECT_TRUE(reachOfLabels({line(3, 2, 0), {1, 1, 1}, {}, "x"}, line(3, 2, 0)).empty());
}

TEST(ReachOfSphere, CountsTheVoxelsThatTheGridWouldHaveIfItWentOn) {
  Grid cube;
  cube.size = {5, 5, 5};
  EXPECT_EQ(reachOfSphere({2, 2, 2}, 1, cube).voxels, 7U);
  EXPECT_EQ(reachOfSphere({2, 2, 2}, 1, cube).beyond, 0U);
  EXPECT_EQ(reachOfSphere({0, 2, 2}, 1, cube).beyond, 1U);
  EXPECT_EQ(reachOfSphere({-1, 2, 2}, 1, cube).beyond, 6U);
  EXPECT_EQ(reachOfSphere({2, 2, 2}, 1e5, cube).voxels, 0U);  // nobody counts that
  EXPECT_EQ(reachOfSphere({2, 2, 2}, 1e5, cube).shareInside(), 1);
}

TEST(VoxelsInSphere, AreThoseOfAllVoxelsThatLieInIt) {
  Grid oblique;
  oblique.size = {14, 11, 9};
  oblique.affine.m = {-2.1, 0.4, 0.1, 12, 0.3, 2.6, -0.5, -9, 0.2, 0.6, 3.1, -14, 0, 0, 0, 1};
  Grid cube;
  cube.size = {7, 7, 7};
  for (const Grid& grid : {oblique, cube}) {
    for (const double radius : {0.0, 1.0, 2.0, 5.5, 9.0, 400.0}) {
      for (std::size_t centre = 0; centre < grid.size.voxels(); centre += 37) {
        const auto mm = grid.toMm(grid.size.voxelAt(centre));
        std::vector<std::size_t> expected;
        for (std::size_t voxel = 0; voxel < grid.size.voxels(); ++voxel)
          if (isInSphere(mm, radius, grid, grid.size.voxelAt(voxel))) expected.push_back(voxel);
        ASSERT_EQ(voxelsInSphere(mm, radius, grid), expected) << radius << " at " << centre;
      }
    }
  }
  EXPECT_TRUE(voxelsInSphere({1e7, 0, 0}, 3, cube).empty());
}

}  // namespace
}  // namespace study
