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

}  // namespace
}  // namespace study
