// The engine's results in the host: which operations are called with what.
#include "plugin/host_store.h"

#include <sstream>

#include "tav/tav.h"
#include "tests/plugin/plugin_test_case.h"

namespace {

using testing::Each;
using testing::ElementsAre;

class HostStoreTest : public PluginTestCase {
 protected:
  HostStoreTest() {
    pars.vtcXStart = 57, pars.vtcXEnd = 66;
    pars.vtcYStart = 52, pars.vtcYEnd = 61;
    pars.vtcZStart = 59, pars.vtcZEnd = 68;
    pars.vtcResolution = 3;
    pars.vois.push_back({"left V5", 0, 0, nullptr, 0});
    pars.conds = {{"faces", {}}, {"houses", {}}};
    pars.resultPathPrefix = folder.file("maps");
  }

  int create() { return computer.createVOIResultMAP(pars.vois[0], pars, errors); }
  int save(const std::string& text) {
    std::ostringstream voiLog(text);
    return computer.saveVOIResultMAP(pars.vois[0], pars, voiLog, errors);
  }
  // Maps of raw measures that are all 1, of which none survives: those of surrogates are all 2.
  int transfer() {
    EXPECT_EQ(computer.Init(pars, errors), tav::kSuccess);
    for (int measure = 0; measure < tav::kNrOfMeasures; ++measure) {
      std::fill_n(computer.rawMaps1->values(measure), computer.rawMaps1->nrOfVoxels(), 1.0F);
      std::fill_n(computer.rawMaps2->values(measure), computer.rawMaps2->nrOfVoxels(), 2.0F);
    }
    EXPECT_EQ(create(), tav::kSuccess);
    host.calls.clear();
    return computer.transferConditionResults(pars.vois[0], pars.conds[0], 0, pars, errors);
  }
  [[nodiscard]] const fakes::FakeMap& map(std::size_t index) const { return host.mapSet().maps[index]; }

