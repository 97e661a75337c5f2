#include "simulation/head.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using simulation::Head;
using simulation::HeadOptions;
using simulation::InfluenceModel;
using simulation::NoiseStream;

Head headOf(const formats::GridSize& grid) {
  NoiseStream random(3, 0, 0);
  HeadOptions options;
  options.grid = grid;
  return simulation::makeHead(options, simulation::plantedModel(1), random);
}

TEST(Head, HasEveryRegionWithinTheBrainAtAnyGrid) {
  for (const formats::GridSize grid :
       {formats::GridSize{24, 28, 20}, {12, 12, 12}, {12, 40, 13}, {13, 17, 31}}) {
    const Head head = headOf(grid);
    for (std::size_t k = 0; k < 9; ++k) {
      EXPECT_GE(head.regionVoxels[k], 4U) << toText(grid) << " region " << k;
      EXPECT_EQ(head.regionVoxels[k],
                static_cast<std::size_t>(
                    std::count(head.labels.begin(), head.labels.end(), static_cast<std::int32_t>(k + 1))));
    }
    for (std::size_t i = 0; i < grid.voxels(); ++i)
      if (head.labels[i] != 0) {
        ASSERT_EQ(head.mask[i], 1);
      }
  }
}

TEST(Head, HasBackgroundAtEveryFaceOfTheGrid) {
  const Head head = headOf({24, 28, 20});
  for (std::size_t i = 0; i < head.grid.voxels(); ++i) {
    const std::size_t x = i % 24, y = i / 24 % 28, z = i / (24 * 28);
    const bool face = x == 0 || x == 23 || y == 0 || y == 27 || z == 0 || z == 19;
    if (face) {
      ASSERT_EQ(head.mask[i], 0) << i;
    }
  }
}

TEST(Head, BaseIntensitiesAreWithinEightAndTwelveThousand) {
  const Head head = headOf({24, 28, 20});
  ASSERT_EQ(head.base.size(), head.brain.size());
  const auto [low, high] = std::minmax_element(head.base.begin(), head.base.end());
  EXPECT_GE(*low, 8000);
  EXPECT_LE(*high, 12000);
  EXPECT_GT(*high - *low, 1000);
}

TEST(Head, MiddleOfTheGridIsTheOriginOfSpace) {
  const Head head = headOf({24, 28, 20});
  EXPECT_EQ(apply(head.affine, {11.5, 13.5, 9.5}), (formats::Point{0, 0, 0}));
  EXPECT_EQ(voxelSize(head.affine), (formats::Point{3, 3, 3}));
}

TEST(Head, LabelTableNamesTheRegionsInLabelOrder) {
  const InfluenceModel model = simulation::plantedModel(1);
  const formats::LabelTable table = simulation::labelTableOf(model);
  ASSERT_EQ(table.labels.size(), 9U);
  for (std::size_t k = 0; k < 9; ++k) {
    EXPECT_EQ(table.labels[k].index, static_cast<std::int32_t>(k + 1));
    EXPECT_EQ(table.labels[k].name, model.regions[k].name);
  }
}

}  // namespace
