#include "inference/cluster_finder.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/inference/made_data.h"

namespace {

using inference::ClusterFinder;

// A 5 x 5 x 5 cube of 0 with some voxels set.
std::vector<float> withVoxels(const std::vector<std::pair<std::array<int, 3>, float>>& voxels) {
  std::vector<float> z(125, 0.0F);
  const io::GridSize grid{5, 5, 5};
  for (const auto& [voxel, value] : voxels) z[grid.index(voxel)] = value;
  return z;
}

// Two that share an edge, one beside on the other side, one far away.
const std::vector<float> kVoxels = withVoxels(
    {{{1, 1, 1}, 4.0F}, {{2, 2, 1}, 5.5F}, {{3, 2, 1}, -7.0F}, {{4, 4, 4}, 3.5F}, {{0, 4, 4}, 2.9F}});

TEST(ClusterFinder, SumsWhatIsAboveTheFormingHeight) {
  const auto clusters = ClusterFinder(made::cube(5, 18), 3).find(kVoxels, true);
  ASSERT_EQ(clusters.size(), 3U);
  EXPECT_DOUBLE_EQ(clusters[0].mass, 4.0);
  EXPECT_EQ(clusters[0].sign, -1);
  EXPECT_DOUBLE_EQ(clusters[1].mass, 3.5);
  EXPECT_EQ(clusters[1].places, (std::vector<std::int32_t>{31, 37}));
  EXPECT_EQ(clusters[1].peak, 37U);
  EXPECT_DOUBLE_EQ(clusters[2].mass, 0.5);
}

TEST(ClusterFinder, ConnectsByTheNeighboursOfTheSpace) {
  EXPECT_EQ(ClusterFinder(made::cube(5, 6), 3).find(kVoxels, true).size(), 4U);
}

TEST(ClusterFinder, LooksAtOneSideWhenAsked) {
  const inference::Space space = made::cube(5, 18);
  ClusterFinder finder(space, 3);
  EXPECT_EQ(finder.find(kVoxels, false).size(), 2U);
  EXPECT_FLOAT_EQ(finder.largestMass(kVoxels, false), 3.5F);
  EXPECT_FLOAT_EQ(finder.largestMass(kVoxels, true), 4.0F);
  EXPECT_EQ(finder.largestMass(std::vector<float>(125, 1.0F), true), 0.0F);
}

TEST(ClusterFinder, JoinsEdgesAtNodes) {
  const auto space = inference::spaceOfEdges(6, {{0, 1}, {1, 2}, {3, 4}, {2, 5}, {4, 5}});
  const auto clusters = ClusterFinder(space, 2).find(std::vector<float>{3, 4, 5, 1, 6}, true);
  ASSERT_EQ(clusters.size(), 2U);
  EXPECT_EQ(clusters[0].places, (std::vector<std::int32_t>{2, 4}));
  EXPECT_EQ(clusters[1].places, (std::vector<std::int32_t>{0, 1}));
}

}  // namespace
