#include "bids/bids_names.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace study {
namespace {

TEST(BidsNames, TakesANameApartAndPutsItTogether) {
  const std::string text =
      "sub-01_ses-a_task-rest_acq-mb_run-1_echo-2_space-T1w_res-2_desc-preproc_bold.nii.gz";
  const BidsName name = parseBidsName(text);
  EXPECT_EQ(name.get("run"), "1");
  EXPECT_EQ(name.get("desc"), "preproc");
  EXPECT_EQ(name.suffix, "bold");
  EXPECT_EQ(name.extension, ".nii.gz");
  EXPECT_EQ(formatBidsName(name), text);
}

TEST(BidsNames, PutsEntitiesIntoTheOrderOfTheStandard) {
  BidsName name = parseBidsName("run-2_task-rest_sub-01_bold.nii");
  name.set("desc", "x");
  name.set("seed", "V1");
  name.set("stat", "effect");
  EXPECT_EQ(formatBidsName(name), "sub-01_task-rest_run-2_stat-effect_seed-V1_desc-x_bold.nii");
}

// As in the standard's table of entities.
TEST(BidsNames, TheOrderOfTheStandardIsThatOfTheTable) {
  const std::string text =
      "sub-1_ses-1_sample-1_task-1_tracksys-1_acq-1_ce-1_trc-1_stain-1_rec-1_dir-1_run-1_mod-1_echo-1_flip-1_"
      "inv-1_mt-1_part-1_proc-1_hemi-1_space-1_split-1_res-1_den-1_label-1_cohort-1_seg-1_x-1_desc-1_bold."
      "nii";
  BidsName name = parseBidsName(text);
  ASSERT_EQ(name.entities.size(), 29U);
  std::reverse(name.entities.begin(), name.entities.end());
  EXPECT_EQ(formatBidsName(name), text);
}

TEST(BidsNames, RefusesNamesOutsideTheScheme) {
  EXPECT_EQ(parseBidsName("bold.nii.gz").suffix, "");
  EXPECT_EQ(parseBidsName("sub-01_rest_bold.nii.gz").suffix, "");
  EXPECT_EQ(parseBidsName("sub-_task-x_bold.nii.gz").suffix, "");
  EXPECT_EQ(parseBidsName("sub-01").suffix, "");
  EXPECT_EQ(parseBidsName("").suffix, "");
}

TEST(BidsNames, RunNumbersIgnoreLeadingZeros) {
  EXPECT_TRUE(sameLabel("1", "01"));
  EXPECT_TRUE(sameLabel("0", "00"));
  EXPECT_FALSE(sameLabel("1", "10"));
  EXPECT_FALSE(sameLabel("a1", "a01"));
}

TEST(BidsNames, LabelsKeepLettersAndDigitsOnly) {
  EXPECT_EQ(bidsLabel("LH-V1 (left)"), "LHV1left");
  EXPECT_EQ(bidsLabel("--"), "x");
}

TEST(BidsNames, PrefixesAreOptional) {
  EXPECT_EQ(withoutPrefix("sub-01", "sub"), "01");
  EXPECT_EQ(withoutPrefix("01", "sub"), "01");
}

}  // namespace
}  // namespace study
