#include "tav/result_maps.h"

#include "tests/tav/run_fixture.h"

using ::testing::ElementsAre;

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
  tav::Computer computer{{}, &listener, &store};
};

}  // namespace

TEST_F(ResultMaps, ReplaceTheStoresMapSet) {
  ASSERT_EQ(create(), tav::kSuccess);
  EXPECT_THAT(store.calls, ElementsAre("discard", "create"));
  EXPECT_EQ(store.shape().nrOfMaps, 12);
  EXPECT_EQ(store.shape().thresholdNames.size(), 3U);
  const tav::MapBox& box = store.shape().box;
  EXPECT_EQ(box.xStart, 57);
  EXPECT_EQ(box.xEnd, 66);
  EXPECT_EQ(box.yStart, 52);
  EXPECT_EQ(box.yEnd, 61);
  EXPECT_EQ(box.zStart, 59);
  EXPECT_EQ(box.zEnd, 68);
  EXPECT_EQ(box.resolution, 3);
}

TEST_F(ResultMaps, ThresholdNamesKeepTheOrderOfTheSettings) {
  pars.qThresholds = {0.05F, 0.01F, 0.0005F};
  ASSERT_EQ(create(), tav::kSuccess);
  ASSERT_EQ(save(""), tav::kSuccess);
  EXPECT_THAT(store.saved[0].shape.thresholdNames,
              ElementsAre("thres q=0.050", "thres q=0.010", "thres q=0.001"));
}

TEST_F(ResultMaps, NeedAtLeastOneMap) {
  pars.mapTypes.clear();
  EXPECT_EQ(create(), tav::kInvalidParameters);
  EXPECT_EQ(
      errors.str(),
      "An invalid number of maps have to be computed: 0Number of conditions, and/or number of map types were "
      "possibly invalid");
  EXPECT_EQ(store.callCount("create"), 0U);
}

TEST_F(ResultMaps, PassOnWhyTheStoreCannotCreateThem) {
  store.failCreate = true;
  EXPECT_EQ(create(), tav::kTerminalError);
  EXPECT_EQ(errors.str(), "there is no room");
}

TEST_F(ResultMaps, AreSavedWithTheirLogBesideThem) {
  pars.vois[0].name = "left V5";
  ASSERT_EQ(create(), tav::kSuccess);
  ASSERT_EQ(save("the log\n"), tav::kSuccess);
  const std::string base = folder.file("maps_left V5");
  EXPECT_EQ(store.saved[0].path, base + ".tav");
  EXPECT_EQ(savedLog("left V5"), "the log\n");
  EXPECT_THAT(listener.lines, ElementsAre("// TAV>\n// TAV> Written data: " + base + ".tav",
                                          "// TAV> Written  log: " + base + ".log"));
}

TEST_F(ResultMaps, WarnOfALogThatCannotBeSaved) {
  store.logProblem = "the disk is full";
  ASSERT_EQ(create(), tav::kSuccess);
  EXPECT_EQ(save("x"), tav::kSuccess);
  EXPECT_EQ(listener.lines[1],
            "// TAV> WARNING: Could not write the log " + folder.file("maps_seed.log") +
                " (the disk is full). Check the folder and the free space, then repeat the run.");
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
  tav::warnOfEqualResultNames(pars, tav::RunLog(&listener));
  const std::string base = folder.file("maps_seed");
  EXPECT_THAT(listener.lines,
              ElementsAre("// TAV> WARNING: VOI 1 'seed' and VOI 5 'seed' share the result files " + base +
                          ".tav and .log and the time course of the first: the later results replace the "
                          "earlier ones. Rename one of the two."));
}

TEST_F(ResultMaps, WarnOfNamesThatDifferInSeparatorsOnly) {
  pars.vois[0].name = "a/b";
  pars.vois.push_back(pars.vois[0]);
  pars.vois.back().name = "a_b";
  pars.vois.back().voiIndex = 1;
  tav::warnOfEqualResultNames(pars, tav::RunLog(&listener));
  EXPECT_THAT(
      listener.lines,
      ElementsAre("// TAV> WARNING: VOI 1 'a/b' and VOI 2 'a_b' share the result files " +
                  folder.file("maps_a_b") +
                  ".tav and .log: the later results replace the earlier ones. Rename one of the two."));
}
