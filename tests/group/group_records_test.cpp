// The group level over hand-made records: order, table, counts, comparison of settings.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "formats/atomic_file.h"
#include "group/group_settings.h"
#include "group/group_summary.h"
#include "group/group_table.h"
#include "group/present_inputs.h"
#include "request/problem.h"
#include "request/settings_table.h"
#include "results/record_json.h"
#include "tests/support/sample_result.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

class GroupRecords : public ::testing::Test {
 protected:
  void add(const std::string& path, const Record& record = sample_result::record()) {
    scratch_.write(path, recordText(record));
  }
  GroupResult group(const BidsQuery& query = {}, Outdated outdated = Outdated::kRefused) const {
    return readGroup(scratch_.folder(), {scratch_.folder() / "raw", query, outdated});
  }
  // The table without its header.
  Lines rows() const {
    const std::size_t count = writeGroupTable(group(), scratch_.folder());
    std::istringstream text(formats::readTextFile((scratch_.folder() / kGroupTable).string()));
    Lines lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    EXPECT_EQ(lines.size(), count + 1);
    return {lines.begin() + 1, lines.end()};
  }
  std::string printed() const {
    std::ostringstream out;
    printGroup(group(), out);
    return out.str();
  }
  Scratch scratch_;
};

// All numbers of this record are different: 62 voxels pass, 61 of them outside the reference.
TEST_F(GroupRecords, RowsHaveEveryNumberInItsColumn) {
  Record record = sample_result::record();
  record.conditions[0].maps[0].familyWise.levels[1].alpha = 0.033;
  add("sub-01/func/sub-01_ses-2_task-x_run-3_space-MNI_seed-V1_tavmap.json", record);
  const std::string begin = "sub-01\tses-2\tx\t3\tMNI\tV1\t", none = "\tn/a\tn/a\tn/a";
  const std::string end =
      "\t7001\tcalibrated\t1.2.3\tsub-01/func/sub-01_ses-2_task-x_run-3_space-MNI_seed-V1_tavmap.json";
  const std::string peak = "\t-9.25\t-1.5\t2.5\t3.5", faces = "faces\tREF2VOX\t4\t115\t901\t";
  const std::string houses = "houses\tINST\t4\t116\t911\t", housePeak = "\t8.75\t-28.5\t29.5\t30.5";
  EXPECT_EQ(rows(), (Lines{begin + faces + "0.011\t5.5\t62\t61" + none + peak + end,
                           begin + faces + "0.033\t4.5\t64\t63\t7.125\t59\t68" + peak + end,
                           begin + "faces\tDTAV_RC\t4\t115\t901\tn/a\tn/a\tn/a\tn/a" + none +
                               "\t0.875\t19.5\t-20.5\t21.25" + end,
                           begin + houses + "0.012\t6.5\t72\t71" + none + housePeak + end,
                           begin + houses + "0.034\t6.25\t74\t73" + none + housePeak + end}));
}

TEST_F(GroupRecords, WhatARecordLacksIsNotApplicable) {
  Record record = sample_result::record();
  record.conditions.resize(1);
  record.conditions[0].maps.resize(1);
  MapResult& map = record.conditions[0].maps[0];
  map.thresholds = {{0.011, std::nullopt, 0, 0}};
  map.peak = std::numeric_limits<double>::quiet_NaN();
  add("sub-01_seed-V1_tavmap.json", record);
  EXPECT_EQ(rows(), Lines{"sub-01\tn/a\tn/a\tn/a\tn/a\tV1\tfaces\tREF2VOX\t4\t115\t901\t0.011\tn/a\t0\t0\tn/"
                          "a\tn/a\tn/a\tn/a\tn/a\t"
                          "n/a\tn/a\t7001\tcalibrated\t1.2.3\tsub-01_seed-V1_tavmap.json"});
  EXPECT_NE(printed().find("; peaks n/a to n/a\n"), std::string::npos) << printed();
}

TEST_F(GroupRecords, ConditionsMapsAndLevelsAreSorted) {
  Record record = sample_result::record();
  const Lines before = (add("sub-01_seed-V1_tavmap.json", record), rows());
  std::swap(record.conditions[0], record.conditions[1]);
  std::swap(record.conditions[1].maps[0], record.conditions[1].maps[1]);
  std::swap(record.conditions[0].maps[0].thresholds[0], record.conditions[0].maps[0].thresholds[1]);
  add("sub-01_seed-V1_tavmap.json", record);
  EXPECT_EQ(rows(), before);
}

