// Pairs of runs that drop differently many volumes: the engine has one numbering for both.
#include <gtest/gtest.h>

#include "study/engine_request.h"
#include "study/study_plan.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"

namespace study {
namespace {

class PairPlan : public ::testing::Test {
 protected:
  PairPlan() {
    small_study::writeTo(scratch_.folder());
    request_.title = "r.toml";
    request_.output = {scratch_.folder() / "out", scratch_.folder() / "work", "p"};
    for (const char* number : {"1", "2"}) {
      RunRequest& run = request_.runs.emplace_back();
      run.name = std::string("run") + number;
      run.bold = scratch_.file(std::string("bold") + number + ".nii.gz");
      run.mask = scratch_.file("mask.nii.gz");
    }
    request_.runs[0].dropVolumes = 2;
    request_.runs[1].dropVolumes = 5;
    ReferenceRequest& reference = request_.references.emplace_back();
    reference.kind = ReferenceKind::kVoxels;
    reference.name = "A";
    reference.voxels = {{2, 3, 3}};
    ConditionRequest& condition = request_.conditions.emplace_back();
    condition.name = "c";
    condition.kind = IntervalKind::kTyped;
    condition.typed = {{1, 50}, {61, 160}};
  }
  tav::TAV_Cond_Pars engineCondition() const {
    const StudyPlan plan = planStudy(request_, 1, "1");
    return engineRequest(plan.request.settings, 1, plan.runs, plan.conditions, {&plan.regions[0]}, "x")
        .conds[0];
  }
  static std::vector<std::pair<int, int>> intervalsOf(const tav::TAV_VTC_intv_set& set) {
    std::vector<std::pair<int, int>> intervals;
    for (const tav::TAV_intv& interval : set.intervals) intervals.emplace_back(interval.first, interval.last);
    return intervals;
  }
  using Intervals = std::vector<std::pair<int, int>>;

  Scratch scratch_;
  Request request_;
};

TEST_F(PairPlan, RunsOfAPairDropAsManyAsTheOneThatDropsMost) {
  request_.conditions[0].parts = {{"run1", "run2", {}}};
  const StudyPlan plan = planStudy(request_, 1, "1");
  EXPECT_EQ(plan.runs[0].volumes.dropped, 5);
  EXPECT_EQ(plan.runs[1].volumes.dropped, 5);
  EXPECT_EQ(intervalsOf(engineCondition().vtcIntvSets[0]), (Intervals{{1, 45}, {56, 155}}));
  request_.runs[0].dropVolumes = 7;
  EXPECT_EQ(planStudy(request_, 1, "1").runs[0].volumes.dropped, 7);
  EXPECT_EQ(planStudy(request_, 1, "1").runs[1].volumes.dropped, 7);
}

TEST_F(PairPlan, WithoutPairsEachRunDropsItsOwn) {
  request_.conditions[0].parts = {{"run1", "run1", {}}, {"run2", "run2", {}}};
  const tav::TAV_Cond_Pars condition = engineCondition();
  EXPECT_EQ(intervalsOf(condition.vtcIntvSets[0]), (Intervals{{1, 48}, {59, 158}}));
  EXPECT_EQ(intervalsOf(condition.vtcIntvSets[1]), (Intervals{{1, 45}, {56, 155}}));
}

TEST_F(PairPlan, TheReferenceComesFromTheFirstRunOfAPair) {
  request_.conditions[0].parts = {{"run1", "run2", {}}};
  const StudyPlan plan = planStudy(request_, 1, "1");
  const tav::TAV_VTC_intv_set set = engineCondition().vtcIntvSets[0];
  EXPECT_EQ(set.srcVtcName, plan.runs[0].vtcName);
  EXPECT_EQ(set.trgVtcName, plan.runs[1].vtcName);
}

}  // namespace
}  // namespace study
