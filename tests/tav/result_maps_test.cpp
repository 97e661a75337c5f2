#include "tav/result_maps.h"

#include <filesystem>

#include "tests/tav/run_fixture.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

class ResultMaps : public RunTest {
 protected:
  ResultMaps() { pars.conds = {{"faces", {}}, {"houses", {}}}; }
  int create() { return computer.createVOIResultMAP(pars.vois[0], pars, errors); }
  int save(const std::string& text) {
    std::ostringstream log(text);
    return computer.saveVOIResultMAP(pars.vois[0], pars, log, errors);
  }

  tav::TAV_Pars pars = requestOn(fakes::VtcSpec{});
  tav::Computer computer;
};

}  // namespace

TEST_F(ResultMaps, ReplaceTheHostsMapSet) {
  ASSERT_EQ(create(), tav::kSuccess);
  EXPECT_THAT(host.calls, ElementsAre("zqDeleteNRVMPsOfCurrentVMR", "zqCreateNRVMPsForCurrentVMR",
                                      "zqGetNRVMPsOfCurrentVMR"));
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

TEST_F(ResultMaps, ThresholdNamesKeepTheOrderOfTheSettings) {
  pars.qThresholds = {0.05F, 0.01F, 0.0005F};
  ASSERT_EQ(create(), tav::kSuccess);
  ASSERT_EQ(save(""), tav::kSuccess);
  EXPECT_THAT(host.savedMaps[0].set.thresholdNames,
              ElementsAre("thres q=0.050", "thres q=0.010", "thres q=0.001"));
}

TEST_F(ResultMaps, NeedAtLeastOneMap) {
  pars.mapTypes.clear();
  EXPECT_EQ(create(), tav::kInvalidParameters);
  EXPECT_EQ(
      errors.str(),
      "An invalid number of maps have to be computed: 0Number of conditions, and/or number of map types were "
      "possibly invalid");
  EXPECT_EQ(host.callCount("zqCreateNRVMPsForCurrentVMR"), 0);
}

TEST_F(ResultMaps, ReportAHostThatCannotCreateThem) {
  host.failCreateMaps = true;
  EXPECT_EQ(create(), tav::kTerminalError);
  EXPECT_EQ(errors.str(), "Could not create an CMP map-structure to write TAV results");
}

TEST_F(ResultMaps, ReportAHostThatDoesNotHandThemOut) {
  host.failGetMapSet = true;
  EXPECT_EQ(create(), tav::kTerminalError);
  EXPECT_EQ(errors.str(), "Could not get access to created CMP map-structure for write TAV results");
}

TEST_F(ResultMaps, AreSavedWithTheirLogBesideThem) {
  pars.vois[0].name = "left V5";
  fakes::writeBytes(folder.file("maps_left V5.log"), "an old log that is longer than the new one");
  ASSERT_EQ(create(), tav::kSuccess);
  ASSERT_EQ(save("the log\n"), tav::kSuccess);
  const std::string base = folder.file("maps_left V5");
  EXPECT_EQ(host.savedMaps[0].path, base + ".tav");
  EXPECT_EQ(savedLog("left V5"), "the log\n");
  EXPECT_THAT(host.log, ElementsAre("// TAV>\n// TAV> Written data: " + base + ".tav",
                                    "// TAV> Written  log: " + base + ".log"));
}

TEST_F(ResultMaps, IgnoreTheHostsResultOfSaving) {
  host.saveMapsResult = 0;
  ASSERT_EQ(create(), tav::kSuccess);
  EXPECT_EQ(save("x"), tav::kSuccess);
  EXPECT_THAT(host.log[0], HasSubstr("Written data"));
}

TEST_F(ResultMaps, WarnOfALogThatCannotBeWritten) {
  pars.resultPathPrefix = folder.file("missing/maps");
  ASSERT_EQ(create(), tav::kSuccess);
  EXPECT_EQ(save("x"), tav::kSuccess);
  EXPECT_EQ(host.log[1],
            "// TAV> WARNING: Could not write the log " + folder.file("missing/maps_seed.log") +
                " (No such file or directory). Check the folder and the free space, then repeat the run.");
  EXPECT_EQ(errors.str(), "");
}

TEST_F(ResultMaps, PathSeparatorsInANameBecomeUnderscores) {
  pars.vois[0].name = "a/b\\c";
  EXPECT_EQ(tav::resultBaseName(pars, pars.vois[0]), folder.file("maps_a_b_c"));
}

TEST_F(ResultMaps, BaseNamesAreCutAt511Characters) {
  pars.vois[0].name = std::string(600, 'v');
  EXPECT_EQ(tav::resultBaseName(pars, pars.vois[0]).size(), 511U);
}

TEST_F(ResultMaps, WarnOfTwoReferencesOfOneName) {
  pars.vois.push_back(pars.vois[0]);
  pars.vois.back().voiIndex = 4;
  tav::warnOfEqualResultNames(pars);
  const std::string base = folder.file("maps_seed");
  EXPECT_THAT(host.log,
              ElementsAre("// TAV> WARNING: VOI 1 'seed' and VOI 5 'seed' share the result files " + base +
                          ".tav and .log and the time course of the first: the later results replace the "
                          "earlier ones. Rename one of the two."));
}

TEST_F(ResultMaps, WarnOfNamesThatDifferInSeparatorsOnly) {
  pars.vois[0].name = "a/b";
  pars.vois.push_back(pars.vois[0]);
  pars.vois.back().name = "a_b";
  pars.vois.back().voiIndex = 1;
  tav::warnOfEqualResultNames(pars);
  EXPECT_THAT(
      host.log,
      ElementsAre("// TAV> WARNING: VOI 1 'a/b' and VOI 2 'a_b' share the result files " +
                  folder.file("maps_a_b") +
                  ".tav and .log: the later results replace the earlier ones. Rename one of the two."));
}
