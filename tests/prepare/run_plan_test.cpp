#include "prepare/run_plan.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "prepare/cosines.h"
#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"

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
  std::string problem() {
    return messageOf<InputError>([&] { plan(); });
  }
  void confounds(int rows, const std::string& header = "csf") {
    std::string table = header + "\n";
    const auto columns = std::count(header.begin(), header.end(), '\t') + 1;
    for (int row = 0; row < rows; ++row) {
      for (int c = 0; c < columns; ++c)
        table += (c > 0 ? "\t" : "") + std::to_string((row * 37 + c * row * row * 11) % 101);
      table += "\n";
    }
    run_.confounds = scratch_.write("confounds.tsv", table);
  }
  RunRequest run_;
  Scratch scratch_;
};

TEST_F(RunPlanning, TakesGridAndTimesFromTheHeader) {
  const RunPlan p = plan();
  EXPECT_EQ(p.grid.size, (io::GridSize{small_study::kDims[0], small_study::kDims[1], small_study::kDims[2]}));
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

TEST_F(RunPlanning, HighPassAddsTheCosinesOfTheVolumesThatAreLeft) {
  confounds(20);
  run_.confoundTerms = {"csf"};
  run_.dropVolumes = 2;
  const RunPlan p = planRun(run_, 100, "1", 24);  // 2 * 18 * 2 / 24 = 3
  EXPECT_EQ(p.confoundNames, (std::vector<std::string>{"csf", "high_pass00", "high_pass01", "high_pass02"}));
  ASSERT_EQ(p.confounds.size(), 4U);
  EXPECT_EQ(std::vector(p.confounds.begin() + 1, p.confounds.end()), highPassCosines(18, 2, 24));
  EXPECT_EQ(p.confoundRank, 4);
  EXPECT_NE(p.vtcName, plan().vtcName);
  ASSERT_EQ(p.cautions.size(), 1U);
  EXPECT_NE(p.cautions[0].find("is a high-pass filter"), std::string::npos);
}

TEST_F(RunPlanning, HighPassNeedsNoTable) {
  const RunPlan p = planRun(run_, 100, "1", 20);
  EXPECT_EQ(p.confoundRank, 4);
  EXPECT_EQ(planRun(run_, 100, "1", 0).vtcName, plan().vtcName);
}

TEST_F(RunPlanning, APeriodThatLeavesNothingIsRefused) {
  EXPECT_EQ(messageOf<InputError>([&] { (void)planRun(run_, 100, "1", 5); }),
            "run 'a': regressing 16 confounds leaves no degrees of freedom in 20 volumes; choose fewer, or a "
            "longer period for high_pass");
}

TEST_F(RunPlanning, TheNameOfTheImportChangesWithMaskTimesValuesAndCensoring) {
  std::set<std::string> names = {plan().vtcName};
  const auto expectNew = [&](const char* what) { EXPECT_TRUE(names.insert(plan().vtcName).second) << what; };
  small_study::writeMask(path("other.nii.gz"));
  run_.mask = path("other.nii.gz");
  expectNew("another mask");
  run_.mask.clear();
  expectNew("no mask");
  run_.trSeconds = 2.5;
  expectNew("another repetition time");
  confounds(20, "csf\tframewise_displacement");
  run_.confoundTerms = {"csf"};
  expectNew("a confound");
  std::string table = formats::readTextFile(run_.confounds.string());
  table.replace(table.rfind("\n", table.size() - 2) + 1, 2, "55");
  scratch_.write("confounds.tsv", table);
  expectNew("another value of the same confound");
  run_.censoring.fdThresholdMm = 50;
  expectNew("censoring");
  run_.censoring.fdThresholdMm = 90;
  expectNew("censoring of fewer");
}

TEST_F(RunPlanning, EveryImageHasAnImportOfItsOwn) {
  const std::string before = plan().vtcName;
  small_study::writeBold(path("other.nii.gz"), 1, 1000, 2000, 20);
  run_.bold = path("other.nii.gz");
  EXPECT_NE(plan().vtcName, before);
}

// The same volumes are left, but dropped ones are not in the file.
TEST_F(RunPlanning, ADroppedVolumeIsNotACensoredOne) {
  std::string table = "framewise_displacement\n";
  for (int v = 0; v < 20; ++v) table += v < 2 ? "0.9\n" : "0.1\n";
  run_.confounds = scratch_.write("confounds.tsv", table);
  run_.censoring.fdThresholdMm = 0.5;
  const RunPlan censored = plan();
  run_.dropVolumes = 2;
  EXPECT_EQ(plan().kept, censored.kept);
  EXPECT_NE(plan().vtcName, censored.vtcName);
}

// Records name what was regressed, and are kept as long as the import's name stays.
TEST_F(RunPlanning, EqualConfoundsOfOtherNamesAreOtherConfounds) {
  std::string table = "csf\twhite_matter\n";
  for (int v = 0; v < 20; ++v) table += std::to_string(v * v % 7) + "\t" + std::to_string(v * v % 7) + "\n";
  run_.confounds = scratch_.write("confounds.tsv", table);
  run_.confoundTerms = {"csf"};
  const RunPlan csf = plan();
  run_.confoundTerms = {"white_matter"};
  EXPECT_EQ(plan().confounds, csf.confounds);
  EXPECT_NE(plan().vtcName, csf.vtcName);
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
  EXPECT_NE(problem().find("confounds leaves no degrees of freedom in 20 volumes; choose fewer"),
            std::string::npos)
      << problem();
}

// 20 volumes less 15 confounds and the mean leave 4.
TEST_F(RunPlanning, FourDegreesOfFreedomAreEnough) {
  std::string header = "c0";
  for (int c = 1; c < 15; ++c) header += "\tc" + std::to_string(c);
  std::mt19937 generator(3);
  std::string table;
  for (int row = 0; row < 20; ++row) {
    for (int c = 0; c < 16; ++c) table += (c > 0 ? "\t" : "") + std::to_string(generator() % 1000);
    table += "\n";
  }
  run_.confounds = scratch_.write("confounds.tsv", header + "\tlast\n" + table);
  run_.confoundTerms = {"c*"};
  EXPECT_EQ(plan().confoundRank, 15);
  run_.confoundTerms = {"c*", "last"};
  EXPECT_EQ(problem(),
            "run 'a': regressing 16 confounds leaves no degrees of freedom in 20 volumes; choose fewer");
  run_.confoundTerms = {"c*"};
  run_.dropVolumes = 1;
  EXPECT_EQ(problem(),
            "run 'a': regressing 15 confounds leaves no degrees of freedom in 19 volumes; choose fewer");
}

TEST_F(RunPlanning, CountsCensoredVolumesBehindTheDroppedOnes) {
  std::string table = "framewise_displacement\tnon_steady_state_outlier00\n";
  for (int v = 0; v < 20; ++v)
    table += (v == 0 || v == 9 || v == 11 ? "0.9" : "0.1") + std::string(v < 3 ? "\t1\n" : "\t0\n");
  run_.confounds = scratch_.write("confounds.tsv", table);
  run_.censoring.fdThresholdMm = 0.5;
  run_.censoring.minimumSegment = 2;
  run_.dropVolumes = kDropFromConfounds;
  const RunPlan p = plan();
  EXPECT_EQ(p.volumes.dropped, 3);
  EXPECT_EQ(p.censored, 2);
  EXPECT_EQ(p.volumes.kept, (std::vector<VolumeRange>{{4, 9}, {13, 20}}));  // 11 alone is too short
}

TEST_F(RunPlanning, EventsInVolumesKeepBothTheirEnds) {
  run_.events =
      scratch_.write("events.tsv", "condition\tfirst_volume\tlast_volume\nrest\t3\t10\ntask\t11\t11\n");
  const auto events = plan().volumes.events;
  ASSERT_EQ(events.size(), 2U);
  EXPECT_EQ(events[0].onsetSeconds, 4.0);
  EXPECT_EQ(events[0].durationSeconds, 16.0);
  EXPECT_EQ(events[1].onsetSeconds, 20.0);
  EXPECT_EQ(events[1].durationSeconds, 2.0);
  EXPECT_EQ(eventBlocks(events, {{"rest"}, 0, 0}, 2.0, 20), (std::vector<VolumeRange>{{3, 10}}));
}

TEST_F(RunPlanning, EventsInSecondsBecomeOnsetAndDuration) {
  run_.events = scratch_.write("events.tsv", "onset\tduration\ttrial_type\n4.5\t3.25\tface\n");
  const auto events = plan().volumes.events;
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].onsetSeconds, 4.5);
  EXPECT_EQ(events[0].durationSeconds, 3.25);
  EXPECT_EQ(events[0].trialType, "face");
}

TEST_F(RunPlanning, ASingleVolumeIsNoSeries) {
  run_.bold = path("mask.nii.gz");
  run_.mask.clear();
  EXPECT_EQ(problem(),
            "run 'a': " + path("mask.nii.gz").string() + " has 1 volume(s); a time series is needed");
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
  EXPECT_EQ(messageOf<InputError>([&] {
              requireOneGrid({a, b});
            }),
            "runs 'a' and 'b' lie on different grids (" + path("bold.nii.gz").string() + ", " +
                path("bold.nii.gz").string() +
                "); nothing is resampled here, take runs of one space and resolution");
}

}  // namespace
}  // namespace study
