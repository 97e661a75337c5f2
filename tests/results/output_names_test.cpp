#include "results/output_names.h"

#include <gtest/gtest.h>

#include "formats/file_error.h"
#include "request/problem.h"
#include "results/record_json.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

namespace fs = std::filesystem;

TEST(OutputNames, FollowTheConventionsOfStatisticMaps) {
  const OutputNames names("sub-01_task-rest", "V1");
  EXPECT_EQ(names.map("faces", tav::REF2VOX),
            "sub-01_task-rest_seed-V1_contrast-facesRef2Vox_stat-effect_statmap.nii.gz");
  EXPECT_EQ(names.map("faces", tav::DTAV_RC),
            "sub-01_task-rest_seed-V1_contrast-facesdTAVRC_stat-effect_statmap.nii.gz");
  EXPECT_EQ(names.voxelP("faces", tav::DTAV),
            "sub-01_task-rest_seed-V1_contrast-facesdTAV_stat-pfwe_statmap.nii.gz");
  EXPECT_EQ(names.clusterP("faces", tav::DTAV),
            "sub-01_task-rest_seed-V1_contrast-facesdTAV_stat-pfwecluster_statmap.nii.gz");
  EXPECT_EQ(names.status("faces"), "sub-01_task-rest_seed-V1_desc-facesStatus_dseg.nii.gz");
  EXPECT_EQ(names.direction("faces"), "sub-01_task-rest_seed-V1_desc-facesDirection_dseg.nii.gz");
  EXPECT_EQ(names.passing("faces", tav::DTAV), "sub-01_task-rest_seed-V1_desc-facesdTAVPassing_dseg.nii.gz");
  EXPECT_EQ(OutputNames::sidecarOf(names.passing("faces", tav::INST)),
            OutputNames::sidecarOf(names.passingTable("faces", tav::INST)));
  EXPECT_EQ(names.clusters("faces"), "sub-01_task-rest_seed-V1_desc-faces_clusters.tsv");
  EXPECT_EQ(OutputNames::sidecarOf(names.directionTable("faces")),
            OutputNames::sidecarOf(names.direction("faces")));
  EXPECT_EQ(OutputNames::sidecarOf(names.status("faces")),
            "sub-01_task-rest_seed-V1_desc-facesStatus_dseg.json");
  EXPECT_EQ(OutputNames::sidecarOf(names.courses()),
            "sub-01_task-rest_seed-V1_desc-reference_timeseries.json");
}

TEST(OutputNames, LabelsThatWouldCollideAreRefusedWithBothNames) {
  EXPECT_EQ(labelsOf({"LH-V1", "LHV2", "x"}, "references", "r.toml"),
            (std::vector<std::string>{"LHV1", "LHV2", "x"}));
  EXPECT_EQ(
      messageOf<InputError>([] {
        (void)labelsOf({"LH-V1", "a", "LHV1"}, "references", "r.toml");
      })
          .find("r.toml: the references 'LH-V1' and 'LHV1' would share their files, whose names keep letters "
                "and digits alone ('LHV1')"),
      0U);
  EXPECT_THROW((void)labelsOf({"+", "-"}, "conditions", "r.toml"), InputError);  // nothing is left of either
}

TEST(Staging, PublishesEverythingAndTheRecordLast) {
  Scratch scratch;
  {
    Staging staging(scratch.folder(), "p", "V1");
    for (const char* name : {"a.json", "b.nii.gz"}) std::ofstream(staging.path(name)) << name;
    EXPECT_FALSE(fs::exists(scratch.folder() / "a.json"));
    EXPECT_EQ(staging.publish("a.json"), (std::vector<std::string>{"b.nii.gz", "a.json"}));
  }
  EXPECT_TRUE(fs::exists(scratch.folder() / "a.json"));
  EXPECT_EQ(std::distance(fs::directory_iterator(scratch.folder()), fs::directory_iterator()), 2);
}

TEST(Staging, WhatIsNotPublishedVanishes) {
  Scratch scratch;
  {
    Staging staging(scratch.folder(), "p", "V1");
    std::ofstream(staging.path("half")) << "x";
  }
  EXPECT_TRUE(fs::is_empty(scratch.folder()));
}

TEST(Staging, OneResultIsMadeByOneProcessAtATime) {
  Scratch scratch;
  const Staging staging(scratch.folder(), "p", "V1");
  EXPECT_THROW(Staging(scratch.folder(), "p", "V1"), formats::FileError);
  const Staging another(scratch.folder(), "p", "V2");
}

// Half of the new files beside the old record would look finished.
TEST(Staging, AnOldRecordDoesNotVouchForNewFiles) {
  Scratch scratch;
  scratch.write("record.json", "old");
  scratch.write("map.nii.gz/in the way");
  Staging staging(scratch.folder(), "p", "V1");
  for (const char* name : {"a.nii.gz", "map.nii.gz", "record.json"})
    std::ofstream(staging.path(name)) << name;
  EXPECT_THROW(staging.publish("record.json"), RunError);
  EXPECT_TRUE(fs::exists(scratch.folder() / "a.nii.gz"));
  EXPECT_FALSE(fs::exists(scratch.folder() / "record.json"));
}

Record recordWith(const std::map<std::string, std::uintmax_t>& files) {
  Record record;
  record.key = "k";
  record.files = files;
  return record;
}

// The files of a condition that the new result does not have.
TEST(Staging, FilesThatTheNewResultDoesNotHaveGoWithTheOldRecord) {
  Scratch scratch;
  scratch.write("out/record.json",
                recordText(recordWith({{"faces.nii.gz", 1}, {"houses.nii.gz", 1}, {"../mine", 1}})));
  for (const char* name : {"out/faces.nii.gz", "out/houses.nii.gz", "out/other.nii.gz", "mine"})
    scratch.write(name, "old");
  Staging staging(scratch.folder() / "out", "p", "V1");
  for (const char* name : {"faces.nii.gz", "record.json"}) std::ofstream(staging.path(name)) << "new";
  staging.publish("record.json");
  EXPECT_EQ(contentOf(scratch.file("out/faces.nii.gz")), "new");
  EXPECT_FALSE(fs::exists(scratch.file("out/houses.nii.gz")));
  EXPECT_TRUE(fs::exists(scratch.file("out/other.nii.gz")));
  EXPECT_TRUE(fs::exists(scratch.file("mine")));
}

TEST(RemoveResult, TakesTheRecordAndItsFilesAlone) {
  Scratch scratch;
  for (const char* name : {"record.json", "a", "b", "folder/c"}) scratch.write(name, "x");
  removeResult(scratch.folder(), "record.json", recordWith({{"a", 1}, {"gone", 1}, {"folder/c", 1}}));
  EXPECT_FALSE(fs::exists(scratch.folder() / "record.json"));
  EXPECT_FALSE(fs::exists(scratch.folder() / "a"));
  EXPECT_TRUE(fs::exists(scratch.folder() / "b"));
  EXPECT_TRUE(fs::exists(scratch.folder() / "folder/c"));
}

}  // namespace
}  // namespace study
