#include "results/local_peaks.h"

#include <gtest/gtest.h>

namespace study {
namespace {

// A row of voxels of 4 mm with these values, as one cluster.
std::vector<tav::MapPoint> peaksOfRow(const std::vector<float>& values, double step = 4) {
  Grid grid;
  grid.size = {static_cast<int>(values.size()), 1, 1};
  grid.affine.m = {step, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
  tav::Cluster cluster;
  for (std::size_t i = 0; i < values.size(); ++i)
    cluster.points.push_back({static_cast<std::uint32_t>(i), values[i]});
  return peaksOf(cluster, grid);
}

std::vector<std::uint32_t> voxels(const std::vector<tav::MapPoint>& points) {
  std::vector<std::uint32_t> list;
  for (const tav::MapPoint& point : points) list.push_back(point.voxel);
  return list;
}

using Voxels = std::vector<std::uint32_t>;

TEST(LocalPeaks, ComeByDescendingMagnitudeAndSlopesAreNone) {
  EXPECT_EQ(voxels(peaksOfRow({5, 4, 3, 6, 5, 2, 9, 8})), (Voxels{6, 3, 0}));
  EXPECT_EQ(voxels(peaksOfRow({-5, -4, -3, -6})), (Voxels{3, 0}));
  EXPECT_EQ(voxels(peaksOfRow({9, 8, 7, 6, 5, 4})), (Voxels{0}));
}

// 8 mm themselves are far enough; the lower of two that are nearer is left out.
TEST(LocalPeaks, LieEightMillimetresApart) {
  EXPECT_EQ(voxels(peaksOfRow({7, 1, 9, 1, 8}, 4)), (Voxels{2, 4, 0}));
  EXPECT_EQ(voxels(peaksOfRow({7, 1, 9, 1, 8}, 3.9)), (Voxels{2}));
  EXPECT_EQ(voxels(peaksOfRow({7, 1, 9, 1, 8}, -4)), (Voxels{2, 4, 0}));
  EXPECT_EQ(voxels(peaksOfRow({7, 1, 1, 9, 1, 8}, 3.9)), (Voxels{3, 0}));
}

TEST(LocalPeaks, ThreeFollowTheLargestAtMost) {
  EXPECT_EQ(voxels(peaksOfRow({1, 0.5, 2, 0.5, 3, 0.5, 4, 0.5, 5, 0.5, 6})), (Voxels{10, 8, 6, 4}));
}

TEST(LocalPeaks, OfEqualVoxelsTheFirstCounts) {
  EXPECT_EQ(voxels(peaksOfRow({3, 3, 3, 3, 3})), (Voxels{0}));
  EXPECT_EQ(voxels(peaksOfRow({3, 1, 1, 3})), (Voxels{0, 3}));
}

// Voxel 2 ends a row and voxel 3 begins the next: neighbours by index, two voxels apart in space.
TEST(LocalPeaks, RowsDoNotTouchAcrossTheBorderOfTheGrid) {
  Grid grid;
  grid.size = {3, 2, 1};
  grid.affine.m = {10, 0, 0, 0, 0, 10, 0, 0, 0, 0, 10, 0, 0, 0, 0, 1};
  tav::Cluster cluster;
  cluster.points = {{1, 1}, {2, 9}, {3, 8}};
  EXPECT_EQ(voxels(peaksOf(cluster, grid)), (Voxels{2, 3}));
  cluster.points = {{2, 9}, {4, 8}};  // at a corner
  EXPECT_EQ(voxels(peaksOf(cluster, grid)), (Voxels{2}));
}

}  // namespace
}  // namespace study
