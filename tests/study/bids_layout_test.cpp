#include "study/bids_layout.h"

#include <gtest/gtest.h>

#include "study/problem.h"
#include "tests/study/scratch.h"

namespace study {
namespace {

namespace fs = std::filesystem;

// A raw data set with fMRIPrep derivatives: two participants, the first with two runs and sessions.
class BidsLayout : public ::testing::Test {
 protected:
  void SetUp() override {
    addRun("01", "1", "1");
    addRun("01", "1", "2");
    addRun("02", "1", "1");
    scratch_.write("raw/task-oneback_events.tsv");
    scratch_.write("raw/sub-01/ses-1/func/sub-01_ses-1_task-oneback_run-1_events.tsv");
  }
  void addRun(const std::string& sub, const std::string& ses, const std::string& run, const std::string& space = "MNI") {
    const std::string folder = "raw/derivatives/fmriprep/sub-" + sub + "/ses-" + ses + "/func/";
    const std::string begin = folder + "sub-" + sub + "_ses-" + ses + "_task-oneback_run-" + run;
    scratch_.write(begin + "_space-" + space + "_desc-preproc_bold.nii.gz");
    scratch_.write(begin + "_space-" + space + "_desc-brain_mask.nii.gz");
    scratch_.write(begin + "_desc-confounds_timeseries.tsv");
  }
  std::vector<BidsGroup> find(const BidsQuery& query) { return findBidsGroups(raw(), {}, query); }
  fs::path raw() const { return scratch_.folder() / "raw"; }
  Scratch scratch_;
};

TEST_F(BidsLayout, GroupsTheRunsOfAParticipantSessionAndTask) {
  const auto groups = find({});
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].participant, "01");
  EXPECT_EQ(groups[0].runs.size(), 2U);
  EXPECT_EQ(groups[0].entities(), "sub-01_ses-1_task-oneback_space-MNI");
  EXPECT_EQ(groups[0].folder(), fs::path("sub-01/ses-1/func"));
  EXPECT_EQ(groups[1].entities(), "sub-02_ses-1_task-oneback_run-1_space-MNI");
}

TEST_F(BidsLayout, FindsMaskConfoundsAndTheClosestEvents) {
  const auto groups = find({});
  const BidsRun& first = groups[0].runs[0];
  EXPECT_EQ(first.mask.filename(), "sub-01_ses-1_task-oneback_run-1_space-MNI_desc-brain_mask.nii.gz");
  EXPECT_EQ(first.confounds.filename(), "sub-01_ses-1_task-oneback_run-1_desc-confounds_timeseries.tsv");
  EXPECT_EQ(first.events.filename(), "sub-01_ses-1_task-oneback_run-1_events.tsv");
  EXPECT_EQ(groups[0].runs[1].events.filename(), "task-oneback_events.tsv");  // inherited
}

TEST_F(BidsLayout, RunNumbersMatchWithAndWithoutLeadingZeros) {
  BidsQuery query;
  query.runs = {"01"};
  const auto groups = find(query);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].runs.size(), 1U);
  EXPECT_EQ(groups[0].runs[0].name.get("run"), "1");
}

TEST_F(BidsLayout, EventsMatchARunWithLeadingZeros) {
  scratch_.write("raw/sub-02/ses-1/func/sub-02_ses-1_task-oneback_run-01_events.tsv");
  EXPECT_EQ(find({})[1].runs[0].events.filename(), "sub-02_ses-1_task-oneback_run-01_events.tsv");
}

TEST_F(BidsLayout, LabelsComeWithOrWithoutTheirKey) {
  BidsQuery query;
  query.participants = {"sub-02"};
  EXPECT_EQ(find(query).size(), 1U);
  query.participants = {"02"};
  EXPECT_EQ(find(query).size(), 1U);
}

TEST_F(BidsLayout, ALabelGivenTwiceTakesItsRunsOnce) {
  BidsQuery query;
  query.participants = {"01", "sub-01"};
  query.runs = {"1", "2", "01"};
  const auto groups = find(query);
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_EQ(groups[0].runs.size(), 2U);
}

TEST_F(BidsLayout, AWrongLabelIsAnErrorThatNamesTheNearest) {
  BidsQuery query;
  query.participants = {"01", "03"};
  EXPECT_EQ(messageOf<InputError>([&] { find(query); }), "no preprocessed run of participant '03'; did you mean '01'?");
  query.participants = {};
  query.tasks = {"onback"};
  EXPECT_EQ(messageOf<InputError>([&] { find(query); }), "no preprocessed run of task 'onback'; did you mean 'oneback'?");
  query.tasks = {};
  query.sessions = {"retest"};
  EXPECT_EQ(messageOf<InputError>([&] { find(query); }), "no preprocessed run of session 'retest'; known are 1");
}

TEST_F(BidsLayout, SeveralSpacesRequireAChoice) {
  addRun("01", "1", "1", "T1w");
  EXPECT_EQ(messageOf<InputError>([&] { find({}); }),
            "preprocessed runs exist in several spaces (MNI, T1w); choose one with --space");
  BidsQuery query;
  query.space = "T1w";
  EXPECT_EQ(find(query)[0].entities(), "sub-01_ses-1_task-oneback_run-1_space-T1w");
  query.space = "T2w";
  EXPECT_EQ(messageOf<InputError>([&] { find(query); }), "no preprocessed run in space 'T2w'; did you mean 'T1w'?");
}

TEST_F(BidsLayout, PreprocessedRunsArePreferredToFilteredOnes) {
  const std::string begin = "raw/derivatives/xcpd/sub-01/ses-1/func/sub-01_ses-1_task-oneback_run-1_space-MNI";
  scratch_.write(begin + "_desc-denoised_bold.nii.gz");
  EXPECT_EQ(find({})[0].runs.size(), 2U);
  const auto only = findBidsGroups(raw(), {raw() / "derivatives/xcpd"}, {});
  EXPECT_EQ(only[0].runs[0].name.get("desc"), "denoised");
}

TEST_F(BidsLayout, NamesWhatIsMissing) {
  EXPECT_EQ(messageOf<InputError>([&] { findBidsGroups(raw() / "nowhere", {}, {}); }),
            "no folder " + (raw() / "nowhere").string() + "; give the BIDS data set");
  EXPECT_EQ(messageOf<InputError>([&] { findBidsGroups(raw(), {raw() / "nowhere"}, {}); }),
            "no folder of derivatives: " + (raw() / "nowhere").string());
  Scratch empty;
  EXPECT_NE(messageOf<InputError>([&] { findBidsGroups(empty.folder(), {}, {}); }).find("no preprocessed run"),
            std::string::npos);
}

TEST_F(BidsLayout, FilterFilesTranslateLongKeys) {
  const fs::path file = scratch_.write("f.json", R"({"bold": {"session": "1", "run": 2, "suffix": "bold"}})");
  const auto entities = readBidsFilter(file);
  EXPECT_EQ(entities.at("ses"), "1");
  EXPECT_EQ(entities.at("run"), "2");
  EXPECT_EQ(entities.count("suffix"), 0U);
  BidsQuery query;
  query.entities = entities;
  ASSERT_EQ(find(query).size(), 1U);
  EXPECT_NE(messageOf<InputError>([&] { readBidsFilter(scratch_.write("g.json", "[")); }).find("not a JSON object"),
            std::string::npos);
}

}  // namespace
}  // namespace study
