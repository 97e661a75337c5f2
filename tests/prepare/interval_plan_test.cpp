#include "prepare/interval_plan.h"

#include <gtest/gtest.h>

#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

using Ranges = std::vector<VolumeRange>;

RunVolumes makeRun(const std::string& name, int volumes = 100) {
  RunVolumes run;
  run.name = name;
  run.volumes = volumes;
  run.trSeconds = 2;
  run.kept = {{1, volumes}};
  return run;
}

ConditionRequest makeCondition(IntervalKind kind, const std::vector<std::string>& runs = {"a"}) {
  ConditionRequest condition;
  condition.name = "c";
  condition.kind = kind;
  for (const std::string& run : runs) condition.parts.push_back({run, run, {}});
  return condition;
}

TEST(IntervalPlan, WholeRunsLoseDroppedAndCensoredVolumes) {
  RunVolumes run = makeRun("a");
  run.dropped = 4;
  run.kept = {{5, 40}, {44, 46}, {50, 100}};
  const PlannedCondition plan = planCondition(makeCondition(IntervalKind::kWholeRun), {run}, 1, "r.toml");
  ASSERT_EQ(plan.sets.size(), 1U);
  EXPECT_EQ(plan.sets[0].ranges, (Ranges{{5, 40}, {50, 100}}));
  EXPECT_EQ(plan.totalVolumes, 87);
  EXPECT_EQ(plan.effectiveVolumes, 85);
  EXPECT_EQ(plan.notes, (std::vector<std::string>{
                            "condition 'c': run 'a': 10 of 100 volumes dropped or censored",
                            "condition 'c': run 'a': 1 of 3 intervals left out, shorter than 4 volumes"}));
}

TEST(IntervalPlan, SeveralRunsArePooledAsIntervals) {
  const PlannedCondition plan = planCondition(makeCondition(IntervalKind::kWholeRun, {"a", "b"}),
                                              {makeRun("a"), makeRun("b", 60)}, 2, "r");
  ASSERT_EQ(plan.sets.size(), 2U);
  EXPECT_EQ(plan.sets[1].ranges, (Ranges{{1, 60}}));
  EXPECT_EQ(plan.effectiveVolumes, 156);
}

TEST(IntervalPlan, ConfoundsCostEachRunItsOwnAndAPairTheGreater) {
  RunVolumes a = makeRun("a"), b = makeRun("b", 60);
  a.costPerVolume = 24.0 / 100, b.costPerVolume = 6.0 / 60;
  ConditionRequest condition = makeCondition(IntervalKind::kWholeRun, {"a", "b"});
  PlannedCondition plan = planCondition(condition, {a, b}, 2, "r");
  EXPECT_EQ(plan.sets[0].effectiveVolumes, 98 - 24);
  EXPECT_EQ(plan.sets[1].effectiveVolumes, 58 - 6);
  EXPECT_EQ(plan.effectiveVolumes, 126);
  condition.parts = {{"b", "a", {}}};
  plan = planCondition(condition, {a, b}, 2, "r");
  EXPECT_EQ(plan.effectiveVolumes, 58 - 15);  // 60 volumes at the cost of a
  EXPECT_EQ(plan.totalVolumes, 60);
}

TEST(IntervalPlan, TypedIntervalsAreTakenAsTheyAre) {
  ConditionRequest condition = makeCondition(IntervalKind::kTyped);
  condition.typed = {{20, 90}, {10, 13}};
  const PlannedCondition plan = planCondition(condition, {makeRun("a")}, 1, "r");
  EXPECT_EQ(plan.sets[0].ranges, condition.typed);
  EXPECT_TRUE(plan.notes.empty());
}

TEST(IntervalPlan, TypedIntervalsMustLieInTheRunAndHoldAModel) {
  ConditionRequest condition = makeCondition(IntervalKind::kTyped);
  condition.typed = {{10, 101}};
  EXPECT_EQ(messageOf<InputError>([&] { return planCondition(condition, {makeRun("a")}, 1, "r.toml"); }),
            "r.toml: condition 'c': interval 10 to 101 ends outside run 'a', which has 100 volumes");
  condition.typed = {{10, 100}};
  EXPECT_NO_THROW((void)planCondition(condition, {makeRun("a")}, 3, "r.toml"));
  condition.typed = {{10, 15}};
  EXPECT_NO_THROW((void)planCondition(condition, {makeRun("a")}, 3, "r.toml"));
  condition.typed = {{10, 14}};
  EXPECT_EQ(
      messageOf<InputError>([&] { return planCondition(condition, {makeRun("a")}, 3, "r.toml"); }),
      "r.toml: condition 'c': interval 10 to 14 is too short; a model of order 3 needs at least 6 volumes");
}

