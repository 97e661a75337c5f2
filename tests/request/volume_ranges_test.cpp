#include "request/volume_ranges.h"

#include <gtest/gtest.h>

namespace study {
namespace {

using Ranges = std::vector<VolumeRange>;

TEST(VolumeRanges, IntersectionDividesARangeWhereTheOtherHasGaps) {
  EXPECT_EQ(intersect({{1, 20}, {30, 40}}, {{5, 8}, {10, 35}}), (Ranges{{5, 8}, {10, 20}, {30, 35}}));
  EXPECT_TRUE(intersect({{1, 5}}, {{6, 9}}).empty());
  EXPECT_EQ(intersect({{1, 5}}, {{5, 9}}), (Ranges{{5, 5}}));
}

TEST(VolumeRanges, LengthsCountBothEnds) {
  EXPECT_EQ(totalLength({{1, 1}, {3, 5}}), 4);
  EXPECT_EQ(dropShort({{1, 1}, {3, 5}}, 2), (Ranges{{3, 5}}));
}

TEST(VolumeRanges, EveryRangeLosesTheOrderOnce) {
  EXPECT_EQ(effectiveVolumes({{1, 10}, {21, 30}}, 2), 16);
  EXPECT_EQ(effectiveVolumes({{1, 2}}, 5), 0);
}

TEST(VolumeRanges, ShiftMovesBothEnds) {
  EXPECT_EQ(shifted({{5, 9}}, -4), (Ranges{{1, 5}}));
}

}  // namespace
}  // namespace study
