#include "study/run_plan.h"

#include <gtest/gtest.h>

#include "formats/file_error.h"
#include "study/problem.h"
#include "tests/study/scratch.h"
#include "tests/study/small_study.h"

namespace study {
namespace {

class RunPlanning : public ::testing::Test {
 protected:
  void SetUp() override {
    small_study::writeBold(path("bold.nii.gz"), 1, 1000, 2000, 20);
    small_study::writeMask(path("mask.nii.gz"));
    run_.name = "a";
    run_.bold = path("bold.nii.gz");
    run_.mask = path("mask.nii.gz");
  }
  std::filesystem::path path(const std::string& name) const { return scratch_.folder() / name; }
  RunPlan plan() { return planRun(run_, 100, "1"); }
  std::string problem() { return messageOf<InputError>([&] { plan(); }); }
  void confounds(int rows, const std::string& header = "csf") {
    std::string table = header + "\n";
    const auto columns = std::count(header.begin(), header.end(), '\t') + 1;
    for (int row = 0; row < rows; ++row) {
      for (int c = 0; c < columns; ++c) table += (c > 0 ? "\t" : "") + std::to_string((row * 37 + c * row * row * 11) % 101);
      table += "\n";
    }
    run_.confounds = scratch_.write("confounds.tsv", table);
  }
  RunRequest run_;
  Scratch scratch_;
};

TEST_F(RunPlanning, TakesGridAndTimesFromTheHeader) {
  const RunPlan p = plan();
  EXPECT_EQ(p.grid.dims, small_study::kDims);
  EXPECT_EQ(p.volumes.volumes, 20);
  EXPECT_EQ(p.volumes.trSeconds, 2.0);
  EXPECT_EQ(p.volumes.kept, (std::vector<VolumeRange>{{1, 20}}));
}

TEST_F(RunPlanning, TheNameOfTheImportChangesWithEveryInput) {
  const std::string before = plan().vtcName;
  EXPECT_EQ(plan().vtcName, before);
  EXPECT_NE(planRun(run_, 101, "1").vtcName, before);
  EXPECT_NE(planRun(run_, 100, "2").vtcName, before);
  run_.dropVolumes = 1;
  EXPECT_NE(plan().vtcName, before);
  run_.dropVolumes = 0;
  confounds(20);
  EXPECT_EQ(plan().vtcName, before);  // a table that nothing is taken from changes nothing
  run_.confoundTerms = {"csf"};
  EXPECT_NE(plan().vtcName, before);
}

TEST_F(RunPlanning, TablesMustHaveOneRowPerVolume) {
  confounds(19);
  EXPECT_EQ(problem(), "run 'a': " + path("confounds.tsv").string() +
                           " has 19 rows for the image's 20 volumes; they must belong together");
}

TEST_F(RunPlanning, DroppingTooMuchIsRefused) {
  run_.dropVolumes = 17;
  EXPECT_EQ(problem(), "run 'a': dropping 17 of 20 volumes leaves too few");
}

TEST_F(RunPlanning, RegressingMoreThanTheRunHoldsIsRefused) {
  std::string header = "c0";
  for (int c = 1; c < 18; ++c) header += "\tc" + std::to_string(c);
  confounds(20, header);
  run_.confoundTerms = {"c*"};
  EXPECT_NE(problem().find("confounds leaves no degrees of freedom in 20 volumes; choose fewer"), std::string::npos) << problem();
}

TEST_F(RunPlanning, ASingleVolumeIsNoSeries) {
  run_.bold = path("mask.nii.gz");
  run_.mask.clear();
  EXPECT_EQ(problem(), "run 'a': " + path("mask.nii.gz").string() + " has 1 volume(s); a time series is needed");
}

TEST_F(RunPlanning, MissingMasksAreNamed) {
  run_.mask = path("nowhere.nii.gz");
  EXPECT_NE(messageOf<formats::FileError>([&] { plan(); }).find("nowhere.nii.gz"), std::string::npos);
}

TEST_F(RunPlanning, RunsMustShareOneGrid) {
  RunPlan a = plan(), b = a;
  b.request.name = "b";
  EXPECT_NO_THROW(requireOneGrid({a, b}));
  b.grid.affine.at(0, 3) += 2;
  EXPECT_EQ(messageOf<InputError>([&] { requireOneGrid({a, b}); }),
            "runs 'a' and 'b' lie on different grids (" + path("bold.nii.gz").string() + ", " + path("bold.nii.gz").string() +
                "); nothing is resampled here, take runs of one space and resolution");
}

}  // namespace
}  // namespace study
