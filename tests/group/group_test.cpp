// `tavmap bids BIDS_DIR OUT group`: the records of a small data set in one table.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/support/program.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using Row = std::map<std::string, std::string>;  // cells by column

class BidsGroupLevel : public ::testing::Test {
 protected:
  void SetUp() override {
    scratch_.write("raw/dataset_description.json", R"({"Name": "small", "BIDSVersion": "1.8.0"})");
    small_study::writeRegions(folder() / "dseg.nii.gz");
    addRun("01", 11);
    addRun("02", 13);
  }
  void addRun(const std::string& sub, unsigned seed) {
    const std::string begin = "raw/derivatives/fmriprep/sub-" + sub + "/func/sub-" + sub + "_task-rest";
    scratch_.write(begin + "_space-MNI_desc-preproc_bold.json", R"({"RepetitionTime": 2.0})");
    small_study::writeBold(folder() / (begin + "_space-MNI_desc-preproc_bold.nii.gz"), seed);
    small_study::writeMask(folder() / (begin + "_space-MNI_desc-brain_mask.nii.gz"));
  }
  void runParticipants(const std::vector<std::string>& more = {}, const std::string& settings = "") {
    const fs::path config =
        scratch_.write("c.toml", "[settings]\nsurrogates = 60\ndiscarded_time_points = 20\n" + settings);
    std::vector<std::string> words = {"--atlas",
                                      (folder() / "dseg.nii.gz").string(),
                                      "--config-file",
                                      config.string(),
                                      "--labels",
                                      "A",
                                      "B",
                                      "--seed",
                                      "4"};
    words.insert(words.end(), more.begin(), more.end());
    const ProgramResult result = bids("participant", words);
    ASSERT_EQ(result.exitCode, 0) << result.err;
  }
  ProgramResult bids(const std::string& level, const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"bids", (folder() / "raw").string(), out().string(), level};
    words.insert(words.end(), more.begin(), more.end());
    return tavmap(words, folder());
  }
  std::vector<Row> table() const {
    std::ifstream stream(out() / "group_tavmap.tsv");
    const std::vector<std::string> header = nextRow(stream);
    std::vector<Row> rows;
    for (auto cells = nextRow(stream); !cells.empty(); cells = nextRow(stream)) {
      EXPECT_EQ(cells.size(), header.size());
      Row row;
      for (std::size_t i = 0; i < std::min(cells.size(), header.size()); ++i) row[header[i]] = cells[i];
      rows.push_back(row);
    }
    return rows;
  }
  static std::vector<std::string> nextRow(std::istream& stream) {
    std::string line, cell;
    std::getline(stream, line);
    std::vector<std::string> cells;
    for (std::istringstream text(line); std::getline(text, cell, '\t');) cells.push_back(cell);
    return cells;
  }
  static json read(const fs::path& file) {
    std::ifstream stream(file);
    return json::parse(stream, nullptr, false);
  }
  fs::path record(const std::string& sub, const std::string& reference) const {
    return out() / ("sub-" + sub) / "func" /
           ("sub-" + sub + "_task-rest_space-MNI_seed-" + reference + "_tavmap.json");
  }
  fs::path out() const { return folder() / "out"; }
  const fs::path& folder() const { return scratch_.folder(); }
  Scratch scratch_;
};

// Every q of every map of a record is in the table as the record has it.
TEST_F(BidsGroupLevel, EveryRowSaysWhatItsRecordSays) {
  runParticipants({}, "method = 'plugin'\n");  // which counts voxels of the reference as passing
  const ProgramResult result = bids("group");
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const std::vector<Row> rows = table();
  int different = 0;
  ASSERT_EQ(rows.size(), 2U * 2U * (5U * 3U + 1U));  // participants, references; DTAV_RC has no thresholds
  std::size_t row = 0;
  for (const char* sub : {"01", "02"}) {
    for (const char* reference : {"A", "B"}) {
      const json whole = read(record(sub, reference));
      const json condition = whole["Conditions"][0];
      for (const json& map : condition["Maps"]) {
        const json none = json::parse(R"([{"Q": null}])");
        for (const json& threshold : map.value("Thresholds", none)) {
          const Row& cells = rows[row++];
          EXPECT_EQ(cells.at("participant_id"), std::string("sub-") + sub);
          EXPECT_EQ(cells.at("session_id"), "n/a");
          EXPECT_EQ(cells.at("task"), "rest");
          EXPECT_EQ(cells.at("space"), "MNI");
          EXPECT_EQ(cells.at("reference"), reference);
          EXPECT_EQ(cells.at("condition"), "whole");
          EXPECT_EQ(cells.at("map"), map["MapType"]);
          EXPECT_EQ(cells.at("effective_volumes"), condition["EffectiveVolumes"].dump());
          EXPECT_EQ(cells.at("voxels_computed"), condition["Voxels"]["computed"].dump());
          EXPECT_EQ(cells.at("peak"), map["Peak"]["Value"].dump());
          EXPECT_EQ(cells.at("peak_y"), map["Peak"]["Millimetres"][1].dump());
          EXPECT_EQ(cells.at("seed"), "4");
          EXPECT_EQ(out() / cells.at("record"), record(sub, reference));
          const auto text = [](const json& value) { return value.is_null() ? "n/a" : value.dump(); };
          EXPECT_EQ(cells.at("q"), text(threshold["Q"]));
          EXPECT_EQ(cells.at("threshold"), text(threshold.value("Threshold", json())));
          EXPECT_EQ(cells.at("voxels_passing"), text(threshold.value("VoxelsPassing", json())));
          EXPECT_EQ(cells.at("voxels_passing_outside_reference"),
                    text(threshold.value("VoxelsPassingOutsideReference", json())));
          different += cells.at("voxels_passing") != cells.at("voxels_passing_outside_reference") ? 1 : 0;
        }
      }
    }
  }
  EXPECT_EQ(row, rows.size());
  EXPECT_GT(different, 0);
}