// Sessions before tasks before references, whatever the folders are called.
TEST_F(GroupRecords, ParticipantSessionTaskReference) {
  const auto addFor = [&](const std::string& path, const std::string& reference) {
    Record record = sample_result::record();
    record.reference = reference;
    add(path, record);
  };
  addFor("a/sub-02_ses-1_task-x_seed-P_tavmap.json", "P");
  addFor("z/sub-01_ses-2_task-w_seed-P_tavmap.json", "P");
  addFor("b/sub-01_ses-1_task-y_seed-P_tavmap.json", "P");
  addFor("c/sub-01_ses-1_task-x_seed-1_tavmap.json", "Q");
  addFor("c/sub-01_ses-1_task-x_seed-2_tavmap.json", "P");
  BidsQuery query;
  query.sessions = {"ses-1"};
  Lines files;
  for (const GroupRecord& record : group(query).records) files.push_back(record.file);
  EXPECT_EQ(files,
            (Lines{"c/sub-01_ses-1_task-x_seed-2_tavmap.json", "c/sub-01_ses-1_task-x_seed-1_tavmap.json",
                   "b/sub-01_ses-1_task-y_seed-P_tavmap.json", "a/sub-02_ses-1_task-x_seed-P_tavmap.json"}));
}

// A participant counts once, in the session and the task of the record alone.
TEST_F(GroupRecords, SessionsAndTasksAreCountedApart) {
  Record none = sample_result::record();
  for (ThresholdResult& level : none.conditions[1].maps[0].thresholds) level.outsideReference = 0;
  add("sub-01_ses-1_task-x_seed-V1_tavmap.json");
  add("sub-02_ses-1_task-x_seed-V1_tavmap.json", none);  // 72 voxels pass, all of them in the reference
  add("sub-01_ses-2_task-x_seed-V1_tavmap.json", none);
  add("sub-01_ses-1_task-y_seed-V1_tavmap.json");
  const std::string text = printed();
  const auto block = [&](const std::string& name) {
    const std::size_t at = text.find(name + ", V1, houses: ");
    return at == std::string::npos ? "none" : text.substr(at, text.find("; q = 0.034", at) - at);
  };
  EXPECT_EQ(block("ses-1, task-x"), "ses-1, task-x, V1, houses: 2 participants\n  INST: q = 0.012: 1 of 2");
  EXPECT_EQ(block("ses-2, task-x"), "ses-2, task-x, V1, houses: 1 participant\n  INST: q = 0.012: 0 of 1");
  EXPECT_EQ(block("ses-1, task-y"), "ses-1, task-y, V1, houses: 1 participant\n  INST: q = 0.012: 1 of 1");
  EXPECT_NE(text.find("4 records of 2 participants"), std::string::npos) << text;
  EXPECT_EQ(text.find("several records"), std::string::npos) << text;
  const auto json = groupJson(group(), "1");
  EXPECT_EQ(json["Counts"].size(), 6U);
  EXPECT_EQ(json["Counts"][1]["Session"], "1");
  EXPECT_EQ(json["Counts"][1]["Task"], "x");
  EXPECT_EQ(json["Counts"][1]["Participants"], 2);
  EXPECT_EQ(json["Counts"][1]["Maps"][0]["Thresholds"][0]["ParticipantsPassing"], 1);
}

// Sources are what the sidecar of a map says: URIs, or names that lead nowhere.
TEST_F(GroupRecords, ARecordIsHeldAgainstTheSourcesOfItsMaps) {
  add("sub-01_seed-V1_tavmap.json");
  scratch_.write("faces_ref2vox.json",
                 R"({"Sources": ["bids:raw:a%20b_bold.nii.gz", "bids:raw:50%_mask.nii.gz", "c_confounds.tsv",
                                 "bids:other:d.tsv", 7]})");
  scratch_.write("dataset_description.json",
                 R"({"DatasetLinks": {"raw": "file:///nowhere/now", "other": "file:///nowhere/at%20all"}})");
  const auto problems = [this](const fs::path& record) {
    PresentInputs inputs(scratch_.folder() / "raw", scratch_.folder());
    Lines found = inputs.problemsOf(sample_result::record(), record);
    for (const std::string& folder : inputs.missing()) found.push_back("missing " + folder);
    return found;
  };
  const fs::path record = scratch_.folder() / "sub-01_seed-V1_tavmap.json";
  const fs::path bold = scratch_.write("raw/a b_bold.nii.gz"), mask = scratch_.write("raw/50%_mask.nii.gz");
  for (const fs::path& file : {bold, mask}) fs::last_write_time(file, fs::last_write_time(record));
  EXPECT_EQ(problems(record), Lines{"missing /nowhere/at all"});
  fs::last_write_time(mask, fs::last_write_time(record) + std::chrono::seconds(1));
  EXPECT_EQ(problems(record), (Lines{mask.string() + " was changed since", "missing /nowhere/at all"}));
  fs::remove(bold);
  EXPECT_EQ(problems(record).size(), 3U);
  EXPECT_EQ(group({}, Outdated::kLeftOut).records.size(), 0U);
  EXPECT_THROW(group(), InputError);
}

