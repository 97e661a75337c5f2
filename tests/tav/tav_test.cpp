// Whole runs: order of the steps, texts, failures, several references and conditions.
#include "tav/tav.h"

#include <limits>

#include "tests/tav/run_fixture.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

class WholeRun : public RunTest {
 protected:
  int run(const tav::TAV_Pars& pars, const tav::RunOptions& options = {},
          tav::RunObserver* observer = nullptr) {
    tav::Computer computer(options, observer == nullptr ? &listener : observer, &store);
    return computer.computeTAVs(pars, errors);
  }
  [[nodiscard]] bool hasLog(const std::string& voi) const {
    return store.logs.contains(folder.file("maps_" + voi + ".log"));
  }

  fakes::VtcSpec spec = fakes::cellGrid(2, 2, 3, 40);
};

// Keeps what it is told.
class Recorder : public Listener {
 public:
  void onReferences(const std::vector<std::unique_ptr<tav::VoiTc>>& voiTcs) override {
    nrOfReferences = voiTcs.size();
  }
  void onCondition(const tav::ConditionOutcome& outcome) override {
    outcomes.push_back(outcome);
    firstValues.push_back(outcome.maps.empty() ? 0.0F : outcome.maps[0].values[1]);
  }
  void onVoi(const tav::TAV_VOI_Pars& voi) override { vois.push_back(voi.name); }

  std::size_t nrOfReferences = 0;
  std::vector<tav::ConditionOutcome> outcomes;
  std::vector<float> firstValues;
  std::vector<std::string> vois;
};

}  // namespace

TEST_F(WholeRun, CallsTheStoreInOrder) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.mapTypes = {tav::REF2VOX};
  ASSERT_EQ(run(pars), tav::kSuccess) << errors.str();
  EXPECT_THAT(store.calls,
              ElementsAre("discard", "create", "values", "describe", "saveMaps", "saveLog", "discard"));
  EXPECT_EQ(errors.str(), "");
}

TEST_F(WholeRun, SavesEveryMapOfAReference) {
  tav::TAV_Pars pars = simpleRequest(spec);
  addCondition(pars, "second", folder.file("noise.vtc"), {{1, 20}});
  ASSERT_EQ(run(pars), tav::kSuccess);
  ASSERT_EQ(store.saved.size(), 1U);
  EXPECT_EQ(store.saved[0].path, folder.file("maps_seed.tav"));
  ASSERT_EQ(store.saved[0].maps.size(), 12U);
  EXPECT_EQ(store.saved[0].maps[11].header.name, "second: dTAV RC");
}

TEST_F(WholeRun, FindsADrivenVoxelAndItsDirection) {
  spec.nrOfVolumes = 400;
  const tav::TAV_Pars pars = simpleRequest(spec);
  ASSERT_EQ(run(pars), tav::kSuccess);
  const auto& maps = store.saved[0].maps;
  EXPECT_GT(maps[tav::REF2VOX].values[1], 10.0F) << "x = 0 drives x = 1";
  EXPECT_LT(maps[tav::VOX2REF].values[1], 3.0F);
  EXPECT_GT(maps[tav::DTAV].values[1], 10.0F);
}

TEST_F(WholeRun, TheLogHoldsSettingsThenReferenceThenConditions) {
  const tav::TAV_Pars pars = simpleRequest(spec);
  ASSERT_EQ(run(pars), tav::kSuccess);
  std::ostringstream parameters;
  tav::Computer{}.logGlobalParameters(pars, parameters);
  EXPECT_EQ(savedLog("seed"), parameters.str() +
                                  "VOI: seed\n*********\n"
                                  "\n\tCondition: rest\n\t---------------\n"
                                  "\tVTC: " +
                                  folder.file("noise.vtc") +
                                  "\n\tintv(s):\n\t\t1\t-\t40\n"
                                  "\n\tTotal nr. time-points: 40\n\n\tEffective nr. time-points: 39\n"
                                  "\n\tVoxels skipped: 0\t(0%)\n\tVoxels ill-defined: 0\t(0%)\n\tSurrogates "
                                  "ill-defined: 0\t(0%)\n");
}