TEST(IntervalPlan, TypedIntervalsOfAPairMustLieInBothRuns) {
  ConditionRequest condition = makeCondition(IntervalKind::kTyped);
  condition.parts = {{"a", "b", {}}};
  condition.typed = {{10, 90}};
  EXPECT_EQ(messageOf<InputError>([&] {
              return planCondition(condition, {makeRun("a"), makeRun("b", 80)}, 1, "r.toml");
            }),
            "r.toml: condition 'c': interval 10 to 90 ends outside run 'b', which has 80 volumes");
}

TEST(IntervalPlan, TypedIntervalsThatOverlapAreRefused) {
  ConditionRequest condition = makeCondition(IntervalKind::kTyped);
  condition.typed = {{60, 90}, {10, 40}, {41, 60}};
  EXPECT_EQ(
      messageOf<InputError>([&] { return planCondition(condition, {makeRun("a")}, 1, "r.toml"); }),
      "r.toml: condition 'c': interval 41 to 60 and interval 60 to 90 overlap, and volumes of both would "
      "count twice; join them, or end the one before the other begins");
  condition.typed = {{61, 90}, {10, 40}, {41, 60}};
  EXPECT_EQ(planCondition(condition, {makeRun("a")}, 1, "r").totalVolumes, 81);
}

TEST(IntervalPlan, ARunThatIsNamedTwiceMustBringOtherVolumes) {
  ConditionRequest condition = makeCondition(IntervalKind::kWholeRun, {"a", "a"});
  EXPECT_EQ(messageOf<InputError>([&] { return planCondition(condition, {makeRun("a")}, 1, "r.toml"); }),
            "r.toml: condition 'c': run 'a' is named twice, and interval 1 to 100 would count twice; name it "
            "once");
  condition.kind = IntervalKind::kTyped;
  condition.parts[0].typed = {{1, 20}};
  condition.parts[1].typed = {{21, 40}};
  EXPECT_EQ(planCondition(condition, {makeRun("a")}, 1, "r").totalVolumes, 40);
  condition.parts[1].typed = {{20, 40}};
  EXPECT_THROW((void)planCondition(condition, {makeRun("a")}, 1, "r"), InputError);
}

TEST(IntervalPlan, EventsThatOverlapCountOnceAndAreNoted) {
  RunVolumes run = makeRun("a");
  run.events = {{20, 20, "face"}, {30, 20, "face"}, {60, 20, "house"}, {70, 4, "face"}};
  ConditionRequest condition = makeCondition(IntervalKind::kEvents);
  condition.trialTypes = {"face"};
  condition.minimumVolumes = 2;
  PlannedCondition plan = planCondition(condition, {run}, 1, "r");
  EXPECT_EQ(plan.sets[0].ranges, (Ranges{{11, 25}}));
  EXPECT_EQ(plan.notes[0],
            "condition 'c': run 'a': 1 event begins before another has ended; what they share counts once");
  condition.trialTypes = {"face", "house"};
  plan = planCondition(condition, {run}, 1, "r");
  EXPECT_EQ(plan.totalVolumes, 25);
  EXPECT_EQ(plan.notes[0],
            "condition 'c': run 'a': 2 events begin before another has ended; what they share counts once");
}

TEST(IntervalPlan, EventsOutsideTheRunAreNamed) {
  RunVolumes run = makeRun("a");  // 200 s
  run.events = {{20, 20, "face"}, {210, 20, "face"}, {199.5, 1, "face"}};
  for (int i = 0; i < 5; ++i) run.events.push_back({300.0 + 10 * i, 1, "face"});
  ConditionRequest condition = makeCondition(IntervalKind::kEvents);
  condition.trialTypes = {"face"};
  EXPECT_EQ(planCondition(condition, {run}, 1, "r").notes[0],
            "condition 'c': run 'a': 7 events before the first or after the last volume are left out: 'face' "
            "at 199.5 s, 'face' at 210 s, 'face' at 300 s, 'face' at 310 s, 'face' at 320 s ...");
  run.events = {{20, 20, "face"}, {190, 8, "face"}};
  EXPECT_TRUE(planCondition(condition, {run}, 1, "r").notes.empty());
  condition.delaySeconds = 12;
  EXPECT_EQ(
      planCondition(condition, {run}, 1, "r").notes[0],
      "condition 'c': run 'a': 1 event before the first or after the last volume is left out: 'face' at "
      "190 s");
}

TEST(IntervalPlan, EventsBecomeBlocksJoinedWithinOneTr) {
  RunVolumes run = makeRun("a");
  for (int i = 0; i < 20; ++i) run.events.push_back({20.0 + i, 0.9, "face"});
  run.events.push_back({100, 3, "house"});
  ConditionRequest condition = makeCondition(IntervalKind::kEvents);
  condition.trialTypes = {"face"};
  condition.delaySeconds = 4;
  const PlannedCondition plan = planCondition(condition, {run}, 1, "r");
  EXPECT_EQ(plan.sets[0].ranges, (Ranges{{13, 22}}));
}