TEST_F(BidsGroupLevel, CountsParticipantsAndSaysThatItIsNoTest) {
  runParticipants();
  std::size_t passing = 0;
  for (const char* sub : {"01", "02"}) {
    const json threshold = read(record(sub, "A"))["Conditions"][0]["Maps"][0]["Thresholds"][1];
    if (threshold["VoxelsPassingOutsideReference"] > 0) ++passing;
  }
  const ProgramResult text = bids("group");
  EXPECT_NE(text.out.find("4 records of 2 participants"), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("task-rest, A, whole: 2 participants"), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("q = 0.05: " + std::to_string(passing) + " of 2"), std::string::npos) << text.out;
  EXPECT_NE(text.out.find("This is a count, not a group test."), std::string::npos);
  EXPECT_EQ(text.out.find("WARNING"), std::string::npos) << text.out;
  const json summary = json::parse(bids("group", {"--json"}).out);
  EXPECT_EQ(summary["Participants"], 2);
  EXPECT_EQ(summary["Counts"][0]["Reference"], "A");
  EXPECT_EQ(summary["Counts"][0]["Maps"][0]["MapType"], "REF2VOX");
  EXPECT_EQ(summary["Counts"][0]["Maps"][0]["Thresholds"][1]["ParticipantsPassing"], passing);
  EXPECT_EQ(bids("group", {"--quiet"}).out, "");
}

TEST_F(BidsGroupLevel, RepeatingGivesEqualFilesThatTheIgnoreListCovers) {
  runParticipants();
  ASSERT_EQ(bids("group").exitCode, 0);
  const auto before = filesBelow(out());
  ASSERT_TRUE(before.count("group_tavmap.json"));
  const ProgramResult again = bids("group");
  ASSERT_EQ(again.exitCode, 0) << again.err;
  EXPECT_EQ(differingFiles(before, filesBelow(out())), "");
  EXPECT_EQ(again.out.find("WARNING"), std::string::npos) << again.out;  // its own files are no records
  EXPECT_NE(before.at(".bidsignore").find("*_tavmap.json\n*_tavmap.tsv\n"), std::string::npos);
  const json columns = json::parse(before.at("group_tavmap.json"));
  const std::vector<Row> rows = table();
  EXPECT_EQ(columns.size(), rows.at(0).size());
  for (const auto& [column, cell] : rows[0]) EXPECT_TRUE(columns.at(column).contains("Description"));
}

TEST_F(BidsGroupLevel, TakesTheParticipantsAndTasksAskedFor) {
  runParticipants();
  ASSERT_EQ(bids("group", {"--participant-label", "sub-02", "02", "--task-id", "rest"}).exitCode, 0);
  const std::vector<Row> rows = table();
  EXPECT_EQ(rows.size(), 2U * 16U);
  for (const Row& row : rows) EXPECT_EQ(row.at("participant_id"), "sub-02");
  const ProgramResult wrong = bids("group", {"--participant-label", "03"});
  EXPECT_EQ(wrong.exitCode, 2);
  EXPECT_NE(wrong.err.find("no record of participant '03'; did you mean '01'?"), std::string::npos)
      << wrong.err;
  EXPECT_EQ(bids("group", {"--session-label", "1"}).exitCode, 2);
  EXPECT_NE(bids("group", {"--space", "T1w"}).err.find("no record in space 'T1w'"), std::string::npos);
}

TEST_F(BidsGroupLevel, WithoutRecordsItSaysWhereItLookedAndWhatToDo) {
  for (const bool exists : {false, true}) {
    if (exists)
      scratch_.write("out/sub-01/func/.tavmap-x+A/sub-01_task-rest_seed-A_tavmap.json",
                     "{}");  // in the making
    const ProgramResult result = bids("group");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find("no record of a participant (sub-*_tavmap.json) below " + out().string() +
                              "; run the participant level into this folder first"),
              std::string::npos)
        << result.err;
    EXPECT_FALSE(fs::exists(out() / "group_tavmap.tsv"));
  }
}