TEST_F(WholeRun, ShowsItsProgress) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.showVerboseProgress = true;
  ASSERT_EQ(run(pars), tav::kSuccess);
  EXPECT_THAT(
      listener.lines,
      ElementsAre("// TAV>\n// TAV> Generating surrogate ref time-courses...",
                  "// TAV>\n// TAV> VOI: <b>seed</b>", "// TAV>\n// TAV>\tCondition: <em>rest</em>",
                  "// TAV>\t0%...", "// TAV>\t50%...", "// TAV>\t100%...",
                  StartsWith("// TAV>\tVoxels skipped: 0"),
                  "// TAV>\n// TAV>\tComputing maps and thresholds... ",
                  StartsWith("// TAV>\n// TAV> Written data: "), StartsWith("// TAV> Written  log: ")));
}

TEST_F(WholeRun, WithoutProgressOnlyWrittenFilesAreLogged) {
  ASSERT_EQ(run(simpleRequest(spec)), tav::kSuccess);
  EXPECT_EQ(listener.lines.size(), 2U);
  EXPECT_TRUE(hasLog("seed"));
}

TEST_F(WholeRun, CutsTheReferenceLineAt127Characters) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.showVerboseProgress = true;
  pars.vois[0].name = std::string(200, 'v');
  ASSERT_EQ(run(pars), tav::kSuccess);
  EXPECT_EQ(listener.lines[1], ("// TAV>\n// TAV> VOI: <b>" + std::string(200, 'v')).substr(0, 127));
}

TEST_F(WholeRun, EachReferenceHasALogOfItsOwn) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.vois.push_back(pars.vois[0]);
  pars.vois.back().name = "other";
  ASSERT_EQ(run(pars), tav::kSuccess);
  EXPECT_THAT(savedLog("seed"), Not(HasSubstr("other")));
  EXPECT_THAT(savedLog("other"), Not(HasSubstr("seed")));
  EXPECT_THAT(savedLog("other"), StartsWith("Created by TAV-plugin version 1.5\n"));
  EXPECT_EQ(store.saved.size(), 2U);
}

TEST_F(WholeRun, AFailureInTheSecondConditionWritesNothing) {
  tav::TAV_Pars pars = simpleRequest(spec);
  addCondition(pars, "bad", folder.file("noise.vtc"), {{1, 41}});
  EXPECT_EQ(run(pars), tav::kInvalidParameters);
  EXPECT_THAT(store.saved, IsEmpty());
  EXPECT_FALSE(hasLog("seed"));
  EXPECT_EQ(store.callCount("discard"), 2U) << "before the set is made, and once at the end";
}

TEST_F(WholeRun, AFailedInitCleansUpOnce) {
  tav::TAV_Pars pars = requestOn(spec);
  addCondition(pars, "gone", folder.file("gone.vtc"), {{1, 5}});
  EXPECT_EQ(run(pars), tav::kTerminalError);
  EXPECT_THAT(store.calls, ElementsAre("discard"));
}

TEST_F(WholeRun, WithoutReferencesSucceeds) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.vois.clear();
  EXPECT_EQ(run(pars), tav::kSuccess);
  EXPECT_THAT(store.saved, IsEmpty());
}

TEST_F(WholeRun, WithoutConditionsIsInvalid) {
  EXPECT_EQ(run(requestOn(spec)), tav::kInvalidParameters);
  EXPECT_THAT(errors.str(), StartsWith("An invalid number of maps have to be computed: 0"));
}

TEST_F(WholeRun, HoldsNothingOnceItReturns) {
  const tav::TAV_Pars pars = simpleRequest(spec);
  tav::Computer computer;
  ASSERT_EQ(computer.computeTAVs(pars, errors), tav::kSuccess);
  EXPECT_TRUE(computer.vtcFiles.empty());
  EXPECT_EQ(computer.rawMaps1, nullptr);
}

