#include "formats/voxel_runs.h"

#include <gtest/gtest.h>

namespace {

using formats::VoxelRun;
using formats::VoxelRuns;

std::vector<std::size_t> voxelsOf(const VoxelRuns& runs, std::size_t rank, std::size_t count) {
  std::vector<std::size_t> voxels;
  runs.forEach(rank, count, [&](const VoxelRun& run) {
    EXPECT_EQ(run.rank, rank + voxels.size());
    for (std::size_t i = 0; i < run.count; ++i) voxels.push_back(run.first + i);
  });
  return voxels;
}

TEST(VoxelRuns, CoverTheWholeImageWithoutAMask) {
  const VoxelRuns runs({}, 10);
  EXPECT_EQ(runs.count(), 10U);
  EXPECT_TRUE(runs.isWholeImage());
  EXPECT_EQ(runs.runs().size(), 1U);
  EXPECT_EQ(voxelsOf(runs, 3, 2), (std::vector<std::size_t>{3, 4}));
}

TEST(VoxelRuns, GiveEveryStretchOfAMask) {
  const std::vector<std::uint8_t> flags{0, 1, 1, 0, 0, 7, 0, 1, 1, 1};
  const VoxelRuns runs(flags, flags.size());
  const std::vector<std::size_t> inside{1, 2, 5, 7, 8, 9};
  EXPECT_EQ(runs.count(), inside.size());
  EXPECT_EQ(runs.imageVoxels(), flags.size());
  EXPECT_FALSE(runs.isWholeImage());
  EXPECT_EQ(runs.runs().size(), 3U);
  for (std::size_t rank = 0; rank < inside.size(); ++rank) {
    EXPECT_EQ(runs.voxelOf(rank), inside[rank]);
    for (std::size_t count = 0; rank + count <= inside.size(); ++count) {
      const auto from = inside.begin() + static_cast<std::ptrdiff_t>(rank);
      EXPECT_EQ(voxelsOf(runs, rank, count),
                std::vector<std::size_t>(from, from + static_cast<std::ptrdiff_t>(count)));
    }
  }
}

TEST(VoxelRuns, KnowAMaskWithoutVoxelsAndOneWithAll) {
  EXPECT_EQ(VoxelRuns({0, 0, 0}, 3).count(), 0U);
  EXPECT_TRUE(VoxelRuns({0, 0, 0}, 3).runs().empty());
  EXPECT_TRUE(VoxelRuns({1, 1, 1}, 3).isWholeImage());
}

}  // namespace
