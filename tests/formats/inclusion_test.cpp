#include "formats/inclusion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using formats::InclusionPlan;
using formats::planInclusion;

TEST(Inclusion, ShiftsNothingWithoutAMask) {
  const InclusionPlan plan = planInclusion({50, 100, 100.5F, 101}, {}, 100, false);
  EXPECT_EQ(plan.shift, 0);
  EXPECT_EQ(plan.voxelsInMask, 4U);
  EXPECT_EQ(plan.voxelsIncluded, 2U);
}

TEST(Inclusion, ShiftsNothingWhenTheMaskExceedsTheThreshold) {
  const InclusionPlan plan = planInclusion({50, 500, 600}, {0, 1, 1}, 100, false);
  EXPECT_EQ(plan.shift, 0);
  EXPECT_EQ(plan.voxelsIncluded, 2U);
}

TEST(Inclusion, RaisesTheLowestVoxelAboveTheThreshold) {
  for (const float lowest : {100.0F, 99.5F, 0.0F, -0.25F, -3000.0F}) {
    const InclusionPlan plan = planInclusion({lowest, 500, 600}, {1, 1, 0}, 100, false);
    EXPECT_GT(static_cast<double>(lowest) + plan.shift, 100) << lowest;
    EXPECT_LE(static_cast<double>(lowest) + plan.shift, 103) << lowest;
    EXPECT_EQ(plan.shift, std::round(plan.shift)) << lowest;
    EXPECT_EQ(plan.voxelsIncluded, 2U);
  }
}

TEST(Inclusion, CountsWhatWillBeStoredAsWholeNumbers) {
  EXPECT_EQ(planInclusion({100.4F}, {1}, 100, false).shift, 0);
  EXPECT_GT(planInclusion({100.4F}, {1}, 100, true).shift, 0);
}

TEST(Inclusion, LeavesValuesThatAreNotFiniteOutOfTheChoice) {
  const float nan = std::nanf(""), infinity = std::numeric_limits<float>::infinity();
  const InclusionPlan plan = planInclusion({nan, 500, -infinity}, {1, 1, 1}, 100, false);
  EXPECT_EQ(plan.shift, 0);
  EXPECT_EQ(plan.notFinite, 2U);
  EXPECT_EQ(plan.voxelsIncluded, 1U);
  EXPECT_EQ(planInclusion({nan}, {1}, 100, false).shift, 0);
}

TEST(MeanChange, CountsFiniteVoxelsOfTheMask) {
  EXPECT_EQ(formats::meanChange({1, 2, std::nanf(""), 100}, {3, -2, 1, 0}, {1, 1, 1, 0}), 3);
  EXPECT_EQ(formats::meanChange({1}, {5}, {}), 4);
  EXPECT_EQ(formats::meanChange({1}, {5}, {0}), 0);
}

}  // namespace