TEST_F(WholeRun, TellsItsObserverWhatHappened) {
  tav::TAV_Pars pars = simpleRequest(spec);
  pars.qThresholds = {0.1F, 0.01F};
  addCondition(pars, "part", folder.file("noise.vtc"), {{1, 10}, {21, 30}});
  Recorder recorder;
  ASSERT_EQ(run(pars, {}, &recorder), tav::kSuccess);
  EXPECT_EQ(recorder.nrOfReferences, 1U);
  EXPECT_THAT(recorder.vois, ElementsAre("seed"));
  ASSERT_EQ(recorder.outcomes.size(), 2U);
  const tav::ConditionOutcome& outcome = recorder.outcomes[1];
  EXPECT_EQ(outcome.condIndex, 1);
  EXPECT_EQ(outcome.voi, &pars.vois[0]);
  EXPECT_EQ(outcome.cond, &pars.conds[1]);
  EXPECT_EQ(outcome.totalTimePoints, 20U);
  EXPECT_EQ(outcome.effectiveTimePoints, 18U);
  EXPECT_EQ(outcome.status.size(), 12U);
  ASSERT_EQ(outcome.maps.size(), 6U);
  EXPECT_EQ(outcome.maps[2].type, tav::INST);
  ASSERT_EQ(outcome.maps[0].thresholds.size(), 2U);
  EXPECT_EQ(outcome.maps[0].thresholds[0].q, 0.01F) << "by ascending q";
  EXPECT_THAT(outcome.maps[5].thresholds, IsEmpty());
  const auto& saved = store.saved[0].maps;
  EXPECT_EQ(recorder.firstValues[1], saved[6].values[1]);
  EXPECT_EQ(outcome.maps[0].thresholds[0].threshold, saved[6].header.thresholds[0]);
}

TEST_F(WholeRun, TellsItsObserverTheStatusOfEveryVoxel) {
  spec = fakes::cellGrid(4, 1, 2, 40);
  spec.dataType = 2;
  Noise noise(6);
  tav::TAV_Pars pars = requestOn(spec);
  addCondition(pars, "c",
               writeVtc("v.vtc", spec,
                        [&](int x, int, int z, int t) {
                          const float value = 1000.0F + 50.0F * noise();
                          if (x == 1) return 100.0F;
                          if (x == 2) return 500.0F;
                          return x == 3 && z == 1 && t == 9 ? std::numeric_limits<float>::infinity() : value;
                        }),
               {{1, 40}});
  Recorder recorder;
  ASSERT_EQ(run(pars, {}, &recorder), tav::kSuccess);
  using enum tav::VoxelStatus;
  EXPECT_THAT(recorder.outcomes[0].status, ElementsAre(kComputed, kBelowInclusion, kIllDefined, kComputed,
                                                       kComputed, kBelowInclusion, kIllDefined, kNotFinite));
  EXPECT_EQ(recorder.outcomes[0].counts.skipped, 2);
  EXPECT_EQ(recorder.outcomes[0].counts.illDefined, 2);
}

TEST_F(WholeRun, RunOptionsAreNotedInTheLog) {
  tav::RunOptions options;
  options.nullDraws = 2;
  ASSERT_EQ(run(simpleRequest(spec), options), tav::kSuccess);
  EXPECT_THAT(savedLog("seed"), HasSubstr("NullDrawsPerVoxel= 2\n"));
}

TEST_F(WholeRun, LeastSquaresDifferFromTheWrittenForm) {
  tav::RunOptions leastSquares;
  leastSquares.fitForm = tav::FitForm::kLeastSquares;
  tav::TAV_Pars pars = simpleRequest(spec);
  for (const int order : {1, 2}) {
    pars.arOrder = order;
    store.saved.clear();
    ASSERT_EQ(run(pars), tav::kSuccess);
    ASSERT_EQ(run(pars, leastSquares), tav::kSuccess);
    EXPECT_NE(store.saved[0].maps[0].values, store.saved[1].maps[0].values);
  }
}
