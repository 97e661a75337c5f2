#include "prepare/value_size.h"

#include <gtest/gtest.h>

#include <cmath>

#include "formats/nifti_writer.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

// As in raw images inside a mask.
ValueSize usual() {
  return {true, 1000, 600, 1400, 1000, 10};
}

ValueSize times(ValueSize size, double factor) {
  size.least *= factor, size.largest *= factor, size.magnitude *= factor, size.change *= factor;
  return size;
}

TEST(CommonScale, LeavesUsualDataAsTheyAre) {
  EXPECT_EQ(commonScale({usual()}, 100), 1);
  EXPECT_EQ(commonScale({{true, 9, 0, 1400, 900, 10}}, 100), 1);   // a mask with empty voxels
  EXPECT_EQ(commonScale({{true, 9, -3, 3, 0.8, 0.9}}, 100), 1);    // standardised
  EXPECT_EQ(commonScale({{true, 9, 60, 140, 100, 0.6}}, 100), 1);  // per cent of the mean
  EXPECT_EQ(commonScale({{false, 9, 101, 30000, 9000, 80}}, 100), 1);
  EXPECT_EQ(commonScale({{true, 0, 0, 0, 0, 0}}, 100), 1);
}

// Where no constant is added, times a power of two must be the same again.
TEST(CommonScale, BringsEveryUnitToTheSameValues) {
  for (const int exponent : {-200, -40, -20, -10, -5, -4, 15, 20, 40, 200}) {
    const double factor = std::ldexp(1, exponent);
    const double magnitude = 1000 * factor * commonScale({times(usual(), factor)}, 100);
    EXPECT_TRUE(magnitude >= 800 && magnitude < 1600) << exponent;
    EXPECT_EQ(std::exp2(std::round(std::log2(magnitude / 1000))) * 1000, magnitude) << exponent;
    EXPECT_GT(magnitude * 0.6, 100) << exponent;  // the least value needs no constant
  }
}

TEST(CommonScale, ScalesSmallValuesAroundZero) {
  EXPECT_EQ(commonScale({{true, 9, -3e-6, 3e-6, 0.8e-6, 0.9e-6}}, 100), std::ldexp(1, 30));
  EXPECT_EQ(commonScale({{true, 9, -3, 3, 0.8, 0}}, 100), 1);  // nothing to round away
}

TEST(CommonScale, IsOneForAllRuns) {
  const ValueSize small = times(usual(), std::ldexp(1, -20));
  EXPECT_EQ(commonScale({small, small}, 100), commonScale({small}, 100));
  EXPECT_EQ(commonScale({usual(), times(usual(), 0.06)}, 100), 1);  // the second alone would be scaled
  EXPECT_NE(commonScale({times(usual(), 0.06)}, 100), 1);
}

TEST(CommonScale, LosesNoVoxelWithoutAMask) {
  ValueSize large = times(usual(), 1e9);
  large.isMasked = false;
  EXPECT_LT(commonScale({large}, 100), 1);
  large.least = 150;
  EXPECT_EQ(commonScale({large}, 100), 1);
  EXPECT_EQ(commonScale({{false, 9, 2e-6, 9e-6, 5e-6, 1e-7}}, 0), 1);
}

TEST(SizeOfValues, LooksAtTheFirstTwoKeptVolumesInsideTheMask) {
  const Scratch scratch;
  formats::ImageHeader header;
  header.size = {4, 1, 1};
  header.sformCode = 1;
  formats::writeImage(scratch.file("mask.nii"), {header, {1, 1, 0, 1}});
  header.volumes = 5;
  const std::vector<float> values = {9, 9, 9, 9, -2, 6, 500, std::nanf(""), 1, 8, 900, 4, 0,
                                     0, 0, 0, 0, 0,  0, 0};
  formats::NiftiWriter writer(scratch.file("bold.nii"), header);
  writer.writeValues(values.data(), values.size());
  writer.commit();
  RunPlan run;
  run.request.bold = scratch.file("bold.nii");
  run.request.mask = scratch.file("mask.nii");
  run.volumes.dropped = 1;
  ValueSize size = sizeOfValues(run, 100);
  EXPECT_TRUE(size.isMasked);
  EXPECT_EQ(size.voxels, 2U);
  EXPECT_EQ(size.least, -2);
  EXPECT_EQ(size.largest, 6);
  EXPECT_EQ(size.magnitude, 4);
  EXPECT_EQ(size.change, 2.5);
  run.request.mask.clear();
  size = sizeOfValues(run, 100);
  EXPECT_EQ(size.voxels, 1U);
  EXPECT_EQ(size.change, 400);
}

TEST(SetScale, NamesTheImportAfterIt) {
  RunPlan run;
  run.vtcName = "a-0f.vtc";
  setScale(run, 1);
  EXPECT_EQ(run.vtcName, "a-0f.vtc");
  setScale(run, 0.25);
  EXPECT_EQ(run.vtcName, "a-0f-e-2.vtc");
  EXPECT_EQ(run.scale, 0.25);
}

}  // namespace
}  // namespace study