TEST(IntervalPlan, TheRequestsOwnGapJoinsBlocks) {
  RunVolumes run = makeRun("a");
  run.events = {{20, 10, "face"}, {38, 10, "face"}, {60, 10, "face"}};
  ConditionRequest condition = makeCondition(IntervalKind::kEvents);
  condition.trialTypes = {"face"};
  EXPECT_EQ(planCondition(condition, {run}, 1, "r").sets[0].ranges, (Ranges{{11, 15}, {20, 24}, {31, 35}}));
  condition.joinGapSeconds = 9;
  EXPECT_EQ(planCondition(condition, {run}, 1, "r").sets[0].ranges, (Ranges{{11, 24}, {31, 35}}));
  condition.joinGapSeconds = 0;
  run.events[1].onsetSeconds = 31;
  EXPECT_EQ(planCondition(condition, {run}, 1, "r").sets[0].ranges.size(), 3U);
}

TEST(IntervalPlan, TheRequestsLeastVolumesLeaveOutShorterPieces) {
  RunVolumes run = makeRun("a");
  run.kept = {{1, 9}, {11, 20}, {22, 100}};
  ConditionRequest condition = makeCondition(IntervalKind::kWholeRun);
  condition.minimumVolumes = 10;
  EXPECT_EQ(planCondition(condition, {run}, 1, "r").sets[0].ranges, (Ranges{{11, 20}, {22, 100}}));
  condition.kind = IntervalKind::kTyped;
  condition.typed = {{11, 19}, {30, 39}};
  EXPECT_EQ(planCondition(condition, {run}, 1, "r").sets[0].ranges, (Ranges{{30, 39}}));
}

TEST(IntervalPlan, AModelOfOrderPNeedsPPlus3Volumes) {
  RunVolumes run = makeRun("a");
  run.kept = {{1, 4}, {6, 10}, {12, 17}};
  const auto condition = makeCondition(IntervalKind::kWholeRun);
  EXPECT_EQ(planCondition(condition, {run}, 1, "r").sets[0].ranges, (Ranges{{1, 4}, {6, 10}, {12, 17}}));
  EXPECT_EQ(planCondition(condition, {run}, 3, "r").sets[0].ranges, (Ranges{{12, 17}}));
}

TEST(IntervalPlan, IntervalsOfAPartComeBeforeThoseOfTheCondition) {
  ConditionRequest condition = makeCondition(IntervalKind::kTyped, {"a", "b"});
  condition.typed = {{10, 40}};
  condition.parts[1].typed = {{51, 90}};
  const PlannedCondition plan = planCondition(condition, {makeRun("a"), makeRun("b")}, 1, "r");
  EXPECT_EQ(plan.sets[0].ranges, (Ranges{{10, 40}}));
  EXPECT_EQ(plan.sets[1].ranges, (Ranges{{51, 90}}));
}

TEST(IntervalPlan, UnknownTrialTypesNameTheNearest) {
  RunVolumes run = makeRun("a");
  run.events = {{0, 50, "face"}, {60, 50, "house"}};
  ConditionRequest condition = makeCondition(IntervalKind::kEvents);
  condition.trialTypes = {"fase"};
  EXPECT_EQ(messageOf<InputError>([&] { return planCondition(condition, {run}, 1, "r.toml"); }),
            "r.toml: condition 'c': no event of trial_type 'fase'; did you mean 'face'?");
}

TEST(IntervalPlan, PairsUseVolumesThatBothRunsHave) {
  ConditionRequest condition = makeCondition(IntervalKind::kWholeRun);
  condition.parts = {{"a", "b", {}}};
  RunVolumes target = makeRun("b", 80);
  target.kept = {{11, 80}};
  const PlannedCondition plan = planCondition(condition, {makeRun("a"), target}, 1, "r");
  EXPECT_EQ(plan.sets[0].ranges, (Ranges{{11, 80}}));
  RunVolumes source = makeRun("a");
  source.kept = {{1, 40}, {51, 100}};
  EXPECT_EQ(planCondition(condition, {source, target}, 1, "r").sets[0].ranges, (Ranges{{11, 40}, {51, 80}}));
  EXPECT_EQ(plan.sets[0].source, "a");
  EXPECT_EQ(plan.sets[0].target, "b");
}

TEST(IntervalPlan, NothingLeftIsAnErrorThatSaysWhy) {
  RunVolumes run = makeRun("a", 20);
  run.kept = {{1, 3}};
  EXPECT_EQ(messageOf<InputError>(
                [&] { return planCondition(makeCondition(IntervalKind::kWholeRun), {run}, 1, "r.toml"); }),
            "r.toml: condition 'c': no interval of at least 4 volumes is left (condition 'c': run 'a': 17 of "
            "20 volumes "
            "dropped or censored) (condition 'c': run 'a': 1 of 1 intervals left out, shorter than 4 "
            "volumes); censor "
            "less, ask for shorter intervals or a lower order, or leave the condition out");
}

}  // namespace
}  // namespace study
