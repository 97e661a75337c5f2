// Reports as whole runs write them.
#include <gmock/gmock.h>

#include "tests/support/image_series.h"
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

class ReportRun : public SmallStudyRun {
 protected:
  fs::path request(const std::string& more = "") {
    return scratch_.write("one.toml",
                          "prefix = 'small'\nseed = 5\n[settings]\nsurrogates = 40\nfwe_draws = 20\n"
                          "[[run]]\nname = 'run1'\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\n"
                          "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = ['A']\n" +
                              more);
  }
  [[nodiscard]] fs::path report() const { return results() / "small_report.html"; }
};

TEST_F(ReportRun, StandsAtTheEndOfEveryRun) {
  const ProgramResult done = run(request());
  ASSERT_EQ(done.exitCode, 0) << done.err;
  EXPECT_THAT(done.out, HasSubstr("Report: "));
  EXPECT_THAT(contentOf(report()), HasSubstr("<bdi>A</bdi>"));
  EXPECT_TRUE(fs::exists(results() / "figures" / "small_seed-A_contrast-wholedTAV_stat-effect_statmap.svg"));
}

TEST_F(ReportRun, IsLeftOutWhenNotWanted) {
  ASSERT_EQ(run(request(), {"--no-report"}).exitCode, 0);
  EXPECT_FALSE(fs::exists(report()));
  EXPECT_FALSE(fs::exists(results() / "figures"));
}

TEST_F(ReportRun, IsNamedInTheJsonSummary) {
  const ProgramResult done = run(request(), {"--json"});
  const auto summary = nlohmann::json::parse(done.out);
  ASSERT_EQ(summary["Reports"].size(), 1U);
  EXPECT_THAT(summary["Reports"][0], HasSubstr("small_report.html"));
}

TEST_F(ReportRun, IsRebuiltFromTheOutputsAlone) {
  ASSERT_EQ(run(request()).exitCode, 0);
  const std::string before = contentOf(report());
  for (const char* input : {"bold1.nii.gz", "mask.nii.gz", "dseg.nii.gz", "one.toml"})
    fs::remove(folder() / input);
  fs::remove_all(results() / "work");
  fs::remove(report());
  const ProgramResult rebuilt = tavmap({"report", "results"}, folder());
  EXPECT_EQ(rebuilt.exitCode, 0) << rebuilt.err;
  EXPECT_THAT(rebuilt.out, HasSubstr("small_report.html"));
  EXPECT_EQ(contentOf(report()), before);
}

TEST_F(ReportRun, OfTheKeptRequestKeepsAllThatIsFinished) {
  ASSERT_EQ(run(request()).exitCode, 0);
  const ProgramResult again = run(results() / "small_request.toml", {"--json"});
  EXPECT_EQ(again.exitCode, 0) << again.err;
  EXPECT_EQ(kept(again), std::vector<bool>{true});
}

TEST_F(ReportRun, NamesReferencesThatFail) {
  Series series = readSeries(folder() / "bold1.nii.gz");
  for (int volume = 0; volume < small_study::kVolumes; ++volume) series.at(3, 3, 3, volume) = 900;
  writeSeries(folder() / "bold1.nii.gz", series);
  const ProgramResult done = run(request("[[reference]]\nname = 'flat'\nvoxels = [[3, 3, 3]]\n"));
  EXPECT_NE(done.exitCode, 0);
  EXPECT_THAT(contentOf(report()), HasSubstr("Failed: <bdi>flat</bdi>"));
  EXPECT_THAT(contentOf(report()), HasSubstr("are constant"));
  EXPECT_THAT(contentOf(report()), HasSubstr("id=\"summary-0\""));  // the other one is there
}

TEST_F(ReportRun, ThatCannotBeWrittenLeavesTheResults) {
  fs::create_directories(report() / "in the way");
  const ProgramResult done = run(request());
  EXPECT_EQ(done.exitCode, 1);
  EXPECT_THAT(done.err, HasSubstr("the report cannot be written"));
  EXPECT_TRUE(fs::exists(results() / "small_seed-A_tavmap.json"));
}

TEST_F(ReportRun, OfAnEmptyFolderIsWrongInput) {
  fs::create_directories(folder() / "empty");
  const ProgramResult done = tavmap({"report", "empty"}, folder());
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_THAT(done.err, HasSubstr("no results (*_tavmap.json) in empty or below it"));
}

TEST_F(ReportRun, WithoutNamesOfThisMachine) {
  ASSERT_EQ(run(request()).exitCode, 0);
  EXPECT_THAT(contentOf(report()), Not(HasSubstr(folder().string())));
}

}  // namespace
