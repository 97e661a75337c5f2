#include "bids/bids_study.h"

#include <gtest/gtest.h>

#include "request/request_text.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

// What a worker gets of a request that no file holds.
TEST(BidsStudy, RequestsReadBackFromTheirText) {
  Scratch scratch;
  const std::string begin = "raw/derivatives/prep/sub-01/func/sub-01_task-rest_";
  for (const char* run : {"run-1", "run-2"}) {
    scratch.write(begin + run + "_space-MNI_desc-preproc_bold.nii.gz");
    scratch.write(begin + run + "_space-MNI_desc-brain_mask.nii.gz");
    scratch.write(begin + run + "_desc-confounds_timeseries.tsv");
  }
  scratch.write("raw/task-rest_events.tsv");
  BidsOptions options;
  options.bidsDir = scratch.folder() / "raw";
  options.outDir = scratch.folder() / "out";
  options.derivatives = {scratch.folder() / "raw/derivatives/prep"};
  options.atlas = scratch.write("dseg.nii.gz");
  options.trialTypes = {"face", "house"};
  options.delaySeconds = 4.5;
  options.configuration.settings.orderChoice = OrderChoice::kBic;
  options.configuration.preparation.confoundTerms = {"24motion"};
  options.configuration.preparation.dropVolumes = kDropFromConfounds;
  options.configuration.preparation.censoring.fdThresholdMm = 0.5;
  const std::vector<Request> requests = bidsRequests(options).requests;
  ASSERT_EQ(requests.size(), 1U);
  ASSERT_EQ(requests[0].conditions.size(), 2U);
  ASSERT_EQ(requests[0].datasets.size(), 2U);
  EXPECT_EQ(withoutLines(parseRequest(requestText(requests[0]), "text", "/elsewhere")), requests[0]);
}

class BidsRequest : public ::testing::Test {
 protected:
  void SetUp() override {
    addRun("run-1");
    scratch_.write("raw/task-rest_events.tsv");
    options_.bidsDir = scratch_.folder() / "raw";
    options_.outDir = scratch_.folder() / "out";
    options_.derivatives = {scratch_.folder() / "raw/derivatives/prep"};
    options_.atlas = scratch_.write("dseg.nii.gz");
  }
  void addRun(const std::string& entities, bool withTable = true) const {
    const std::string begin = kBegin + entities;
    scratch_.write(begin + "_space-MNI_desc-preproc_bold.nii.gz");
    scratch_.write(begin + "_space-MNI_desc-brain_mask.nii.gz");
    if (withTable) scratch_.write(begin + "_desc-confounds_timeseries.tsv");
  }
  std::filesystem::path found(const std::string& end) const { return scratch_.folder() / (kBegin + end); }
  Request request() const { return bidsRequests(options_).requests.at(0); }

  static constexpr const char* kBegin = "raw/derivatives/prep/sub-01/func/sub-01_task-rest_";
  Scratch scratch_;
  BidsOptions options_;
};

TEST_F(BidsRequest, EveryFileOfARunHasItsPlace) {
  const RunRequest run = request().runs.at(0);
  EXPECT_EQ(run.name, "run-1");
  EXPECT_EQ(run.bold, found("run-1_space-MNI_desc-preproc_bold.nii.gz"));
  EXPECT_EQ(run.mask, found("run-1_space-MNI_desc-brain_mask.nii.gz"));
  EXPECT_EQ(run.confounds, found("run-1_desc-confounds_timeseries.tsv"));
  EXPECT_EQ(run.events, scratch_.folder() / "raw/task-rest_events.tsv");
}

TEST_F(BidsRequest, TheConfigurationArrives) {
  options_.configuration.seed = 77;
  options_.configuration.settings.surrogates = 1234;
  options_.configuration.preparation.trSeconds = 1.25;
  options_.configuration.preparation.censoring.alsoAfter = 3;
  options_.configuration.conditions.push_back({});
  options_.configuration.conditions.back().name = "typed";
  const Request made = request();
  EXPECT_EQ(made.seed, 77U);
  EXPECT_EQ(made.settings.surrogates, 1234);
  EXPECT_EQ(made.runs.at(0).trSeconds, 1.25);
  EXPECT_EQ(made.runs.at(0).censoring.alsoAfter, 3);
  EXPECT_EQ(made.conditions.at(0).name, "typed");
}

TEST_F(BidsRequest, TrialTypesTakeTheDelay) {
  options_.trialTypes = {"face", "house"};
  options_.delaySeconds = 4.5;
  const Request made = request();
  ASSERT_EQ(made.conditions.size(), 2U);
  EXPECT_EQ(made.conditions[1].name, "house");
  EXPECT_EQ(made.conditions[1].trialTypes, std::vector<std::string>{"house"});
  EXPECT_EQ(made.conditions[1].delaySeconds, 4.5);
}

TEST_F(BidsRequest, TheAtlasTakesItsTableAndLabels) {
  EXPECT_TRUE(request().references.at(0).allLabels);
  options_.atlasTable = "names.tsv";
  options_.labels = {"V1", "V2"};
  const ReferenceRequest atlas = request().references.at(0);
  EXPECT_EQ(atlas.image, options_.atlas);
  EXPECT_EQ(atlas.table, "names.tsv");
  EXPECT_EQ(atlas.labels, options_.labels);
  EXPECT_FALSE(atlas.allLabels);
}

TEST_F(BidsRequest, ResultsGoBelowTheOutputFolder) {
  EXPECT_EQ(request().output.folder, scratch_.folder() / "out/sub-01/func");
  EXPECT_EQ(request().output.prefix, "sub-01_task-rest_run-1_space-MNI");
  EXPECT_EQ(request().output.workFolder, scratch_.folder() / "out/work");
  options_.workDir = "/elsewhere";
  EXPECT_EQ(request().output.workFolder, "/elsewhere");
}

// Nothing says that a volume should go.
TEST_F(BidsRequest, WithoutATableNothingIsDroppedByItself) {
  options_.configuration.preparation.dropVolumes = kDropFromConfounds;
  EXPECT_EQ(request().runs.at(0).dropVolumes, kDropFromConfounds);
  std::filesystem::remove(found("run-1_desc-confounds_timeseries.tsv"));
  EXPECT_EQ(request().runs.at(0).dropVolumes, 0);
}

TEST_F(BidsRequest, NoTwoRunsShareAName) {
  addRun("dir-AP_run-2");
  addRun("dir-PA_run-2");
  const Request made = request();
  ASSERT_EQ(made.runs.size(), 3U);
  EXPECT_EQ(made.runs[0].name, "run-1");
  EXPECT_EQ(made.runs[1].name, "task-rest_dir-AP_run-2");
  EXPECT_EQ(made.runs[2].name, "task-rest_dir-PA_run-2");
  ASSERT_EQ(made.conditions.at(0).parts.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(made.conditions[0].parts[i].source, made.runs[i].name);
}

}  // namespace
}  // namespace study
