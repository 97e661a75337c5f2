#include "study/engine_request.h"

#include <gtest/gtest.h>

#include "tests/support/sample_plan.h"

namespace study {
namespace {

using Intervals = std::vector<std::pair<int, int>>;

class EngineRequest : public ::testing::Test {
 protected:
  tav::TAV_Pars make() const {
    return engineRequest(plan_.request.settings, plan_.order, plan_.runs, plan_.conditions,
                         {&plan_.regions[1], &plan_.regions[0]}, "/out/sub-01");
  }
  static Intervals intervalsOf(const tav::TAV_VTC_intv_set& set) {
    Intervals list;
    for (const auto& interval : set.intervals) list.emplace_back(interval.first, interval.last);
    return list;
  }
  StudyPlan plan_ = sample_plan::plan();
};

TEST_F(EngineRequest, SettingsArriveEachInItsField) {
  plan_.request.settings.mapTypes = {tav::VOX2REF, tav::DTAV_IT};
  plan_.request.settings.cvConstant = 1;
  const tav::TAV_Pars pars = make();
  EXPECT_EQ(pars.arOrder, 4);  // the one in use
  EXPECT_EQ(pars.cvConstant, 1);
  EXPECT_EQ(pars.nSurrogateSims, 1001);
  EXPECT_EQ(pars.nDiscardedSimTps, 101);
  EXPECT_EQ(pars.firstTpInclThres, 103);
  EXPECT_FLOAT_EQ(pars.instLowerThres, 0.055F);
  EXPECT_FLOAT_EQ(pars.rcUpperThres, 0.77F);
  EXPECT_FLOAT_EQ(pars.mapScaleFactor, 104.5F);
  EXPECT_EQ(pars.mapTypes, (std::set<tav::MapType>{tav::VOX2REF, tav::DTAV_IT}));
  ASSERT_EQ(pars.qThresholds.size(), 2U);
  EXPECT_FLOAT_EQ(pars.qThresholds[0], 0.011F);
  EXPECT_FLOAT_EQ(pars.qThresholds[1], 0.033F);
  EXPECT_EQ(pars.resultPathPrefix, "/out/sub-01");
}

TEST_F(EngineRequest, APairTakesTheReferenceFromItsSource) {
  const tav::TAV_Pars pars = make();
  ASSERT_EQ(pars.conds.size(), 2U);
  EXPECT_EQ(pars.conds[0].name, "faces");
  ASSERT_EQ(pars.conds[0].vtcIntvSets.size(), 2U);
  EXPECT_EQ(pars.conds[0].vtcIntvSets[0].srcVtcName, "b.vtc");
  EXPECT_EQ(pars.conds[0].vtcIntvSets[0].trgVtcName, "a.vtc");
  EXPECT_EQ(pars.conds[0].vtcIntvSets[1].srcVtcName, "c.vtc");
  EXPECT_EQ(pars.conds[0].vtcIntvSets[1].trgVtcName, "c.vtc");
  EXPECT_TRUE(pars.separateSrcTrgVtcs);
  plan_.conditions.erase(plan_.conditions.begin());
  EXPECT_FALSE(make().separateSrcTrgVtcs);
}

// The engine counts the volumes of the prepared run: those dropped are not in it.
TEST_F(EngineRequest, VolumesAreCountedFromTheFirstThatIsNotDropped) {
  const tav::TAV_Pars pars = make();
  EXPECT_EQ(intervalsOf(pars.conds[0].vtcIntvSets[0]), (Intervals{{17, 36}, {47, 82}}));  // 6 dropped
  EXPECT_EQ(intervalsOf(pars.conds[0].vtcIntvSets[1]), (Intervals{{81, 150}}));           // 10
  EXPECT_EQ(intervalsOf(pars.conds[1].vtcIntvSets[0]), (Intervals{{7, 116}}));            // 17
  EXPECT_EQ(pars.vtcMaxNrOfVolumes, 186 - 17);
  std::swap(plan_.runs[1], plan_.runs[3]);
  EXPECT_EQ(make().vtcMaxNrOfVolumes, 186 - 17);  // wherever the longest run stands
}

TEST_F(EngineRequest, TheGridIsTakenAsStored) {
  const tav::TAV_Pars pars = make();
  EXPECT_EQ(pars.vtcXEnd, 61);
  EXPECT_EQ(pars.vtcYEnd, 73);
  EXPECT_EQ(pars.vtcZEnd, 67);
  EXPECT_EQ(pars.vtcXStart + pars.vtcYStart + pars.vtcZStart, 0);
  EXPECT_EQ(pars.vtcResolution, 1);
}

TEST_F(EngineRequest, RegionsComeInTheOrderAskedFor) {
  const tav::TAV_Pars pars = make();
  ASSERT_EQ(pars.vois.size(), 2U);
  EXPECT_EQ(pars.vois[0].name, "V2");
  EXPECT_EQ(pars.vois[0].nVoxels, 1);
  EXPECT_EQ(pars.vois[1].name, "V1");
  EXPECT_EQ(pars.vois[1].nVoxels, 2);
  EXPECT_EQ(pars.vois[1].voiIndex, 1);
  EXPECT_EQ(pars.vois[1].voxels, plan_.regions[0].coordinates.data());
}

// Two volumes dropped, two gaps behind them.
RunPlan censoredRun() {
  RunPlan run;
  run.vtcName = "a.vtc";
  run.volumes.volumes = 10;
  run.volumes.dropped = 2;
  run.kept = {false, false, true, true, false, true, true, true, false, true};
  return run;
}

TEST(CourseTreatments, ModelsOfACourseRestOnTheVolumesThatAreKept) {
  const tav::CourseTreatment treatment = courseTreatments({censoredRun()}).at("a.vtc");
  std::vector<std::pair<int, int>> known;
  for (const simo::Stretch& stretch : treatment.known) known.emplace_back(stretch.first, stretch.end);
  EXPECT_EQ(known, (std::vector<std::pair<int, int>>{{0, 2}, {3, 6}, {7, 8}}));
}

TEST(CourseTreatments, SurrogatesGoThroughWhatTheVoxelsWentThrough) {
  RunPlan run = censoredRun();
  std::vector<float> course = {0, 2, 100, 6, 8, 10, -50, 14};
  courseTreatments({run}).at("a.vtc").apply(course.data());
  EXPECT_EQ(course, (std::vector<float>{0, 2, 4, 6, 8, 10, 12, 14}));
  run.confounds = {{1, -1, 1, 2, -3, 1, 7, 0}};
  for (std::size_t v = 0; v < course.size(); ++v) course[v] = 5 + 3 * static_cast<float>(run.confounds[0][v]);
  courseTreatments({run}).at("a.vtc").apply(course.data());
  for (const float value : course) EXPECT_NEAR(value, 5, 1e-5);
}

TEST(CourseTreatments, NothingIsDoneToARunThatIsTakenAsItIs) {
  RunPlan run = censoredRun();
  run.volumes.dropped = 0;
  run.kept.assign(10, true);
  const tav::CourseTreatment treatment = courseTreatments({run}).at("a.vtc");
  EXPECT_FALSE(treatment.apply);
  ASSERT_EQ(treatment.known.size(), 1U);
  EXPECT_EQ(treatment.known[0].end, 10);
}

TEST(EngineOptions, MethodPluginAsksForNothingBeyondTheRecord) {
  Settings settings;
  settings.nullDraws = 22;
  settings.fdrConstant = 1.75;
  settings.fweDraws = 321;
  const tav::RunOptions calibrated = engineOptions(settings);
  EXPECT_EQ(calibrated.fitForm, tav::FitForm::kLeastSquares);
  EXPECT_EQ(calibrated.surrogateKind, tav::SurrogateKind::kOwnResiduals);
  EXPECT_EQ(calibrated.nullDraws, 22);
  EXPECT_EQ(calibrated.thresholdRule, tav::ThresholdRule::kStepUp);
  EXPECT_TRUE(calibrated.searchOutsideReference);
  EXPECT_EQ(calibrated.fdrConstant, 1.75);
  EXPECT_EQ(calibrated.fweDraws, 321);
  settings.method = Method::kPlugin;
  const tav::RunOptions plugin = engineOptions(settings), none;
  EXPECT_EQ(plugin.fitForm, none.fitForm);
  EXPECT_EQ(plugin.surrogateKind, none.surrogateKind);
  EXPECT_EQ(plugin.nullDraws, none.nullDraws);
  EXPECT_EQ(plugin.thresholdRule, none.thresholdRule);
  EXPECT_EQ(plugin.fdrConstant, none.fdrConstant);
  EXPECT_EQ(plugin.fweDraws, none.fweDraws);
  EXPECT_EQ(plugin.searchOutsideReference, none.searchOutsideReference);
}

}  // namespace
}  // namespace study
