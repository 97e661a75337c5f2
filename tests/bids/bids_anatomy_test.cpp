#include "bids/bids_anatomy.h"

#include <gtest/gtest.h>

#include "bids/bids_study.h"
#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

namespace fs = std::filesystem;

class BidsAnatomy : public ::testing::Test {
 protected:
  fs::path write(const std::string& name) const { return scratch_.write("prep/" + name); }
  fs::path found(const std::string& run) const {
    const fs::path bold = write(run);
    return findAnatomy({parseBidsName(bold.filename().string()), bold, {}, {}, {}});
  }
  Scratch scratch_;
};

const std::string kRun = "sub-01/func/sub-01_task-rest_space-MNI_desc-preproc_bold.nii.gz";

TEST_F(BidsAnatomy, IsThePreprocessedImageOfTheRunsSpace) {
  write("sub-01/anat/sub-01_space-Other_desc-preproc_T1w.nii.gz");
  write("sub-01/anat/sub-01_space-MNI_desc-brain_mask.nii.gz");
  write("sub-01/anat/sub-01_desc-preproc_T1w.nii.gz");
  write("sub-02/anat/sub-02_space-MNI_desc-preproc_T1w.nii.gz");
  EXPECT_EQ(found(kRun), "");
  const fs::path own = write("sub-01/anat/sub-01_space-MNI_desc-preproc_T1w.nii.gz");
  write("sub-01/anat/sub-01_acq-x_space-MNI_desc-preproc_T1w.nii.gz");
  write("sub-01/anat/sub-01_space-MNI_desc-preproc_T1w.json");
  EXPECT_EQ(found(kRun), own);
}

TEST_F(BidsAnatomy, HasTheRunsResolutionWhereThereIsOne) {
  const fs::path plain = write("sub-01/anat/sub-01_space-MNI_desc-preproc_T1w.nii.gz");
  const std::string run = "sub-01/func/sub-01_task-rest_space-MNI_res-2_desc-preproc_bold.nii.gz";
  EXPECT_EQ(found(run), plain);
  const fs::path fine = write("sub-01/anat/sub-01_space-MNI_res-2_desc-preproc_T1w.nii.gz");
  EXPECT_EQ(found(run), fine);
  EXPECT_EQ(found(kRun), plain);
}

TEST_F(BidsAnatomy, LiesInTheSessionOrWithTheParticipant) {
  const std::string run = "sub-01/ses-b/func/sub-01_ses-b_task-rest_space-MNI_desc-preproc_bold.nii.gz";
  write("sub-01/ses-a/anat/sub-01_ses-a_space-MNI_desc-preproc_T1w.nii.gz");
  const fs::path shared = write("sub-01/anat/sub-01_space-MNI_desc-preproc_T1w.nii.gz");
  EXPECT_EQ(found(run), shared);
  const fs::path own = write("sub-01/ses-b/anat/sub-01_ses-b_space-MNI_desc-preproc_T1w.nii.gz");
  EXPECT_EQ(found(run), own);
}

TEST_F(BidsAnatomy, OfTheSpaceT1wIsTheImageWithoutASpace) {
  const fs::path native = write("sub-01/anat/sub-01_desc-preproc_T1w.nii.gz");
  EXPECT_EQ(found("sub-01/func/sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz"), native);
  EXPECT_EQ(found("sub-01/func/sub-01_task-rest_desc-preproc_bold.nii.gz"), "");
}

TEST_F(BidsAnatomy, GoesIntoTheRequestUnlessAnotherOrNoneIsAskedFor) {
  write(kRun);
  const fs::path own = write("sub-01/anat/sub-01_space-MNI_desc-preproc_T1w.nii.gz");
  BidsOptions options;
  options.bidsDir = scratch_.folder() / "prep";
  options.outDir = scratch_.folder() / "out";
  options.atlas = scratch_.write("dseg.nii.gz");
  EXPECT_EQ(bidsRequests(options).requests.at(0).anatomy, own);
  options.anatomy = scratch_.write("t1.nii.gz");
  EXPECT_EQ(bidsRequests(options).requests.at(0).anatomy, options.anatomy);
  options.anatomy = "none";
  EXPECT_EQ(bidsRequests(options).requests.at(0).anatomy, "");
  options.anatomy = scratch_.folder() / "absent.nii.gz";
  EXPECT_NE(
      messageOf<InputError>([&] { return bidsRequests(options); }).find("absent.nii.gz; --anatomy names"),
      std::string::npos);
}

}  // namespace
}  // namespace study
