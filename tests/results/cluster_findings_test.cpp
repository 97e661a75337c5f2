#include "results/cluster_findings.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace study {
namespace {

// 6 x 5 x 2 voxels, all computed and 0 until a test says otherwise.
class Clusters : public ::testing::Test {
 protected:
  Clusters() {
    grid_.size = {6, 5, 2};
    grid_.affine.m = {2, 0, 0, -10, 0, 3, 0, 20, 0, 0, 4, 30, 0, 0, 0, 1};
    values_.assign(grid_.size.voxels(), 0);
    codes_.assign(grid_.size.voxels(), static_cast<std::uint8_t>(StatusCode::kComputed));
  }
  void set(int x, int y, int z, float value) { values_[grid_.size.index(x, y, z)] = value; }
  void setCode(int x, int y, int z, StatusCode code) {
    codes_[grid_.size.index(x, y, z)] = static_cast<std::uint8_t>(code);
  }
  [[nodiscard]] PlacedMap map() const { return {values_.data(), codes_, grid_, names_.get()}; }
  std::vector<PlacedCluster> find(float threshold = 1) {
    tav::ClusterFinder finder(grid_.size);
    return placedClusters(map(), threshold, finder);
  }
  Grid grid_;
  std::vector<float> values_;
  std::vector<std::uint8_t> codes_;
  std::unique_ptr<PlaceNames> names_;
};

using Voxel = std::array<int, 3>;
using Mm = std::array<double, 3>;

TEST_F(Clusters, CornersTouchAndGapsDoNot) {
  set(0, 0, 0, 2), set(1, 1, 1, 3);  // at a corner
  set(3, 1, 1, 5);                   // a voxel between
  const auto found = find();
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].voxels, 2U);
  EXPECT_EQ(found[0].peaks[0].voxel, (Voxel{1, 1, 1}));
  EXPECT_EQ(found[0].peaks[0].mm, (Mm{-8, 23, 34}));
  EXPECT_EQ(found[1].voxels, 1U);
  EXPECT_EQ(found[1].peaks[0].value, 5);
}

TEST_F(Clusters, SignsStandApartSideBySide) {
  set(1, 1, 0, 2), set(2, 1, 0, 2);
  set(3, 1, 0, -4), set(4, 1, 0, -3), set(5, 1, 0, -2);
  const auto found = find();
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].voxels, 3U);
  EXPECT_EQ(found[0].peaks[0].value, -4);
  EXPECT_EQ(found[1].voxels, 2U);
  EXPECT_EQ(found[1].peaks[0].value, 2);
}

// The last voxel of a row and the first of the next are neighbours by index alone.
TEST_F(Clusters, AtTheBorderOfTheGridNothingWrapsAround) {
  set(5, 2, 0, 2), set(0, 3, 0, 2), set(5, 4, 1, 3), set(0, 0, 0, 1);
  const auto found = find();
  ASSERT_EQ(found.size(), 4U);
  for (const PlacedCluster& cluster : found) EXPECT_EQ(cluster.voxels, 1U);
  EXPECT_EQ(found[0].peaks[0].voxel, (Voxel{5, 4, 1}));
}

TEST_F(Clusters, TheReferenceZeroAndWhatIsNotFiniteTakeNoPart) {
  set(0, 0, 0, 9), setCode(0, 0, 0, StatusCode::kInsideReference);
  set(1, 0, 0, 2);
  set(2, 0, 0, std::numeric_limits<float>::infinity());
  set(3, 0, 0, std::numeric_limits<float>::quiet_NaN());
  for (const float threshold : {0.0F, 2.0F}) {
    const auto found = find(threshold);
    ASSERT_EQ(found.size(), 1U) << threshold;
    EXPECT_EQ(found[0].voxels, 1U);
    EXPECT_EQ(found[0].peaks[0].voxel, (Voxel{1, 0, 0}));
  }
  EXPECT_TRUE(find(2.5F).empty());
}

TEST_F(Clusters, EqualSizesComeByTheirPeaksAndThenByTheirPlaces) {
  set(5, 0, 0, 2), set(0, 0, 0, 2), set(2, 4, 0, -7), set(0, 3, 1, 1), set(0, 4, 1, 1);
  const auto found = find();
  ASSERT_EQ(found.size(), 4U);
  EXPECT_EQ(found[0].peaks[0].voxel, (Voxel{0, 3, 1}));  // two voxels; of equal ones the first
  EXPECT_EQ(found[1].peaks[0].voxel, (Voxel{2, 4, 0}));
  EXPECT_EQ(found[2].peaks[0].voxel, (Voxel{0, 0, 0}));
  EXPECT_EQ(found[3].peaks[0].voxel, (Voxel{5, 0, 0}));
}

