#include "tav/vtc_cache.h"

#include "tests/tav/run_fixture.h"

using ::testing::HasSubstr;

namespace {

class VtcCache : public RunTest {
 protected:
  fakes::VtcSpec spec = fakes::cellGrid(2, 2, 2, 12);
  tav::Computer computer{{}, &listener, &store};
};

constexpr const char* kHeaderMessage =
    "\nfor condition 'rest'\nN.B.:VTC version 2 required for this version of the TAV_Plugin!";

}  // namespace

TEST_F(VtcCache, OpensAFileOfTwoConditionsOnce) {
  tav::TAV_Pars pars = simpleRequest(spec);
  addCondition(pars, "again", pars.conds[0].vtcIntvSets[0].srcVtcName, {{1, 5}});
  ASSERT_EQ(computer.openVTCFiles(pars, errors), tav::kSuccess);
  ASSERT_EQ(computer.vtcFiles.size(), 1U);
  for (const auto& cond : pars.conds) {
    EXPECT_EQ(cond.vtcIntvSets[0].srcVtc, computer.vtcFiles[0].get());
    EXPECT_EQ(cond.vtcIntvSets[0].trgVtc, computer.vtcFiles[0].get());
  }
}

TEST_F(VtcCache, OpensSourceAndTargetOfAPair) {
  tav::TAV_Pars pars = requestOn(spec);
  pars.conds.push_back({"pair", {{writeNoise("s.vtc", spec, 1), writeNoise("t.vtc", spec, 2), {{1, 12}}}}});
  ASSERT_EQ(computer.openVTCFiles(pars, errors), tav::kSuccess);
  ASSERT_EQ(computer.vtcFiles.size(), 2U);
  EXPECT_EQ(pars.conds[0].vtcIntvSets[0].srcVtc->name, folder.file("s.vtc"));
  EXPECT_EQ(pars.conds[0].vtcIntvSets[0].trgVtc->name, folder.file("t.vtc"));
}

TEST_F(VtcCache, ReadsVoxelsOfTheFilesOwnType) {
  spec.dataType = 2;
  const tav::TAV_Pars floats = simpleRequest(spec);
  ASSERT_EQ(computer.openVTCFiles(floats, errors), tav::kSuccess);
  tav::VtcFile& file = *computer.vtcFiles[0];
  EXPECT_EQ(file.sliceSize, 2 * 2 * 12);
  EXPECT_NE(file.floatSlice, nullptr);
  EXPECT_EQ(file.shortSlice, nullptr);
  EXPECT_EQ(std::ftell(file.fp), file.header.dataOffset);
  ASSERT_EQ(file.voxelsPerRead(), 4U) << "a small slice is read at once";
  EXPECT_TRUE(file.readVoxels(4));
  EXPECT_TRUE(file.readVoxels(3));
  EXPECT_TRUE(file.readVoxels(1));
  EXPECT_FALSE(file.readVoxels(1)) << "there are two slices of four voxels";
  file.rewind();
  EXPECT_TRUE(file.readVoxels(4));
}

TEST_F(VtcCache, FindsOpenFilesByNameAlone) {
  const tav::TAV_Pars pars = simpleRequest(spec);
  ASSERT_EQ(computer.openVTCFiles(pars, errors), tav::kSuccess);
  EXPECT_EQ(computer.getOpenVtc(folder.file("noise.vtc")), computer.vtcFiles[0].get());
  EXPECT_EQ(computer.getOpenVtc(folder.file("./noise.vtc")), nullptr);
}

TEST_F(VtcCache, AMissingFileStopsInitBeforeAnyCourseIsFetched) {
  tav::TAV_Pars pars = simpleRequest(spec);
  addCondition(pars, "gone", folder.file("gone.vtc"), {{1, 5}});
  EXPECT_EQ(computer.Init(pars, errors), tav::kTerminalError);
  EXPECT_EQ(errors.str(), "Could not open file: " + folder.file("gone.vtc") + "\nfor condition 'gone'");
  EXPECT_TRUE(computer.voiTcs.empty());
}

TEST_F(VtcCache, AForeignFileFailsWithTheHeaderMessage) {
  for (const std::string& bytes :
       {std::string(), std::string("\x01\x00", 2), std::string("not a vtc at all")}) {
    tav::TAV_Pars pars = requestOn(spec);
    folder.write("bad.vtc", bytes);
    addCondition(pars, "rest", folder.file("bad.vtc"), {{1, 5}});
    errors.str("");
    EXPECT_EQ(computer.openVTCFiles(pars, errors), tav::kTerminalError);
    EXPECT_EQ(errors.str(),
              "Could not correctly read vtc-header file: " + folder.file("bad.vtc") + kHeaderMessage);
    EXPECT_TRUE(computer.vtcFiles.empty());
  }
}