TEST_F(GroupRecords, TwoRecordsOfOneParticipantCountOnceAndAreToldOf) {
  add("sub-01_run-1_seed-V1_tavmap.json");
  add("sub-01_run-2_seed-V1_tavmap.json");
  EXPECT_NE(printed().find("V1, houses: 1 participant\n  INST: q = 0.012: 1 of 1"), std::string::npos);
  EXPECT_NE(printed().find("several records of one participant, session, task and reference"),
            std::string::npos);
}

// Every recorded setting, the version, times, confounds and levels are compared; seeds are not.
TEST_F(GroupRecords, EveryDifferenceInSettingsIsToldByName) {
  Record base = sample_result::record();
  base.conditions.erase(base.conditions.begin());  // the other has one run and one map
  const auto differencesTo = [&](const Record& other) {
    SettingsSeen seen;
    seen.add(base);
    seen.add(other);
    return seen.differences();
  };
  EXPECT_TRUE(differencesTo(base).empty());
  const auto expect = [&](const std::string& text, auto change) {
    Record other = base;
    change(other);
    EXPECT_EQ(differencesTo(other),
              Lines{"the records differ in " + text +
                    "; compare their rows with care, or repeat the participant level alike for all"});
  };
  const auto setting = [&](const std::string& text, auto change) {
    expect(text, [&](Record& r) { change(r.model.settings); });
  };
  setting("method: calibrated (1 record); plugin (1 record)",
          [](Settings& s) { s.method = Method::kPlugin; });
  setting("model order: 4 (1 record); 5 (1 record)", [](Settings& s) { s.order = 5; });
  setting("choice of the model order: aic (1 record); bic (1 record)",
          [](Settings& s) { s.orderChoice = OrderChoice::kAic; });
  setting("number of surrogates: 1001 (1 record); 2000 (1 record)", [](Settings& s) { s.surrogates = 2000; });
  setting("null draws per voxel: 22 (1 record); 23 (1 record)", [](Settings& s) { s.nullDraws = 23; });
  setting("discarded simulated time points: 101 (1 record); 102 (1 record)",
          [](Settings& s) { s.discardedTimePoints = 102; });
  setting("constant that divides q: 1.375 (1 record); 2.0 (1 record)",
          [](Settings& s) { s.fdrConstant = 2; });
  setting("draws of the family-wise error: 0 (1 record); 1002 (1 record)",
          [](Settings& s) { s.fweDraws = 0; });
  setting("inclusion threshold: 103 (1 record); 104 (1 record)",
          [](Settings& s) { s.inclusionThreshold = 104; });
  setting("lower threshold of the instantaneous influence: 0.055 (1 record); 0.06 (1 record)",
          [](Settings& s) { s.instantaneousLower = 0.06; });
  setting("upper threshold of DTAV_RC: 0.77 (1 record); 0.8 (1 record)",
          [](Settings& s) { s.rcUpper = 0.8; });
  setting("factor of the maps: 1.0 (1 record); 104.5 (1 record)", [](Settings& s) { s.mapScale = 1; });
  expect("software version: 1.2.3 (1 record); 1.3 (1 record)", [](Record& r) { r.model.version = "1.3"; });
  expect("q: 0.012 (1 record); 0.012 0.034 (1 record)",
         [](Record& r) { r.conditions[0].maps[0].thresholds.pop_back(); });
  expect("repetition time: 3.25 s (1 record); 9.0 s (1 record)",
         [](Record& r) { r.conditions[0].runs[0].repetitionTime = 9; });
  expect("confounds regressed: cos00 (1 record); cos00 gs (1 record)",
         [](Record& r) { r.conditions[0].runs[0].confoundsRegressed.push_back("gs"); });
  Record reseeded = base;
  reseeded.model.seed = 1;
  reseeded.model.seedOfReference = 2;
  EXPECT_TRUE(differencesTo(reseeded).empty());
}

}  // namespace
}  // namespace study
