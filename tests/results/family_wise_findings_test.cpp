#include "results/family_wise_findings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "results/results.h"

namespace study {
namespace {

// 8 x 1 x 1 voxels. Level 2; nine draws whose maxima are 1 ... 9 and whose masses are 0 ... 8 - 1 each for
// draws above the level.
class FamilyWise : public ::testing::Test {
 protected:
  FamilyWise() : nulls_(9, 2) {
    grid_.size = {8, 1, 1};
    grid_.affine.m = {2, 0, 0, -8, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
    for (std::size_t draw = 0; draw < 9; ++draw) {
      const std::uint32_t voxel = 3;
      const float value = static_cast<float>(draw + 1) * (draw % 2 == 0 ? 1.0F : -1.0F);
      nulls_.take(draw, {&voxel, 1}, &value);
    }
    tav::ClusterFinder finder(grid_.size);
    nulls_.findClusters(finder);
  }
  static std::vector<std::uint8_t> codes(const std::vector<StatusCode>& list) {
    std::vector<std::uint8_t> bytes;
    for (const StatusCode code : list) bytes.push_back(static_cast<std::uint8_t>(code));
    return bytes;
  }
  // A positive cluster of two, a negative one beside it, a gap, one at the level itself; then a voxel of the
  // reference, one without a finite value and one outside the mask.
  std::vector<float> values_ = {6.5F, 4.0F, -9.5F, 1.0F, 2.0F, 99.0F, std::numeric_limits<float>::infinity(),
                                0};
  std::vector<std::uint8_t> codes_ =
      codes({StatusCode::kComputed, StatusCode::kComputed, StatusCode::kComputed, StatusCode::kComputed,
             StatusCode::kComputed, StatusCode::kInsideReference, StatusCode::kNotFinite,
             StatusCode::kOutsideMask});
  tav::NullMaxima nulls_;
  Grid grid_;
  JudgedMap map_{values_.data(), codes_, nulls_};
};

TEST_F(FamilyWise, AVoxelsPCountsTheDrawsThatReachIt) {
  const std::vector<float> p = voxelP(map_);
  EXPECT_FLOAT_EQ(p[0], 4 / 10.0F);  // 7, 8 and 9
  EXPECT_FLOAT_EQ(p[1], 7 / 10.0F);  // 4 itself too
  EXPECT_FLOAT_EQ(p[2], 1 / 10.0F);
  EXPECT_FLOAT_EQ(p[3], 1);
  EXPECT_FLOAT_EQ(p[4], 9 / 10.0F);
  for (const unsigned none : {5U, 6U, 7U}) EXPECT_TRUE(std::isnan(p[none])) << none;
}

// Masses of the draws: 0, 0, 1, ... 7.
TEST_F(FamilyWise, AClustersPCountsTheDrawsWhoseLargestReachesItsMass) {
  const std::vector<tav::Cluster> clusters = clustersOf(map_, grid_);
  ASSERT_EQ(clusters.size(), 3U);
  const std::vector<float> p = clusterP(map_, clusters);
  EXPECT_FLOAT_EQ(p[0], 2 / 10.0F);  // 4.5 + 2 = 6.5 is reached by 7
  EXPECT_FLOAT_EQ(p[1], 2 / 10.0F);
  EXPECT_FLOAT_EQ(p[2], 1 / 10.0F);  // 7.5
  EXPECT_FLOAT_EQ(p[3], 1);          // in none
  EXPECT_FLOAT_EQ(p[4], 1);          // without mass
  for (const unsigned none : {5U, 6U, 7U}) EXPECT_TRUE(std::isnan(p[none])) << none;
}

TEST_F(FamilyWise, TheResultCountsAndListsWhatPasses) {
  const FamilyWiseResult result = familyWiseResult(map_, clustersOf(map_, grid_), grid_, {0.1, 0.2, 0.4});
  EXPECT_EQ(result.draws, 9);
  EXPECT_EQ(result.clusterFormingP, 0.001);
  EXPECT_EQ(result.clusterFormingLevel, 2);
  EXPECT_EQ(result.clusters, 3U);
  ASSERT_EQ(result.levels.size(), 4U);
  EXPECT_EQ(result.levels[0], (FamilyWiseLevel{0.05, std::nullopt, 0, 0, 0}));  // too few draws
  EXPECT_EQ(result.levels[1].voxelsPassing, 1U);
  EXPECT_EQ(result.levels[1].clustersPassing, 1U);
  EXPECT_EQ(result.levels[2].clustersPassing, 2U);
  EXPECT_EQ(result.levels[2].voxelsInClusters, 3U);
  EXPECT_EQ(result.levels[3].voxelsPassing, 2U);
  EXPECT_NEAR(*result.levels[3].threshold, 6, 1e-5);  // just above the fourth largest draw
  ASSERT_EQ(result.largest.size(), 3U);
  EXPECT_EQ(result.largest[0], (ClusterResult{-9.5, {2, 0, 0}, {-4, 0, 0}, 1, 7.5, 0.1}));
  EXPECT_EQ(result.largest[1], (ClusterResult{6.5, {0, 0, 0}, {-8, 0, 0}, 2, 6.5, 0.2}));
  EXPECT_EQ(result.largest[2].mass, 0);
}

TEST_F(FamilyWise, AtMostFiftyClustersAreListedAndAllAreCounted) {
  grid_.size = {200, 1, 1};
  values_.assign(200, 0);
  for (std::size_t i = 0; i < 200; i += 2) values_[i] = 3 + static_cast<float>(i);
  codes_.assign(200, static_cast<std::uint8_t>(StatusCode::kComputed));
  const JudgedMap map{values_.data(), codes_, nulls_};
  const FamilyWiseResult result = familyWiseResult(map, clustersOf(map, grid_), grid_, {0.05});
  EXPECT_EQ(result.levels.size(), 1U);
  EXPECT_EQ(result.clusters, 100U);
  ASSERT_EQ(result.largest.size(), 50U);
  EXPECT_EQ(result.largest[0].peakVoxel[0], 198);
}

}  // namespace
}  // namespace study
