#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>

#include "formats/map_set.h"
#include "host/exports.h"
#include "tests/host/active_run.h"
#include "tests/host/sample_workspace.h"

namespace {

using host_test::ActiveRun;
using host_test::complaintAbout;
using host_test::SampleFiles;
using testing::HasSubstr;

NR_VMPs_Header sampleBox() {
  NR_VMPs_Header header{};
  header.xEnd = host_test::kSampleX;
  header.yEnd = host_test::kSampleY;
  header.zEnd = host_test::kSampleZ;
  header.resolution = 1;
  return header;
}

struct MapOperations : testing::Test {
  SampleFiles files;
  ActiveRun active;
  void SetUp() override { active.workspace.openAnatomy(files.anatomy()); }

  static void create(int maps, int thresholds) {
    NR_VMPs_Header box = sampleBox();
    ASSERT_EQ(zqCreateNRVMPsForCurrentVMR(maps, 0, thresholds, &box), 1);
  }
};

TEST_F(MapOperations, CreateMapsOfZerosOverTheBox) {
  create(3, 2);
  NR_VMPs_Header header{};
  ASSERT_EQ(zqGetNRVMPsOfCurrentVMR(&header), 1);
  EXPECT_EQ(header.nrOfMaps, 3);
  EXPECT_EQ(header.nrOfFDRThresholds, 2);
  EXPECT_EQ(header.zEnd, host_test::kSampleZ);
  EXPECT_EQ(header.resolution, 1);
  NR_VMP_Header map{};
  const float* values = zqGetNRVMPOfCurrentVMR(2, &map);
  ASSERT_NE(values, nullptr);
  for (int i = 0; i < 24; ++i) EXPECT_EQ(values[i], 0.0F);
  EXPECT_STREQ(map.name, "");
  EXPECT_EQ(map.fdrThresholds[1], 0.0F);
}

TEST_F(MapOperations, KeepWhatThePluginWrites) {
  create(2, 1);
  NR_VMP_Header map{};
  float* values = zqGetNRVMPOfCurrentVMR(1, &map);
  values[5] = 2.5F;
  std::strcpy(map.name, "faces: Inst");
  map.kind = 101;
  map.lowerThreshold = 0.5F;
  map.fdrThresholds[0] = 0.25F;
  ASSERT_EQ(zqSetNRVMPParametersOfCurrentVMR(1, &map), 1);
  NR_VMP_Header again{};
  EXPECT_EQ(zqGetNRVMPOfCurrentVMR(1, &again)[5], 2.5F);
  EXPECT_STREQ(again.name, "faces: Inst");
  EXPECT_EQ(again.kind, 101);
  EXPECT_EQ(again.lowerThreshold, 0.5F);
  EXPECT_EQ(again.fdrThresholds[0], 0.25F);
  NR_VMP_Header other{};
  EXPECT_EQ(zqGetNRVMPOfCurrentVMR(0, &other)[5], 0.0F);
  EXPECT_STREQ(other.name, "");
}

TEST_F(MapOperations, AreForgottenWhenDeleted) {
  create(1, 1);
  EXPECT_EQ(zqDeleteNRVMPsOfCurrentVMR(), 1);
  NR_VMPs_Header header{};
  EXPECT_EQ(zqGetNRVMPsOfCurrentVMR(&header), 0);
  EXPECT_EQ(header.nrOfMaps, 0);
  EXPECT_EQ(zqDeleteNRVMPsOfCurrentVMR(), 1) << "deleting nothing is no misuse";
}

TEST_F(MapOperations, SaveAndLoadTheSet) {
  create(2, 2);
  NR_VMPs_Header header{};
  ASSERT_EQ(zqGetNRVMPsOfCurrentVMR(&header), 1);
  std::strcpy(header.fdrThresholdNames[1], "thres q=0.050");
  NR_VMP_Header map{};
  zqGetNRVMPOfCurrentVMR(1, &map)[23] = -3.0F;
  std::strcpy(map.name, "faces: dTAV");
  map.kind = 101;
  map.positiveColorFrom = 64, map.positiveColorTo = 255;
  map.negativeColorFrom = 16384, map.negativeColorTo = 65280;
  map.useColors = 1;
  map.lowerThreshold = 3.0F;
  map.upperThreshold = 9.0F;
  map.fdrThresholds[0] = 2.5F;
  map.fdrThresholds[1] = 1.5F;
  ASSERT_EQ(zqSetNRVMPParametersOfCurrentVMR(1, &map), 1);
  const std::string path = files.folder / "maps.tav";
  ASSERT_EQ(zqSaveNRVMPsOfCurrentVMR(path.c_str()), 1);
  EXPECT_THAT(active.workspace.savedMaps(), testing::ElementsAre(path));

  zqDeleteNRVMPsOfCurrentVMR();
  ASSERT_EQ(zqLoadNRVMPsToCurrentVMR(path.c_str()), 1);
  NR_VMP_Header loaded{};
  ASSERT_EQ(zqGetNRVMPsOfCurrentVMR(&header), 1);
  EXPECT_EQ(header.nrOfMaps, 2);
  EXPECT_STREQ(header.fdrThresholdNames[1], "thres q=0.050");
  EXPECT_EQ(zqGetNRVMPOfCurrentVMR(1, &loaded)[23], -3.0F);
  EXPECT_STREQ(loaded.name, "faces: dTAV");
  EXPECT_EQ(loaded.kind, 101);
  EXPECT_EQ(loaded.positiveColorFrom, 64);
  EXPECT_EQ(loaded.positiveColorTo, 255);
  EXPECT_EQ(loaded.negativeColorFrom, 16384);
  EXPECT_EQ(loaded.negativeColorTo, 65280);
  EXPECT_EQ(loaded.useColors, 1);
  EXPECT_EQ(loaded.lowerThreshold, 3.0F);
  EXPECT_EQ(loaded.upperThreshold, 9.0F);
  EXPECT_EQ(loaded.fdrThresholds[0], 2.5F);
  EXPECT_EQ(loaded.fdrThresholds[1], 1.5F);
}

TEST_F(MapOperations, PlaceTheCellsAsTheAnatomysVoxels) {
  create(1, 0);
  const std::string path = files.folder / "maps.tav";
  ASSERT_EQ(zqSaveNRVMPsOfCurrentVMR(path.c_str()), 1);
  const formats::MapSet saved = formats::loadMapSet(path);
  EXPECT_EQ(saved.affine.at(0, 0), 2.0);
  EXPECT_EQ(saved.affine.at(2, 3), -30.0);
  EXPECT_EQ(saved.spaceCode, 1);
}

TEST_F(MapOperations, PlaceAnyOtherBoxInTalairachSpace) {
  NR_VMPs_Header box = sampleBox();
  box.xStart = 57, box.xEnd = 66, box.yStart = 52, box.yEnd = 61, box.zStart = 59, box.zEnd = 68,
  box.resolution = 3;
  ASSERT_EQ(zqCreateNRVMPsForCurrentVMR(1, 0, 0, &box), 1);
  const std::string path = files.folder / "maps.tav";
  ASSERT_EQ(zqSaveNRVMPsOfCurrentVMR(path.c_str()), 1);
  const formats::MapSet saved = formats::loadMapSet(path);
  EXPECT_EQ(formats::apply(saved.affine, {1, 2, 3}),
            (formats::Point{128 - (59 + 9), 128 - (57 + 3), 128 - (52 + 6)}));
  EXPECT_EQ(saved.spaceCode, 3);
}

TEST_F(MapOperations, LogAnErrorWhenTheFileCannotBeWritten) {
  create(1, 0);
  std::filesystem::create_directory(files.folder / "maps.tav");
  EXPECT_EQ(zqSaveNRVMPsOfCurrentVMR((files.folder / "maps.tav").c_str()), 0);
  EXPECT_THAT(active.log.str(), HasSubstr("ERROR: " + (files.folder / "maps.tav")));
  EXPECT_TRUE(active.pane.reportedFailure());
  EXPECT_TRUE(active.workspace.savedMaps().empty());
  EXPECT_FALSE(active.run.ended().has_value()) << "the plug-in goes on";
}

TEST_F(MapOperations, LogAnErrorWhenTheMemoryDoesNotSuffice) {
  NR_VMPs_Header box = sampleBox();
  box.xEnd = box.yEnd = box.zEnd = 2048;
  EXPECT_EQ(zqCreateNRVMPsForCurrentVMR(1, 0, 0, &box), 0);
  EXPECT_EQ(active.log.str(), "ERROR: zqCreateNRVMPsForCurrentVMR: the memory does not suffice\n");
  EXPECT_FALSE(active.run.ended().has_value());
}

TEST_F(MapOperations, LogAnErrorForAFileThatIsNoMapSetAndKeepTheMaps) {
  create(1, 0);
  EXPECT_EQ(zqLoadNRVMPsToCurrentVMR(files.events().c_str()), 0);
  EXPECT_TRUE(active.pane.reportedFailure());
  EXPECT_NE(active.workspace.maps(), nullptr);
}

// --- misuse ---

void anatomyOnly(host::Workspace& workspace) {
  workspace.openAnatomy(SampleFiles().anatomy());
}

void twoMaps(host::Workspace& workspace) {
  anatomyOnly(workspace);
  workspace.createMaps({{0, 0, 0}, {4, 3, 2}, 1}, 2, 1);
}

// The complaint after a change to the header of map 0.
template <typename Change>
std::string complaintAfter(Change change) {
  return complaintAbout(twoMaps, [&] {
    NR_VMP_Header map{};
    float* values = zqGetNRVMPOfCurrentVMR(0, &map);
    change(map, values);
    zqSetNRVMPParametersOfCurrentVMR(0, &map);
  });
}

TEST(MapMisuse, NeedsMapsBeforeTheyAreUsed) {
  NR_VMP_Header map{};
  EXPECT_EQ(complaintAbout(anatomyOnly, [&] { zqGetNRVMPOfCurrentVMR(0, &map); }),
            "zqGetNRVMPOfCurrentVMR: there are no maps, they must be created or loaded first");
  EXPECT_EQ(complaintAbout(anatomyOnly, [&] { zqSetNRVMPParametersOfCurrentVMR(0, &map); }),
            "zqSetNRVMPParametersOfCurrentVMR: there are no maps, they must be created or loaded first");
  EXPECT_EQ(complaintAbout(anatomyOnly, [] { zqSaveNRVMPsOfCurrentVMR("x.tav"); }),
            "zqSaveNRVMPsOfCurrentVMR: there are no maps, they must be created or loaded first");
}

TEST(MapMisuse, NamesABadIndex) {
  NR_VMP_Header map{};
  EXPECT_EQ(complaintAbout(twoMaps, [&] { zqGetNRVMPOfCurrentVMR(2, &map); }),
            "zqGetNRVMPOfCurrentVMR: map 2 does not exist, there are 2");
  EXPECT_EQ(complaintAbout(twoMaps, [&] { zqGetNRVMPOfCurrentVMR(-1, &map); }),
            "zqGetNRVMPOfCurrentVMR: map -1 does not exist, there are 2");
}

TEST(MapMisuse, RefusesNullRecords) {
  EXPECT_EQ(complaintAbout(twoMaps, [] { zqGetNRVMPOfCurrentVMR(0, nullptr); }),
            "zqGetNRVMPOfCurrentVMR: the header is a null pointer");
  EXPECT_EQ(complaintAbout(twoMaps, [] { zqGetNRVMPsOfCurrentVMR(nullptr); }),
            "zqGetNRVMPsOfCurrentVMR: the header is a null pointer");
  EXPECT_EQ(complaintAbout(anatomyOnly, [] { zqCreateNRVMPsForCurrentVMR(1, 0, 1, nullptr); }),
            "zqCreateNRVMPsForCurrentVMR: the header is a null pointer");
  EXPECT_EQ(complaintAbout(twoMaps, [] { zqSaveNRVMPsOfCurrentVMR(nullptr); }),
            "zqSaveNRVMPsOfCurrentVMR: the path is a null pointer");
}

TEST(MapMisuse, RefusesSetsThatCannotBe) {
  NR_VMPs_Header box = sampleBox();
  EXPECT_EQ(complaintAbout([](host::Workspace&) {}, [&] { zqCreateNRVMPsForCurrentVMR(1, 0, 1, &box); }),
            "zqCreateNRVMPsForCurrentVMR: no anatomy is open");
  EXPECT_EQ(complaintAbout(anatomyOnly, [&] { zqCreateNRVMPsForCurrentVMR(0, 0, 1, &box); }),
            "zqCreateNRVMPsForCurrentVMR: 0 maps cannot be created");
  EXPECT_EQ(complaintAbout(anatomyOnly, [&] { zqCreateNRVMPsForCurrentVMR(1, 0, -1, &box); }),
            "zqCreateNRVMPsForCurrentVMR: -1 thresholds cannot be created");
  box.resolution = 0;
  EXPECT_EQ(complaintAbout(anatomyOnly, [&] { zqCreateNRVMPsForCurrentVMR(1, 0, 1, &box); }),
            "zqCreateNRVMPsForCurrentVMR: the resolution is 0");
  box.resolution = 1;
  box.yStart = box.yEnd;
  EXPECT_EQ(complaintAbout(anatomyOnly, [&] { zqCreateNRVMPsForCurrentVMR(1, 0, 1, &box); }),
            "zqCreateNRVMPsForCurrentVMR: the bounding box has no proper extent along y");
}

TEST(MapMisuse, NoticesANameWithoutItsEnd) {
  EXPECT_EQ(complaintAfter([](NR_VMP_Header& map, float*) { std::memset(map.name, 'x', sizeof map.name); }),
            "zqSetNRVMPParametersOfCurrentVMR: the map name does not end within its 256 bytes");
}

TEST(MapMisuse, RefusesThresholdsThatAreNoNumbers) {
  EXPECT_EQ(complaintAfter([](NR_VMP_Header& map, float*) { map.lowerThreshold = NAN; }),
            "zqSetNRVMPParametersOfCurrentVMR: the lower threshold is not a number");
  EXPECT_EQ(complaintAfter([](NR_VMP_Header& map, float*) { map.upperThreshold = NAN; }),
            "zqSetNRVMPParametersOfCurrentVMR: the upper threshold is not a number");
}

TEST(MapMisuse, RefusesColoursOfMoreThan24Bits) {
  EXPECT_EQ(complaintAfter([](NR_VMP_Header& map, float*) { map.negativeColorTo = 1 << 24; }),
            "zqSetNRVMPParametersOfCurrentVMR: the last negative colour has more than 24 bits");
}

TEST(MapMisuse, RefusesAnotherTableOfThresholds) {
  float own = 0;
  EXPECT_EQ(complaintAfter([&](NR_VMP_Header& map, float*) { map.fdrThresholds = &own; }),
            "zqSetNRVMPParametersOfCurrentVMR: the table of thresholds is not the host's");
}

TEST(MapMisuse, NoticesWritesBeyondLentMemory) {
  EXPECT_EQ(complaintAfter([](NR_VMP_Header&, float* values) { values[24] = 1.0F; }),
            "zqSetNRVMPParametersOfCurrentVMR: values were written outside map 0");
  EXPECT_EQ(complaintAfter([](NR_VMP_Header& map, float*) { map.fdrThresholds[1] = 1.0F; }),
            "zqSetNRVMPParametersOfCurrentVMR: thresholds were written outside the table of map 0");
  EXPECT_EQ(complaintAfter([](NR_VMP_Header&, float*) {
              NR_VMPs_Header header{};
              zqGetNRVMPsOfCurrentVMR(&header);
              std::memset(header.fdrThresholdNames[0], 'x', 70);
            }),
            "zqSetNRVMPParametersOfCurrentVMR: the name of threshold 0 was written beyond its 64 bytes");
}

TEST(MapMisuse, IsNoticedAtTheLatestWhenMapsAreDeleted) {
  EXPECT_EQ(complaintAbout(twoMaps,
                           [] {
                             NR_VMP_Header map{};
                             zqGetNRVMPOfCurrentVMR(1, &map)[-1] = 1.0F;
                             zqDeleteNRVMPsOfCurrentVMR();
                           }),
            "zqDeleteNRVMPsOfCurrentVMR: values were written outside map 1");
}

}  // namespace