  HostStore store;
  HostLog log;
  tav::Computer computer{{}, &log, &store};
  std::ostringstream errors;
};

TEST_F(HostStoreTest, ReplacesTheHostsMapSet) {
  ASSERT_EQ(create(), tav::kSuccess);
  EXPECT_THAT(host.calls, ElementsAre("zqGetVersionOfCorvaneZQ", "zqDeleteNRVMPsOfCurrentVMR",
                                      "zqCreateNRVMPsForCurrentVMR", "zqGetNRVMPsOfCurrentVMR"));
  const NR_VMPs_Header& header = host.mapSet().header;
  EXPECT_EQ(header.nrOfMaps, 12);
  EXPECT_EQ(header.nrOfFDRThresholds, 3);
  EXPECT_EQ(header.xStart, 57);
  EXPECT_EQ(header.xEnd, 66);
  EXPECT_EQ(header.yStart, 52);
  EXPECT_EQ(header.yEnd, 61);
  EXPECT_EQ(header.zStart, 59);
  EXPECT_EQ(header.zEnd, 68);
  EXPECT_EQ(header.resolution, 3);
}

TEST_F(HostStoreTest, NamesThresholdsInTheOrderOfTheSettings) {
  pars.qThresholds = {0.05F, 0.01F, 0.0005F};
  ASSERT_EQ(create(), tav::kSuccess);
  ASSERT_EQ(save(""), tav::kSuccess);
  EXPECT_THAT(host.savedMaps[0].set.thresholdNames,
              ElementsAre("thres q=0.050", "thres q=0.010", "thres q=0.001"));
}

TEST_F(HostStoreTest, WithoutMapsCreatesNone) {
  pars.mapTypes.clear();
  EXPECT_EQ(create(), tav::kInvalidParameters);
  EXPECT_EQ(host.callCount("zqDeleteNRVMPsOfCurrentVMR"), 1);
  EXPECT_EQ(host.callCount("zqCreateNRVMPsForCurrentVMR"), 0);
}

TEST_F(HostStoreTest, ReportsAHostThatCannotCreateMaps) {
  host.failCreateMaps = true;
  EXPECT_EQ(create(), tav::kTerminalError);
  EXPECT_EQ(errors.str(), "Could not create an CMP map-structure to write TAV results");
}

TEST_F(HostStoreTest, ReportsAHostThatDoesNotHandMapsOut) {
  host.failGetMapSet = true;
  EXPECT_EQ(create(), tav::kTerminalError);
  EXPECT_EQ(errors.str(), "Could not get access to created CMP map-structure for write TAV results");
}

TEST_F(HostStoreTest, GetsAndSetsEveryMap) {
  pars.mapTypes = {tav::INST, tav::DTAV_RC};
  ASSERT_EQ(transfer(), tav::kSuccess);
  EXPECT_THAT(host.calls, ElementsAre("zqGetNRVMPOfCurrentVMR", "zqSetNRVMPParametersOfCurrentVMR",
                                      "zqGetNRVMPOfCurrentVMR", "zqSetNRVMPParametersOfCurrentVMR"));
  EXPECT_THAT(map(0).values, Each(100.0F));
  EXPECT_THAT(map(1).values, Each(0.0F));
}

TEST_F(HostStoreTest, FillsTheHeaderOfAMap) {
  ASSERT_EQ(transfer(), tav::kSuccess);
  const NR_VMP_Header& header = map(tav::DTAV_IT).header;
  EXPECT_STREQ(header.name, "faces: dTAV IT");
  EXPECT_EQ(header.kind, 101);
  EXPECT_EQ(header.useColors, 1);
  EXPECT_EQ(header.positiveColorFrom, 64);
  EXPECT_EQ(header.positiveColorTo, 255);
  EXPECT_EQ(header.negativeColorFrom, 16384);
  EXPECT_EQ(header.negativeColorTo, 65280);
}

TEST_F(HostStoreTest, WritesThresholdsIntoTheHostsTable) {
  ASSERT_EQ(transfer(), tav::kSuccess);
  EXPECT_THAT(map(tav::INST).thresholds, Each(100.0F)) << "a walk that ends where it starts";
  EXPECT_EQ(map(tav::INST).header.lowerThreshold, 100.0F);
  EXPECT_EQ(map(tav::INST).header.upperThreshold, 500.0F);
}

TEST_F(HostStoreTest, LeavesTheTableOfAMapWithoutThresholdsAlone) {
  ASSERT_EQ(transfer(), tav::kSuccess);
  EXPECT_THAT(map(tav::DTAV_RC).thresholds, Each(-1.0F)) << "as the host made it";
  EXPECT_EQ(map(tav::DTAV_RC).header.lowerThreshold, 0.2F);
  EXPECT_EQ(map(tav::DTAV_RC).header.upperThreshold, 0.7F);
}

TEST_F(HostStoreTest, CutsLongNames) {
  pars.conds[0].name = std::string(400, 'n');
  ASSERT_EQ(transfer(), tav::kSuccess);
  EXPECT_EQ(std::string(map(0).header.name), std::string(255, 'n'));
}

TEST_F(HostStoreTest, FailsWhenTheHostHasNoMap) {
  host.nullMapIndex = 2;
  EXPECT_EQ(transfer(), tav::kTerminalError);
  EXPECT_EQ(errors.str(),
            "Failed to retrieve an allocated CMP map-pointer for VOI 'left V5', Condition 'faces'");
}

TEST_F(HostStoreTest, HasTheHostSaveAndWritesTheLogBeside) {
  fakes::writeBytes(folder.file("maps_left V5.log"), "an old log that is longer than the new one");
  ASSERT_EQ(create(), tav::kSuccess);
  ASSERT_EQ(save("the log\n"), tav::kSuccess);
  const std::string base = folder.file("maps_left V5");
  EXPECT_EQ(host.savedMaps[0].path, base + ".tav");
  EXPECT_EQ(contentOf(base + ".log"), "the log\n");
  EXPECT_THAT(host.log, ElementsAre("// TAV>\n// TAV> Written data: " + base + ".tav",
                                    "// TAV> Written  log: " + base + ".log"));
}

TEST_F(HostStoreTest, IgnoresTheHostsResultOfSaving) {
  host.saveMapsResult = 0;
  ASSERT_EQ(create(), tav::kSuccess);
  EXPECT_EQ(save("x"), tav::kSuccess);
  EXPECT_THAT(host.log[0], testing::HasSubstr("Written data"));
}

TEST_F(HostStoreTest, WarnsOfALogThatCannotBeWritten) {
  pars.resultPathPrefix = folder.file("missing/maps");
  ASSERT_EQ(create(), tav::kSuccess);
  EXPECT_EQ(save("x"), tav::kSuccess);
  EXPECT_EQ(host.log[1],
            "// TAV> WARNING: Could not write the log " + folder.file("missing/maps_left V5.log") +
                " (No such file or directory). Check the folder and the free space, then repeat the run.");
  EXPECT_EQ(errors.str(), "");
}

TEST_F(HostStoreTest, CleanUpDeletesTheHostsMapsAndPassesItsResultOn) {
  host.deleteMapsResult = 42;
  EXPECT_EQ(computer.CleanUp(), 42);
  EXPECT_EQ(host.callCount("zqDeleteNRVMPsOfCurrentVMR"), 1);
}

// A run as the plug-in has it, from the first call to the last.
TEST_F(HostStoreTest, AWholeRunCallsTheHostInOrder) {
  const fakes::VtcSpec spec = fakes::cellGrid(2, 2, 2, 40);
  std::vector<float> values(spec.nrOfVoxels() * 40);
  unsigned state = 12345;
  for (float& value : values) value = 1000.0F + static_cast<float>((state = state * 1664525U + 1U) >> 24);
  fakes::writeVtc(folder.file("a.vtc"), spec, values);
  const std::vector<std::int32_t> voxel = {0, 0, 0};
  pars.vtcXStart = pars.vtcYStart = pars.vtcZStart = 0;
  pars.vtcXEnd = pars.vtcYEnd = pars.vtcZEnd = 2;
  pars.vtcResolution = 1;
  pars.nSurrogateSims = 10;
  pars.mapTypes = {tav::REF2VOX};
  pars.vois = {{"seed", 0, 1, voxel.data(), 0}};
  pars.conds = {{"rest", {{folder.file("a.vtc"), folder.file("a.vtc"), {{1, 40}}}}}};
  host.calls.clear();
  ASSERT_EQ(computer.computeTAVs(pars, errors), tav::kSuccess) << errors.str();
  EXPECT_THAT(host.log, ElementsAre("// TAV>\n// TAV> Generating surrogate ref time-courses...",
                                    "// TAV>\n// TAV> VOI: <b>seed</b>",
                                    "// TAV>\n// TAV>\tCondition: <em>rest</em>", "// TAV>\t0%...",
                                    "// TAV>\t100%...", testing::StartsWith("// TAV>\tVoxels skipped: 0"),
                                    "// TAV>\n// TAV>\tComputing maps and thresholds... ",
                                    testing::StartsWith("// TAV>\n// TAV> Written data: "),
                                    testing::StartsWith("// TAV> Written  log: ")));
  std::erase(host.calls, "zqLogText");
  EXPECT_THAT(host.calls, ElementsAre("zqDeleteNRVMPsOfCurrentVMR", "zqCreateNRVMPsForCurrentVMR",
                                      "zqGetNRVMPsOfCurrentVMR", "zqGetNRVMPOfCurrentVMR",
                                      "zqSetNRVMPParametersOfCurrentVMR", "zqSaveNRVMPsOfCurrentVMR",
                                      "zqDeleteNRVMPsOfCurrentVMR"));
}

}  // namespace
