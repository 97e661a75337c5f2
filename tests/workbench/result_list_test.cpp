#include "workbench/result_list.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "results/record_json.h"
#include "tests/support/sample_result.h"
#include "tests/support/scratch.h"

namespace {

using nlohmann::ordered_json;

struct ResultListTest : testing::Test {
  Scratch scratch;
  workbench::FolderGuard folders;

  ResultListTest() {
    std::filesystem::create_directories(data());
    folders.allow(data());
  }
  [[nodiscard]] std::filesystem::path data() const { return scratch.folder() / "data"; }
  void writeRecord(const std::string& folder, const std::string& prefix) {
    scratch.write("data/" + folder + "/" + prefix + "_seed-V1_tavmap.json",
                  study::recordText(sample_result::record()));
  }
  // Below "data", a space behind each.
  [[nodiscard]] std::string found() const {
    std::string names;
    for (const auto& folder : workbench::resultFoldersIn(data()))
      names += folder.lexically_relative(data()).string() + " ";
    return names;
  }
  [[nodiscard]] ordered_json requestIn(const std::string& folder, const std::string& prefix) const {
    return workbench::requestJson(data() / folder, prefix, folders);
  }
};

// Root may read everything.
class Nobody {
 public:
  Nobody() { EXPECT_EQ(seteuid(geteuid() == 0 ? 65534 : geteuid()), 0); }
  ~Nobody() { EXPECT_EQ(seteuid(getuid()), 0); }
};

TEST_F(ResultListTest, FindsFoldersWithRecordsFailuresOrTests) {
  EXPECT_EQ(found(), "");
  writeRecord("b/func", "sub-01");
  scratch.write("data/a/sub-02_desc-failures_tavmap.tsv", "reference\tmessage\n");
  scratch.write("data/c/group/x_grouptest.json", "{}");
  scratch.write("data/c/group/notes.json", "{}");
  scratch.write("data/d/group/notes.json", "{}");
  EXPECT_EQ(found(), "a b/func c ");
}

TEST_F(ResultListTest, LooksFourLevelsDownAndNotAtWhatIsHiddenOrLinked) {
  writeRecord("1/2/3/4", "deep");
  writeRecord("1/2/3/4/5", "deeper");
  writeRecord(".hidden", "x");
  std::filesystem::create_directory_symlink(data() / "1", data() / "link");
  EXPECT_EQ(found(), "1/2/3/4 ");
}

TEST_F(ResultListTest, FoldersThatNobodyMayReadArePassedOver) {
  writeRecord("a", "x");
  writeRecord("b", "x");
  std::filesystem::permissions(scratch.folder(), std::filesystem::perms{0755});
  std::filesystem::permissions(data() / "a", std::filesystem::perms::none);
  const std::string names = [&] {
    const Nobody nobody;
    return found();
  }();
  std::filesystem::permissions(data() / "a", std::filesystem::perms::owner_all);
  EXPECT_EQ(names, "b ");
}

TEST_F(ResultListTest, HasTheFoldersAboveThatHaveAnIndex) {
  writeRecord("out/sub-01/func", "sub-01");
  writeRecord("out/sub-02/func", "sub-02");
  scratch.write("data/out/index.html");
  scratch.write("data/elsewhere/index.html");  // of something else
  EXPECT_EQ(found(), "out out/sub-01/func out/sub-02/func ");
  EXPECT_TRUE(workbench::hasIndex(data() / "out"));
  EXPECT_FALSE(workbench::hasIndex(data() / "out/sub-01"));
}

TEST_F(ResultListTest, ParticipantsAreNamedByTheBeginning) {
  EXPECT_EQ(workbench::participantOf("sub-01_task-rest"), "sub-01");
  EXPECT_EQ(workbench::participantOf("sub-01"), "sub-01");
  EXPECT_EQ(workbench::participantOf("small"), "");
}

TEST_F(ResultListTest, OfARequestHasWhatItsRecordsSay) {
  writeRecord("out", "sub-01_task-x");
  const ordered_json request = requestIn("out", "sub-01_task-x");
  EXPECT_EQ(request["folder"], "data");
  EXPECT_EQ(request["path"], "out");
  EXPECT_EQ(request["name"], "sub-01_task-x");
  EXPECT_EQ(request["participant"], "sub-01");
  EXPECT_TRUE(request["report"].is_null());
  ASSERT_EQ(request["references"].size(), 1U);
  const ordered_json reference = request["references"][0];
  EXPECT_EQ(reference["name"], "V1");
  EXPECT_EQ(reference["voxels"], 44);
  EXPECT_EQ(reference["record"], "sub-01_task-x_seed-V1_tavmap.json");
  EXPECT_EQ(reference["order"], sample_result::record().model.settings.order);
  EXPECT_EQ(reference["warnings"], ordered_json(sample_result::record().warnings));
  EXPECT_EQ(reference["files"][1], (ordered_json{{"name", "y.tsv"}, {"bytes", 5002}}));
  const ordered_json faces = reference["conditions"][0];
  EXPECT_EQ(faces["name"], "faces");
  EXPECT_EQ(faces["volumes"], 127);
  EXPECT_EQ(faces["effectiveVolumes"], 115);
  EXPECT_EQ(faces["statusFile"], "faces_dseg.nii.gz");
  EXPECT_EQ(faces["directionFile"], "faces_direction.nii.gz");
  EXPECT_TRUE(reference["conditions"][1]["directionFile"].is_null());
}

TEST_F(ResultListTest, OfAMapHasItsSignsThresholdsAndPeak) {
  writeRecord("out", "x");
  const ordered_json maps = requestIn("out", "x")["references"][0]["conditions"][0]["maps"];
  const ordered_json influence = maps.at(0), share = maps.at(1);
  EXPECT_EQ(influence["label"], "Ref2Vox");
  EXPECT_EQ(influence["type"], "REF2VOX");
  EXPECT_EQ(influence["positive"], "from V1 to the voxel");
  EXPECT_TRUE(influence["negative"].is_null());
  EXPECT_EQ(influence["unit"], "natural logarithm of a ratio of error variances, times 104.5");
  EXPECT_EQ(influence["file"], "faces_ref2vox.nii.gz");
  EXPECT_EQ(influence["pFile"], "faces_p.nii.gz");
  EXPECT_EQ(influence["peak"], -9.25);
  EXPECT_EQ(influence["peakMm"], (ordered_json{-1.5, 2.5, 3.5}));
  EXPECT_EQ(influence["peakLabel"], "lobe");
  ASSERT_EQ(influence["thresholds"].size(), 2U);
  EXPECT_EQ(influence["thresholds"][0], (ordered_json{{"q", 0.011}, {"threshold", 5.5}, {"passing", 61}}));
  EXPECT_EQ(share["negative"], "more from the voxel to V1");
  EXPECT_TRUE(share["pFile"].is_null());
}

TEST_F(ResultListTest, NamesTheReportOnlyWhereItIsAndWhatFailed) {
  scratch.write("data/out/x_desc-failures_tavmap.tsv", "reference\tmessage\nV1\tno voxel\n");
  scratch.write("data/out/x_report.html");
  const ordered_json request = requestIn("out", "x");
  EXPECT_EQ(request["report"], "x_report.html");
  EXPECT_EQ(request["failures"], ordered_json::array({{{"reference", "V1"}, {"message", "no voxel"}}}));
}

TEST_F(ResultListTest, ARecordThatCannotBeReadIsAProblemAndNotTheEnd) {
  scratch.write("data/out/x_seed-V1_tavmap.json", "{");
  const ordered_json request = requestIn("out", "x");
  EXPECT_NE(request["problem"].get<std::string>().find("x_seed-V1_tavmap.json"), std::string::npos);
  EXPECT_TRUE(request["references"].empty());
}

}  // namespace
