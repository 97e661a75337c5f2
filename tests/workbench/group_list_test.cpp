#include "workbench/group_list.h"

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "group/group_test_record.h"
#include "results/output_names.h"
#include "tests/support/scratch.h"

namespace {

using nlohmann::ordered_json;

struct GroupListTest : testing::Test {
  Scratch scratch;
  workbench::FolderGuard folders;

  GroupListTest() {
    std::filesystem::create_directories(scratch.folder() / "data/out/group");
    folders.allow(scratch.folder() / "data");
  }
  static study::GroupTestRecord record(const std::string& contrast) {
    study::GroupTestRecord record;
    record.test = "older";
    record.contrast = contrast;
    record.condition = "faces";
    record.map = "dTAV";
    record.images = {{"t", "group/older_stat-t_statmap.nii.gz"}};
    record.tAtQ = 3.5;
    return record;
  }
  void write(const study::GroupTestRecord& record, const std::string& name = "a") {
    scratch.write("data/out/group/" + name + "_grouptest.json", study::groupRecordText(record));
  }
  [[nodiscard]] ordered_json groups() const {
    return workbench::groupsJson(scratch.folder() / "data/out", folders);
  }
  // What the signs of a test mean.
  [[nodiscard]] std::pair<ordered_json, ordered_json> signs(const study::GroupTestRecord& record) {
    write(record);
    const ordered_json cell = groups().at(0)["cells"].at(0);
    return {cell["positive"], cell["negative"]};
  }
};

using Signs = std::pair<ordered_json, ordered_json>;

TEST_F(GroupListTest, SaysWhatTheSignsOfATestMean) {
  EXPECT_EQ(signs(record("patients - controls")), (Signs{"larger in patients", "larger in controls"}));
  EXPECT_EQ(signs(record("age")), (Signs{"grows with age", "falls with age"}));
  EXPECT_EQ(signs(record("mean")), (Signs{"above 0", "below 0"}));
  study::GroupTestRecord oneSided = record("mean");
  oneSided.isTwoSided = false;
  EXPECT_EQ(signs(oneSided), (Signs{"more than the voxels' own null values", nullptr}));
}

TEST_F(GroupListTest, HasTheImagesAndTheThresholdOfT) {
  write(record("mean"));
  const ordered_json group = groups().at(0), cell = group["cells"].at(0);
  EXPECT_EQ(group["folder"], "data");
  EXPECT_EQ(group["path"], "out/group");
  EXPECT_EQ(group["test"], "older");
  EXPECT_EQ(cell["condition"], "faces");
  EXPECT_EQ(cell["map"], "dTAV");
  EXPECT_EQ(cell["images"][0]["what"], "t");
  EXPECT_EQ(cell["images"][0]["file"], "group/older_stat-t_statmap.nii.gz");
  EXPECT_EQ(cell["thresholds"][0]["q"], 0.05);
  EXPECT_EQ(cell["thresholds"][0]["threshold"], 3.5);
  study::GroupTestRecord nothing = record("mean");
  nothing.tAtQ = std::numeric_limits<double>::infinity();
  write(nothing);
  EXPECT_TRUE(groups().at(0)["cells"].at(0)["thresholds"][0]["threshold"].is_null());
}

TEST_F(GroupListTest, NamesTheReportOnlyWhereItIs) {
  write(record("mean"));
  EXPECT_TRUE(groups().at(0)["report"].is_null());
  const std::string report = study::reportFileOf("older");
  scratch.write("data/out/group/" + report, "");
  EXPECT_EQ(groups().at(0)["report"], report);
}

TEST_F(GroupListTest, CellsOfATestAreTogetherAndTestsApart) {
  write(record("mean"), "a");
  write(record("mean"), "b");
  study::GroupTestRecord other = record("mean");
  other.test = "younger";
  write(other, "c");
  const ordered_json found = groups();
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0]["cells"].size(), 2U);
  EXPECT_EQ(found[1]["test"], "younger");
}

TEST_F(GroupListTest, ARecordThatCannotBeReadIsAProblemAndNotTheEnd) {
  scratch.write("data/out/group/a_grouptest.json", "{");
  const ordered_json found = groups();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_NE(found[0]["problem"].get<std::string>().find("a_grouptest.json"), std::string::npos);
  EXPECT_TRUE(found[0]["cells"].empty());
}

TEST_F(GroupListTest, NoTestsAreNoProblem) {
  EXPECT_TRUE(groups().empty());
}

}  // namespace
