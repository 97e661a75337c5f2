#include "bids/bids_layout.h"

#include <gtest/gtest.h>

#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

namespace fs = std::filesystem;

// A raw data set with fMRIPrep derivatives: two participants; the first has two sessions, in the first of
// them two runs of one task and one of another.
class BidsLayout : public ::testing::Test {
 protected:
  void SetUp() override {
    addRun("01", "1", "1");
    addRun("01", "1", "2");
    addRun("01", "1", "1", "_space-MNI", "rest");
    addRun("01", "2", "1");
    addRun("02", "1", "1");
    scratch_.write("raw/task-oneback_events.tsv");
    scratch_.write("raw/sub-01/ses-1/func/sub-01_ses-1_task-oneback_run-1_events.tsv");
  }
  void addRun(const std::string& sub, const std::string& ses, const std::string& run,
              const std::string& space = "_space-MNI", const std::string& task = "oneback") {
    const std::string folder = "raw/derivatives/fmriprep/sub-" + sub + "/ses-" + ses + "/func/";
    const std::string begin = folder + "sub-" + sub + "_ses-" + ses + "_task-" + task + "_run-" + run;
    scratch_.write(begin + space + "_desc-preproc_bold.nii.gz");
    scratch_.write(begin + space + "_desc-brain_mask.nii.gz");
    scratch_.write(begin + "_desc-confounds_timeseries.tsv");
  }
  static BidsQuery query(const std::string& task = "oneback", const std::string& session = "1") {
    BidsQuery query;
    query.tasks = {task};
    query.sessions = {session};
    return query;
  }
  static std::vector<std::string> entitiesOf(const std::vector<BidsGroup>& groups) {
    std::vector<std::string> entities;
    for (const BidsGroup& group : groups) entities.push_back(group.entities());
    return entities;
  }
  std::vector<BidsGroup> find(const BidsQuery& query) { return findBidsGroups(raw(), {}, query); }
  fs::path raw() const { return scratch_.folder() / "raw"; }
  Scratch scratch_;
};

TEST_F(BidsLayout, GroupsTheRunsOfAParticipantSessionAndTask) {
  const auto groups = find({});
  EXPECT_EQ(entitiesOf(groups),
            (std::vector<std::string>{
                "sub-01_ses-1_task-oneback_space-MNI", "sub-01_ses-1_task-rest_run-1_space-MNI",
                "sub-01_ses-2_task-oneback_run-1_space-MNI", "sub-02_ses-1_task-oneback_run-1_space-MNI"}));
  EXPECT_EQ(groups[0].participant, "01");
  EXPECT_EQ(groups[0].session, "1");
  EXPECT_EQ(groups[0].task, "oneback");
  EXPECT_EQ(groups[0].runs.size(), 2U);
  EXPECT_EQ(groups[0].folder(), fs::path("sub-01/ses-1/func"));
  EXPECT_EQ(groups[2].folder(), fs::path("sub-01/ses-2/func"));
}

TEST_F(BidsLayout, RunsComeInTheOrderOfTheirNumbers) {
  addRun("01", "1", "10");
  const auto groups = find(query());
  std::vector<std::string> runs;
  for (const BidsRun& run : groups[0].runs) runs.push_back(run.name.get("run"));
  EXPECT_EQ(runs, (std::vector<std::string>{"1", "2", "10"}));
}

TEST_F(BidsLayout, SessionsAndTasksAreChosen) {
  EXPECT_EQ(entitiesOf(find(query("rest"))),
            (std::vector<std::string>{"sub-01_ses-1_task-rest_run-1_space-MNI"}));
  EXPECT_EQ(entitiesOf(find(query("oneback", "ses-2"))),
            (std::vector<std::string>{"sub-01_ses-2_task-oneback_run-1_space-MNI"}));
}

TEST_F(BidsLayout, FindsMaskConfoundsAndTheClosestEvents) {
  const auto groups = find({});
  const BidsRun& first = groups[0].runs[0];
  EXPECT_EQ(first.mask.filename(), "sub-01_ses-1_task-oneback_run-1_space-MNI_desc-brain_mask.nii.gz");
  EXPECT_EQ(first.confounds.filename(), "sub-01_ses-1_task-oneback_run-1_desc-confounds_timeseries.tsv");
  EXPECT_EQ(first.events.filename(), "sub-01_ses-1_task-oneback_run-1_events.tsv");
  EXPECT_EQ(groups[0].runs[1].events.filename(), "task-oneback_events.tsv");  // inherited
  EXPECT_EQ(groups[2].runs[0].events.filename(), "task-oneback_events.tsv");  // not the first session's
  EXPECT_TRUE(groups[1].runs[0].events.empty());                              // not the other task's
}