TEST_F(Clusters, VolumesAndCentresFollowTheAffine) {
  set(1, 1, 0, 1), set(2, 1, 0, 3);
  auto found = find();
  EXPECT_DOUBLE_EQ(found.at(0).volumeMm3, 2 * 24);
  EXPECT_NEAR(found[0].centreMm[0], -10 + 2 * 1.75, 1e-12);
  EXPECT_NEAR(found[0].centreMm[1], 23, 1e-12);
  EXPECT_NEAR(found[0].centreMm[2], 30, 1e-12);
  // Sheared and mirrored: the determinant is -2 * (3 * 4 - 0.5 * -0.5) = -24.5, the columns' lengths are
  // more.
  grid_.affine.m = {-2, 1, 0, 10, 0, 3, 0.5, 0, 0, -0.5, 4, 0, 0, 0, 0, 1};
  found = find();
  EXPECT_DOUBLE_EQ(found.at(0).volumeMm3, 2 * 24.5);
  EXPECT_NEAR(found[0].centreMm[0], 10 - 2 * 1.75 + 1, 1e-12);
  EXPECT_NEAR(found[0].centreMm[1], 3, 1e-12);
  EXPECT_NEAR(found[0].centreMm[2], -0.5, 1e-12);
}

// A place is where its magnitude pulls, whatever the sign.
TEST_F(Clusters, CentresOfNegativeClustersLieInsideThem) {
  set(1, 1, 0, -1), set(2, 1, 0, -3);
  EXPECT_NEAR(find().at(0).centreMm[0], -6.5, 1e-12);
}

TEST_F(Clusters, LabelsComeByDescendingSharesAndPeaksHaveTheirs) {
  LabelVolume volume;
  volume.grid = grid_;
  volume.labels.assign(grid_.size.voxels(), 0);
  volume.names = {{4, "V1"}, {2, "V2"}};
  for (int x = 0; x < 5; ++x) set(x, 2, 0, static_cast<float>(x + 1));
  const auto label = [&](int x, std::int32_t value) { volume.labels[grid_.size.index(x, 2, 0)] = value; };
  label(0, 4), label(1, 4), label(3, 2), label(4, 9);
  names_ = std::make_unique<PlaceNames>(volume);
  const auto found = find();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].peaks[0].label, "label9");
  ASSERT_EQ(found[0].labels.size(), 4U);
  EXPECT_EQ(found[0].labels[0].label, "V1");
  EXPECT_DOUBLE_EQ(found[0].labels[0].share, 0.4);
  EXPECT_EQ(found[0].labels[1].label, "none");  // equal shares: by label
  EXPECT_EQ(found[0].labels[2].label, "V2");
  EXPECT_DOUBLE_EQ(found[0].labels[3].share, 0.2);
  names_.reset();
  EXPECT_EQ(find()[0].peaks[0].label, "");
  EXPECT_TRUE(find()[0].labels.empty());
}

TEST_F(Clusters, LevelsSayTheSmallestQThatAVoxelPasses) {
  set(0, 0, 0, 9), set(1, 0, 0, -5), set(2, 0, 0, 3), set(3, 0, 0, 1);
  set(4, 0, 0, 9), setCode(4, 0, 0, StatusCode::kInsideReference);
  const auto levels = passedLevels(map(), {{0.01, 5.0, 2, 2}, {0.05, 3.0, 3, 3}, {0.1, 2.0, 3, 3}});
  EXPECT_EQ(std::vector<std::uint8_t>(levels.begin(), levels.begin() + 6),
            (std::vector<std::uint8_t>{3, 3, 2, 0, 0, 0}));
  // A threshold that no voxel passes by the search is none, whatever its number.
  const auto none = passedLevels(map(), {{0.01, 5.0, 0, 0}, {0.05, std::nullopt, 0, 0}, {0.1, 3.0, 3, 3}});
  EXPECT_EQ(std::vector<std::uint8_t>(none.begin(), none.begin() + 4),
            (std::vector<std::uint8_t>{1, 1, 1, 0}));
}

}  // namespace
}  // namespace study
