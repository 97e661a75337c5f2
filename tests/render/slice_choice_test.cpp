#include "render/slice_choice.h"

#include <gtest/gtest.h>

namespace render {
namespace {

constexpr Affine kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

TEST(SliceChoice, SkipsSlicesWithoutAnatomy) {
  std::vector<float> anatomy(10, 0.0F);  // a column of ten slices of one voxel
  anatomy[4] = anatomy[5] = anatomy[6] = 1;
  EXPECT_EQ(chooseSlices(Upright({1, 1, 10}, kIdentity), anatomy, 15), (std::vector<int>{4, 5, 6}));
}

TEST(SliceChoice, SpreadsEvenlyWhenThereAreMoreThanAskedFor) {
  const std::vector<float> anatomy(12, 1.0F);
  EXPECT_EQ(chooseSlices(Upright({1, 1, 12}, kIdentity), anatomy, 3), (std::vector<int>{2, 6, 10}));
}

TEST(SliceChoice, ShowsEverySliceOfAnEmptyAnatomy) {
  const std::vector<float> anatomy(3, 0.0F);
  EXPECT_EQ(chooseSlices(Upright({1, 1, 3}, kIdentity), anatomy, 15), (std::vector<int>{0, 1, 2}));
}

}  // namespace
}  // namespace render