// A table of confounds belongs to a run whatever its space and resolution; a mask does not.
TEST_F(BidsLayout, ResolutionsAreSpacesOfTheirOwn) {
  addRun("03", "1", "1", "_space-MNI_res-1");
  addRun("03", "1", "1", "_space-MNI_res-2");
  BidsQuery one = query();
  one.participants = {"03"};
  EXPECT_EQ(messageOf<InputError>([&] { find(one); }),
            "preprocessed runs exist in several spaces (MNI_res-1, MNI_res-2); choose one with --space");
  one.space = "MNI";
  EXPECT_EQ(messageOf<InputError>([&] { find(one); }),
            "preprocessed runs exist in several spaces (MNI_res-1, MNI_res-2); choose one with --space");
  one.space = "MNI_res-2";
  const auto groups = find(one);
  ASSERT_EQ(entitiesOf(groups),
            (std::vector<std::string>{"sub-03_ses-1_task-oneback_run-1_space-MNI_res-2"}));
  EXPECT_EQ(groups[0].runs[0].mask.filename(),
            "sub-03_ses-1_task-oneback_run-1_space-MNI_res-2_desc-brain_mask.nii.gz");
  EXPECT_EQ(groups[0].runs[0].confounds.filename(),
            "sub-03_ses-1_task-oneback_run-1_desc-confounds_timeseries.tsv");
}

TEST_F(BidsLayout, RunNumbersMatchWithAndWithoutLeadingZeros) {
  BidsQuery first = query();
  first.runs = {"01"};
  const auto groups = find(first);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].runs.size(), 1U);
  EXPECT_EQ(groups[0].runs[0].name.get("run"), "1");
}

TEST_F(BidsLayout, EchoNumbersMatchWithLeadingZerosToo) {
  const std::string begin = "raw/derivatives/fmriprep/sub-02/ses-1/func/sub-02_ses-1_task-echoes_echo-";
  scratch_.write(begin + "1_space-MNI_desc-preproc_bold.nii.gz");
  scratch_.write(begin + "2_space-MNI_desc-preproc_bold.nii.gz");
  BidsQuery one = query("echoes");
  one.entities = {{"echo", "02"}};
  const auto groups = find(one);
  ASSERT_EQ(groups.size(), 1U);
  ASSERT_EQ(groups[0].runs.size(), 1U);
  EXPECT_EQ(groups[0].runs[0].name.get("echo"), "2");
}

TEST_F(BidsLayout, EventsMatchARunWithLeadingZeros) {
  scratch_.write("raw/sub-02/ses-1/func/sub-02_ses-1_task-oneback_run-01_events.tsv");
  EXPECT_EQ(find(query())[1].runs[0].events.filename(), "sub-02_ses-1_task-oneback_run-01_events.tsv");
}

TEST_F(BidsLayout, LabelsComeWithOrWithoutTheirKey) {
  for (const char* label : {"sub-02", "02"}) {
    BidsQuery one;
    one.participants = {label};
    EXPECT_EQ(entitiesOf(find(one)), (std::vector<std::string>{"sub-02_ses-1_task-oneback_run-1_space-MNI"}));
  }
}

TEST_F(BidsLayout, ALabelGivenTwiceTakesItsRunsOnce) {
  BidsQuery twice = query();
  twice.participants = {"01", "sub-01"};
  twice.runs = {"1", "2", "01"};
  const auto groups = find(twice);
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_EQ(groups[0].runs.size(), 2U);
}

TEST_F(BidsLayout, AWrongLabelIsAnErrorThatNamesTheNearest) {
  BidsQuery wrong;
  wrong.participants = {"01", "03"};
  EXPECT_EQ(messageOf<InputError>([&] { find(wrong); }),
            "no preprocessed run of participant '03'; did you mean '01'?");
  EXPECT_EQ(messageOf<InputError>([&] { find(query("onback")); }),
            "no preprocessed run of task 'onback'; did you mean 'oneback'?");
  EXPECT_EQ(messageOf<InputError>([&] { find(query("oneback", "retest")); }),
            "no preprocessed run of session 'retest'; known are 1, 2");
}

TEST_F(BidsLayout, SeveralSpacesRequireAChoice) {
  addRun("01", "1", "1", "_space-T1w");
  EXPECT_EQ(messageOf<InputError>([&] { find({}); }),
            "preprocessed runs exist in several spaces (MNI, T1w); choose one with --space");
  BidsQuery chosen;
  chosen.space = "T1w";
  EXPECT_EQ(find(chosen)[0].entities(), "sub-01_ses-1_task-oneback_run-1_space-T1w");
  chosen.space = "T2w";
  EXPECT_EQ(messageOf<InputError>([&] { find(chosen); }),
            "no preprocessed run in space 'T2w'; did you mean 'T1w'?");
}