TEST_F(VtcCache, AHeaderWithoutDataFailsWithTheHeaderMessage) {
  spec.resolution = 0;
  folder.write("bad.vtc", fakes::vtcHeaderBytes(spec));
  tav::TAV_Pars pars = requestOn(fakes::cellGrid(2, 2, 2, 12));
  addCondition(pars, "rest", folder.file("bad.vtc"), {{1, 5}});
  EXPECT_EQ(computer.openVTCFiles(pars, errors), tav::kTerminalError);
  EXPECT_THAT(errors.str(), HasSubstr(kHeaderMessage));
}

TEST_F(VtcCache, AFolderIsNotAVtc) {
  tav::TAV_Pars pars = requestOn(spec);
  addCondition(pars, "rest", folder.path(), {{1, 5}});
  EXPECT_EQ(computer.openVTCFiles(pars, errors), tav::kTerminalError);
}

TEST_F(VtcCache, FindsRelativeNamesInTheFolderOfTheRun) {
  tav::TAV_Pars pars = requestOn(spec);
  const std::string whole = writeNoise("whole.vtc", spec, 2);
  writeNoise("noise.vtc", spec, 1);
  pars.conds.push_back({"pair", {{"noise.vtc", whole, {{1, 12}}}}});
  tav::RunOptions options;
  options.vtcFolder = folder.path();
  tav::Computer elsewhere(options);
  ASSERT_EQ(elsewhere.openVTCFiles(pars, errors), tav::kSuccess) << errors.str();
  EXPECT_EQ(elsewhere.vtcFiles[0]->name, "noise.vtc");
  EXPECT_EQ(elsewhere.vtcFiles[1]->name, whole) << "an absolute name is taken as it is";
  EXPECT_EQ(elsewhere.getOpenVtc("noise.vtc"), elsewhere.vtcFiles[0].get());
  EXPECT_EQ(computer.openVTCFiles(pars, errors), tav::kTerminalError);
  EXPECT_EQ(errors.str(), "Could not open file: noise.vtc\nfor condition 'pair'");
}

TEST_F(VtcCache, ASmallFileWithALargeHeaderCostsNoMemory) {
  spec.xEnd = spec.yEnd = 1000;
  spec.nrOfVolumes = 2000;  // 4 GB per slice
  folder.write("big.vtc", fakes::vtcHeaderBytes(spec) + "xx");
  tav::TAV_Pars pars = requestOn(spec);
  addCondition(pars, "rest", folder.file("big.vtc"), {{1, 5}});
  ASSERT_EQ(computer.openVTCFiles(pars, errors), tav::kSuccess);
  EXPECT_EQ(computer.vtcFiles[0]->sliceSize, 2000000000);
  EXPECT_FALSE(computer.vtcFiles[0]->readVoxels(1));
}

TEST_F(VtcCache, AGridOtherThanTheRequestsIsRefused) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.vtcXEnd = 3;
  EXPECT_EQ(computer.Init(pars, errors), tav::kInvalidParameters);
  EXPECT_EQ(errors.str(), "The bounding box or resolution of vtc '" + folder.file("noise.vtc") +
                              "' is not that of the request");
}

TEST_F(VtcCache, InitDerivesTheGridByIntegerDivision) {
  fakes::VtcSpec box;
  box.xEnd = 65;  // 8 / 3
  const tav::TAV_Pars pars = requestOn(box);
  ASSERT_EQ(computer.Init(pars, errors), tav::kSuccess);
  EXPECT_EQ(pars.dimX, 2);
  EXPECT_EQ(pars.dimY, 3);
  EXPECT_EQ(pars.dimZ, 3);
  EXPECT_EQ(computer.rawMaps1->nrOfVoxels(), 18U);
  EXPECT_EQ(computer.rawMaps2->nrOfVoxels(), 18U);
  EXPECT_EQ(computer.crdBufCapacity, 1000);
}

TEST_F(VtcCache, InitWithoutGeometryHasAnEmptyGrid) {
  const tav::TAV_Pars pars;
  ASSERT_EQ(computer.Init(pars, errors), tav::kSuccess);
  EXPECT_EQ(pars.dimX, 0);
  EXPECT_EQ(computer.rawMaps1->nrOfVoxels(), 0U);
}

TEST_F(VtcCache, CleanUpReleasesEverythingAndDiscardsTheMaps) {
  const tav::TAV_Pars pars = simpleRequest(spec);
  ASSERT_EQ(computer.Init(pars, errors), tav::kSuccess);
  store.discardResult = 42;
  EXPECT_EQ(computer.CleanUp(), 42);
  EXPECT_EQ(store.callCount("discard"), 1U);
  EXPECT_TRUE(computer.vtcFiles.empty());
  EXPECT_TRUE(computer.voiTcs.empty());
  EXPECT_EQ(computer.rawMaps1, nullptr);
  EXPECT_EQ(computer.rawMaps2, nullptr);
  EXPECT_EQ(computer.crdBuf, nullptr);
  EXPECT_EQ(computer.crdBufCapacity, 0);
}

TEST_F(VtcCache, CleanUpWorksOnAFreshComputer) {
  EXPECT_EQ(computer.CleanUp(), 1);
}
