#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/exports.h"
#include "tests/host/active_run.h"
#include "tests/host/sample_workspace.h"

namespace {

using host_test::ActiveRun;
using host_test::complaintAbout;
using host_test::SampleFiles;
using testing::HasSubstr;

TEST(VoiOperations, GiveTheListAndEveryVoi) {
  const SampleFiles files;
  ActiveRun active;
  ASSERT_EQ(zqLoadVOIs(files.vois().c_str()), 1);
  VOIs_Header list{};
  ASSERT_EQ(zqGetVOIs(&list), 1);
  EXPECT_EQ(list.nrOfVOIs, 2);
  EXPECT_EQ(list.talCoords, 0);
  EXPECT_EQ(list.fileName, files.folder / "vois.json");
  EXPECT_STREQ(list.referenceSpace, "native");
  VOI_Header voi{};
  const int* coordinates = zqGetVOI(1, &voi);
  EXPECT_STREQ(voi.name, "RH-V1");
  ASSERT_EQ(voi.nrOfVoxels, 1);
  EXPECT_THAT(std::vector<int>(coordinates, coordinates + 3), testing::ElementsAre(3, 2, 1));
}

TEST(VoiOperations, KeepCoordinatesInPlaceAcrossCalls) {
  const SampleFiles files;
  ActiveRun active;
  ASSERT_EQ(zqLoadVOIs(files.vois().c_str()), 1);
  VOI_Header voi{};
  const int* first = zqGetVOI(0, &voi);
  zqGetVOI(1, &voi);
  EXPECT_EQ(zqGetVOI(0, &voi), first);
}

TEST(VoiOperations, PassTheTalairachFlagOn) {
  const SampleFiles files;
  ActiveRun active;
  const std::string path = files.folder.write(
      "tal.json", R"({"talairach": true, "vois": [{"name": "a", "voxels": [[-40, 10, 5]]}]})");
  ASSERT_EQ(zqLoadVOIs(path.c_str()), 1);
  VOIs_Header list{};
  ASSERT_EQ(zqGetVOIs(&list), 1);
  EXPECT_NE(list.talCoords, 0);
  EXPECT_STREQ(list.referenceSpace, "TAL");
}

TEST(VoiOperations, HaveNoneUntilAListIsLoaded) {
  ActiveRun active;
  VOIs_Header list{};
  list.nrOfVOIs = 99;
  EXPECT_EQ(zqGetVOIs(&list), 0);
  EXPECT_EQ(list.nrOfVOIs, 0);
}

TEST(VoiOperations, SaveTheListAsJson) {
  const SampleFiles files;
  ActiveRun active;
  ASSERT_EQ(zqLoadVOIs(files.vois().c_str()), 1);
  const std::string path = files.folder / "saved.json";
  ASSERT_EQ(zqSaveVOIs(path.c_str()), 1);
  ASSERT_EQ(zqLoadVOIs(path.c_str()), 1);
  VOI_Header voi{};
  const int* coordinates = zqGetVOI(0, &voi);
  EXPECT_STREQ(voi.name, "LH-V1");
  ASSERT_EQ(voi.nrOfVoxels, 2);
  EXPECT_EQ(coordinates[3], 1);
}

TEST(VoiOperations, LogAnErrorAndKeepTheListWhenAFileCannotBeRead) {
  const SampleFiles files;
  ActiveRun active;
  ASSERT_EQ(zqLoadVOIs(files.vois().c_str()), 1);
  EXPECT_EQ(zqLoadVOIs((files.folder / "absent.json").c_str()), 0);
  EXPECT_THAT(active.log.str(), HasSubstr("ERROR: " + (files.folder / "absent.json")));
  VOIs_Header list{};
  EXPECT_EQ(zqGetVOIs(&list), 1);
}

void sampleVois(host::Workspace& workspace) {
  workspace.loadVois(SampleFiles().vois(), "");
}
void nothing(host::Workspace&) {}

TEST(VoiMisuse, IsNamed) {
  VOI_Header voi{};
  EXPECT_EQ(complaintAbout(nothing, [&] { zqGetVOI(0, &voi); }), "zqGetVOI: no VOIs are loaded");
  EXPECT_EQ(complaintAbout(sampleVois, [&] { zqGetVOI(2, &voi); }),
            "zqGetVOI: VOI 2 does not exist, there are 2");
  EXPECT_EQ(complaintAbout(sampleVois, [&] { zqGetVOI(-1, &voi); }),
            "zqGetVOI: VOI -1 does not exist, there are 2");
  EXPECT_EQ(complaintAbout(sampleVois, [] { zqGetVOI(0, nullptr); }),
            "zqGetVOI: the header is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetVOIs(nullptr); }), "zqGetVOIs: the header is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [] { zqSaveVOIs("x.json"); }), "zqSaveVOIs: no VOIs are loaded");
}

TEST(VoiMisuse, NoticesWritesBeyondTheCoordinates) {
  EXPECT_EQ(complaintAbout(sampleVois,
                           [] {
                             VOI_Header voi{};
                             zqGetVOI(1, &voi)[3] = 0;
                             zqGetVOI(1, &voi);
                           }),
            "zqGetVOI: coordinates were written outside VOI 1");
}

}  // namespace
