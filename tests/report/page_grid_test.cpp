#include "report/page_grid.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/report/sample_outputs.h"

namespace {

using namespace report;

formats::ImageHeader headerOf(const formats::Affine& affine) {
  formats::ImageHeader header;
  header.size = {12, 14, 10};
  header.affine = affine;
  return header;
}

// Stored x, y, z: up, to the left, to the front.
formats::Affine permuted() {
  formats::Affine affine;
  affine.m = {0, -4, 0, 20, 0, 0, 3, -30, 5, 0, 0, 7, 0, 0, 0, 1};
  return affine;
}

class PageGridOf : public testing::TestWithParam<formats::Affine> {};

TEST_P(PageGridOf, RunsFromLeftToRightBackToFrontBelowToAbove) {
  const PageGrid grid(headerOf(GetParam()));
  const render::Affine affine = grid.view().affine();
  for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_GT(affine[4 * axis + axis], 0) << axis;
}

TEST_P(PageGridOf, LeavesEveryVoxelWhereItIs) {
  const formats::ImageHeader header = headerOf(GetParam());
  const PageGrid grid(header);
  formats::Affine upright;
  upright.m = grid.view().affine();
  std::size_t n = 0;
  for (int k = 0; k < grid.view().dim(2); ++k)
    for (int j = 0; j < grid.view().dim(1); ++j)
      for (int i = 0; i < grid.view().dim(0); ++i, ++n) {
        const std::array<int, 3> stored = header.size.voxelAt(grid.stored(n));
        EXPECT_EQ(grid.view().position(stored), (std::array<int, 3>{i, j, k}));
        const auto here =
            formats::apply(upright, {static_cast<double>(i), static_cast<double>(j), static_cast<double>(k)});
        const auto there = formats::apply(
            header.affine,
            {static_cast<double>(stored[0]), static_cast<double>(stored[1]), static_cast<double>(stored[2])});
        for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_NEAR(here[axis], there[axis], 1e-9);
      }
  EXPECT_EQ(n, grid.voxels());
}

INSTANTIATE_TEST_SUITE_P(Orders, PageGridOf,
                         testing::Values(sample_outputs::las(), sample_outputs::ras(),
                                         sample_outputs::oblique(), permuted()));

TEST(GreyLevels, EndAtWhiteForThe99thPercentile) {
  std::vector<float> values;
  for (int i = 0; i < 1000; ++i) values.push_back(static_cast<float>(i));
  values.push_back(std::numeric_limits<float>::quiet_NaN());
  values.push_back(-5);
  const auto levels = greyLevels(values, 1);
  EXPECT_EQ(levels[0], 0);
  EXPECT_NEAR(levels[495], 128, 2);
  EXPECT_EQ(levels[999], 255);
  EXPECT_EQ(levels[1000], 0);
  EXPECT_EQ(levels[1001], 0);
  EXPECT_NEAR(greyLevels(values, 0.5)[999], 128, 1);
}

}  // namespace