TEST_F(BidsLayout, PreprocessedRunsArePreferredToFilteredOnes) {
  const std::string begin =
      "raw/derivatives/xcpd/sub-01/ses-1/func/sub-01_ses-1_task-oneback_run-1_space-MNI";
  scratch_.write(begin + "_desc-denoised_bold.nii.gz");
  const auto both = find({});
  ASSERT_EQ(both[0].runs.size(), 2U);
  EXPECT_EQ(both[0].runs[0].name.get("desc"), "preproc");
  const auto only = findBidsGroups(raw(), {raw() / "derivatives/xcpd"}, {});
  EXPECT_EQ(only[0].runs[0].name.get("desc"), "denoised");
}

TEST_F(BidsLayout, NamesWhatIsMissing) {
  EXPECT_EQ(messageOf<InputError>([&] { return findBidsGroups(raw() / "nowhere", {}, {}); }),
            "no folder " + (raw() / "nowhere").string() + "; give the BIDS data set");
  EXPECT_EQ(messageOf<InputError>([&] { return findBidsGroups(raw(), {raw() / "nowhere"}, {}); }),
            "no folder of derivatives: " + (raw() / "nowhere").string());
  Scratch empty;
  EXPECT_NE(messageOf<InputError>([&] {
              return findBidsGroups(empty.folder(), {}, {});
            }).find("no preprocessed run"),
            std::string::npos);
}

TEST_F(BidsLayout, FilterFilesTranslateLongKeys) {
  const fs::path file = scratch_.write("f.json", R"({"bold": {"session": "1", "run": 2, "suffix": "bold"}})");
  const auto entities = readBidsFilter(file);
  EXPECT_EQ(entities.at("ses"), "1");
  EXPECT_EQ(entities.at("run"), "2");
  EXPECT_EQ(entities.count("suffix"), 0U);
  BidsQuery filtered;
  filtered.entities = entities;
  EXPECT_EQ(entitiesOf(find(filtered)),
            (std::vector<std::string>{"sub-01_ses-1_task-oneback_run-2_space-MNI"}));
  EXPECT_NE(messageOf<InputError>([&] {
              return readBidsFilter(scratch_.write("g.json", "["));
            }).find("not a JSON object"),
            std::string::npos);
}

TEST_F(BidsLayout, EveryLongKeyHasItsShortOne) {
  const auto entities = readBidsFilter(scratch_.write(
      "long.json",
      R"({"bold": {"subject": "1", "session": "2", "acquisition": "3", "ceagent": "4", "reconstruction": "5",
          "direction": "6", "resolution": "7", "description": "8", "echo": 9, "part": null}})"));
  EXPECT_EQ(entities, (std::map<std::string, std::string>{{"sub", "1"},
                                                          {"ses", "2"},
                                                          {"acq", "3"},
                                                          {"ce", "4"},
                                                          {"rec", "5"},
                                                          {"dir", "6"},
                                                          {"res", "7"},
                                                          {"desc", "8"},
                                                          {"echo", "9"},
                                                          {"part", ""}}));
}

// A text cannot say that an entity is not there; null does.
TEST_F(BidsLayout, NullChoosesNamesWithoutTheEntity) {
  addRun("03", "1", "1", "_space-MNI");
  addRun("03", "1", "1", "_space-MNI_res-2");
  BidsQuery query;
  query.participants = {"03"}, query.space = "MNI";
  EXPECT_EQ(
      messageOf<InputError>([&] { find(query); }),
      "preprocessed runs exist in several spaces (MNI, MNI_res-2); choose one with --space, or those without "
      "'res-' by {\"bold\": {\"res\": null}} in --bids-filter-file");
  query.entities = parseBidsFilter(R"({"bold": {"resolution": null}})", "f");
  EXPECT_EQ(entitiesOf(find(query)), (std::vector<std::string>{"sub-03_ses-1_task-oneback_run-1_space-MNI"}));
}

TEST_F(BidsLayout, NullThatNothingAnswersIsRefused) {
  BidsQuery query;
  query.entities = {{"space", ""}};
  EXPECT_EQ(messageOf<InputError>([&] { find(query); }),
            "no preprocessed run without 'space-' in its name, as null asks for in the filter file; leave "
            "'space' out "
            "of it, or name a label");
}

TEST(BidsFilter, KeepsEveryDigitOfANumber) {
  const auto entities =
      parseBidsFilter(R"({"bold": {"run": 18446744073709551615, "echo": -4294967297}})", "f");
  EXPECT_EQ(entities.at("run"), "18446744073709551615");
  EXPECT_EQ(entities.at("echo"), "-4294967297");
}

TEST(BidsFilter, RefusesNestedValuesHoweverDeep) {
  const std::string nested = std::string(200'000, '[') + std::string(200'000, ']');
  EXPECT_EQ(
      messageOf<InputError>([&] { return parseBidsFilter("{\"bold\": {\"task\": " + nested + "}}", "f"); }),
      "f: 'task' must be a text, a whole number, or null for names without it");
}

}  // namespace
}  // namespace study