TEST_F(BidsGroupLevel, ABrokenRecordIsNamedAndTheOthersGoOn) {
  runParticipants();
  fs::resize_file(record("01", "A"), fs::file_size(record("01", "A")) / 2);
  json renamed = read(record("01", "B"));
  renamed["Conditions"][0]["Maps"][0]["MapType"] = "REF";
  scratch_.write(record("01", "B").lexically_relative(folder()).string(), renamed.dump());
  const ProgramResult result = bids("group");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find(record("01", "A").string() + ": not a whole record"), std::string::npos)
      << result.err;
  EXPECT_NE(result.err.find(record("01", "B").string() +
                            ": not a whole record (Conditions[0].Maps[0].MapType: unknown map type 'REF'); "
                            "left out, run the participant level of 'sub-01' again"),
            std::string::npos)
      << result.err;
  EXPECT_EQ(table().size(), 2U * 16U);
  fs::remove(out() / "group_tavmap.tsv");
  const ProgramResult none = bids("group", {"--participant-label", "01"});
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_NE(none.err.find("no record could be used; group_tavmap.tsv is not written"), std::string::npos)
      << none.err;
  EXPECT_FALSE(fs::exists(out() / "group_tavmap.tsv"));
}

TEST_F(BidsGroupLevel, DifferentSettingsAndRepeatedRecordsAreWarnedOf) {
  runParticipants({"--participant-label", "01"});
  runParticipants({"--participant-label", "02"}, "order = 2\nq = [0.05]\n");
  ProgramResult result = bids("group");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(
      result.out.find(
          "WARNING: the records differ in model order: 1 (2 records); 2 (2 records); compare their rows "
          "with care"),
      std::string::npos)
      << result.out;
  EXPECT_NE(result.out.find("WARNING: the records differ in q: 0.01 0.05 0.1 (2 records); 0.05 (2 records)"),
            std::string::npos)
      << result.out;
  EXPECT_EQ(result.out.find("differ in method"), std::string::npos);
  EXPECT_NE(result.out.find("q = 0.01: "), std::string::npos);
  EXPECT_NE(result.out.find(" of 1; q = 0.05: "), std::string::npos) << result.out;  // only one has q = 0.01

  fs::copy_file(record("01", "A"),
                record("01", "A").parent_path() / "sub-01_task-rest_run-1_space-MNI_seed-A_tavmap.json");
  fs::copy_file(record("01", "A"), out() / "pilot_tavmap.json");
  result = bids("group");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.out.find("several records of one participant, session, task and reference"),
            std::string::npos);
  EXPECT_NE(result.out.find("5 records of 2 participants"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("pilot_tavmap.json names no participant (sub-LABEL_...) and is left out"),
            std::string::npos);
}

TEST_F(BidsGroupLevel, RecordsThatOutlivedTheirInputsAreNamedAndLeftOutOnDemand) {
  runParticipants();
  const fs::path func = folder() / "raw/derivatives/fmriprep";
  const fs::path mask = func / "sub-01/func/sub-01_task-rest_space-MNI_desc-brain_mask.nii.gz";
  fs::last_write_time(mask, fs::last_write_time(record("01", "B")) + std::chrono::seconds(1));
  ProgramResult result = bids("group");
  EXPECT_EQ(result.exitCode, 2);
  for (const char* reference : {"A", "B"}) {
    EXPECT_NE(result.err.find(record("01", reference).lexically_relative(out()).string() + ": " +
                              mask.string() + " was changed since"),
              std::string::npos)
        << result.err;
  }
  EXPECT_EQ(result.err.find("sub-02"), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("--leave-out-outdated"), std::string::npos) << result.err;
  EXPECT_FALSE(fs::exists(out() / "group_tavmap.tsv"));
  result = bids("group", {"--leave-out-outdated"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.out.find("WARNING: left out, not belonging to the present inputs: sub-01/func/"),
            std::string::npos)
      << result.out;
  for (const Row& row : table()) EXPECT_EQ(row.at("participant_id"), "sub-02");
  fs::remove(mask);
  EXPECT_NE(bids("group").err.find(mask.string() + " is gone"), std::string::npos);
}

TEST_F(BidsGroupLevel, WithoutTheDataSetRecordsCannotBeHeldAgainstIt) {
  runParticipants();
  fs::rename(folder() / "raw", folder() / "moved");
  const ProgramResult result = bids("group");
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.out.find("WARNING: there is no folder " + (folder() / "raw").string()), std::string::npos)
      << result.out;
}

TEST_F(BidsGroupLevel, TheDataSetItselfIsNoOutputFolder) {
  const std::string raw = (folder() / "raw").string();
  EXPECT_EQ(tavmap({"bids", raw, raw, "group"}, folder()).exitCode, 2);
}

// A record without computed voxels names the first voxel as its peak; the table must not.
TEST_F(BidsGroupLevel, NoPeakWithoutComputedVoxels) {
  runParticipants({"--participant-label", "01"});
  json empty = read(record("01", "A"));
  empty["Conditions"][0]["Voxels"]["computed"] = 0;
  scratch_.write(record("01", "A").lexically_relative(folder()).string(), empty.dump());
  ASSERT_EQ(bids("group").exitCode, 0);
  EXPECT_EQ(table().at(0).at("peak"), "n/a");
  EXPECT_EQ(table().at(0).at("peak_x"), "n/a");
}

}  // namespace
