#include "study/study_plan.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "request/settings_table.h"
#include "tests/support/sample_plan.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

using Change = std::function<void(StudyPlan&)>;
using Changes = std::map<std::string, Change>;

Change setting(std::function<void(Settings&)> change) {
  return [change](StudyPlan& plan) { change(plan.request.settings); };
}

// One for every row of the table that is part of the key.
Changes settingChanges() {
  return {{"order", [](StudyPlan& p) { p.order = 5; }},
          {"choice", setting([](Settings& s) { s.orderChoice = OrderChoice::kAic; })},
          {"method", setting([](Settings& s) { s.method = Method::kPlugin; })},
          {"draws", setting([](Settings& s) { s.nullDraws = 23; })},
          {"cv", setting([](Settings& s) { s.method = Method::kPlugin, s.cvConstant = 1; })},
          {"fdr", setting([](Settings& s) { s.fdrConstant = 1.25; })},
          {"fwe", setting([](Settings& s) { s.fweDraws = 0; })},
          {"surrogates", setting([](Settings& s) { s.surrogates = 1002; })},
          {"discarded", setting([](Settings& s) { s.discardedTimePoints = 102; })},
          {"inclusion", setting([](Settings& s) { s.inclusionThreshold = 104; })},
          {"inst", setting([](Settings& s) { s.instantaneousLower = 0.056; })},
          {"rc", setting([](Settings& s) { s.rcUpper = 0.78; })},
          {"scale", setting([](Settings& s) { s.mapScale = 105; })},
          {"map", setting([](Settings& s) { s.mapTypes.erase(tav::INST); })},
          {"q", setting([](Settings& s) {
             s.qValues = {0.011, 0.044};
           })},
          {"highpass", setting([](Settings& s) { s.highPass = 113.5; })}};
}

Changes otherChanges() {
  return {{"version", [](StudyPlan& p) { p.version = "1.2.4"; }},
          {"seed", [](StudyPlan& p) { p.seed = 7002; }},
          {"prefix", [](StudyPlan& p) { p.request.output.prefix = "sub-02"; }},
          {"a q-value less", setting([](Settings& s) { s.qValues = {0.011}; })},
          {"run", [](StudyPlan& p) { p.runs[1].request.name = "e"; }},
          {"a run less", [](StudyPlan& p) { p.runs.pop_back(); }},
          {"prepared run", [](StudyPlan& p) { p.runs[1].vtcName = "other.vtc"; }},
          {"repetition time", [](StudyPlan& p) { p.runs[1].volumes.trSeconds = 1.76; }},
          {"events", [](StudyPlan& p) { p.runs[1].request.events = "/data/events.tsv"; }},
          {"condition", [](StudyPlan& p) { p.conditions[0].name = "bodies"; }},
          {"a condition less", [](StudyPlan& p) { p.conditions.pop_back(); }},
          {"source", [](StudyPlan& p) { p.conditions[0].sets[0].source = "c"; }},
          {"target", [](StudyPlan& p) { p.conditions[0].sets[0].target = "c"; }},
          {"first volume", [](StudyPlan& p) { p.conditions[0].sets[0].ranges[1].first = 54; }},
          {"last volume", [](StudyPlan& p) { p.conditions[0].sets[0].ranges[1].last = 89; }},
          {"an interval less", [](StudyPlan& p) { p.conditions[0].sets[0].ranges.pop_back(); }},
          {"name of the region", [](StudyPlan& p) { p.regions[0].name = "V3"; }},
          {"voxel of the region", [](StudyPlan& p) { p.regions[0].coordinates[4] = 8; }},
          {"a voxel less", [](StudyPlan& p) { p.regions[0].coordinates.resize(3); }},
          {"caution", [](StudyPlan& p) { p.cautions[0] = "smoothed"; }},
          {"note of the region", [](StudyPlan& p) { p.regions[0].notes = {"half outside"}; }}};
}

std::string keyAfter(const Change& change, std::size_t region = 0) {
  StudyPlan plan = sample_plan::plan();
  change(plan);
  return resultKey(plan, region);
}

TEST(ResultKey, EqualPlansHaveEqualKeys) {
  EXPECT_EQ(resultKey(sample_plan::plan(), 0), resultKey(sample_plan::plan(), 0));
  EXPECT_NE(resultKey(sample_plan::plan(), 0), resultKey(sample_plan::plan(), 1));
}

TEST(ResultKey, EveryChangeGivesAKeyOfItsOwn) {
  std::map<std::string, std::string> keys = {{resultKey(sample_plan::plan(), 0), "nothing"}};
  for (const Changes& changes : {settingChanges(), otherChanges()}) {
    for (const auto& [name, change] : changes) {
      const auto [place, isNew] = keys.emplace(keyAfter(change), name);
      EXPECT_TRUE(isNew) << name << " and " << place->second << " have the same key";
    }
  }
}

// A new row wants a change above.
TEST(ResultKey, EverySettingOfTheTableIsTried) {
  const Changes changes = settingChanges();
  std::size_t rows = 0;
  for (const Setting& row : settingsTable()) {
    if (row.resultKey.name == nullptr) continue;
    EXPECT_TRUE(changes.count(row.resultKey.name)) << row.name;
    ++rows;
  }
  EXPECT_EQ(changes.size(), rows);
}

// Results that were made before are kept only as long as this stays.
TEST(ResultKey, StaysWhatItWas) {
  EXPECT_EQ(resultKey(sample_plan::plan(), 0), "fb397e0afe34353195e4e640c1377179");
  EXPECT_EQ(keyAfter(setting([](Settings& s) { s.method = Method::kPlugin, s.cvConstant = 1; }), 1),
            "efc720d4678d1463179c85ca7f40afeb");
}

// What places are called stands in the tables of a result.
TEST(ResultKey, NamesOfPlacesMatter) {
  StudyPlan plan = sample_plan::plan();
  const auto keyWith = [&plan](const std::string& name) {
    LabelVolume volume;
    volume.labels = {0, 1};
    volume.names = {{1, name}};
    plan.places = std::make_shared<PlaceNames>(volume);
    return resultKey(plan, 0);
  };
  const std::string without = resultKey(plan, 0);
  EXPECT_NE(keyWith("V1"), without);
  EXPECT_NE(keyWith("V1"), keyWith("V2"));
  EXPECT_EQ(keyWith("V2"), keyWith("V2"));
}

TEST(ResultKey, HowAnOrderWasSearchedForIsNoMatter) {
  const std::string before = resultKey(sample_plan::plan(), 0);
  EXPECT_EQ(keyAfter(setting([](Settings& s) { s.maxOrder = 3; })), before);
  EXPECT_EQ(keyAfter(setting([](Settings& s) { s.orderSample = 7; })), before);
  EXPECT_EQ(keyAfter(setting([](Settings& s) { s.order = 9; })), before);  // not the one in use
}

// With method "plugin" the references share one sequence of random numbers.
TEST(ResultKey, OtherReferencesMatterOnlyWhereTheyComeBefore) {
  for (const Method method : {Method::kCalibrated, Method::kPlugin}) {
    StudyPlan plan = sample_plan::plan();
    plan.request.settings.method = method;
    const std::string first = resultKey(plan, 0), second = resultKey(plan, 1);
    StudyPlan otherSecond = plan, otherFirst = plan;
    otherSecond.regions[1].coordinates[0] = 2;
    otherFirst.regions[0].coordinates[0] = 2;
    EXPECT_EQ(resultKey(otherSecond, 0), first);
    EXPECT_EQ(resultKey(otherFirst, 1) != second, method == Method::kPlugin);
  }
}

TEST(ResultKey, AChangedEventsTableIsNoticed) {
  const Scratch scratch;
  StudyPlan plan = sample_plan::plan();
  plan.runs[0].request.events = scratch.write("events.tsv", "onset\n");
  const std::string before = resultKey(plan, 0);
  scratch.write("events.tsv", "onset\n1\n");
  EXPECT_NE(resultKey(plan, 0), before);
}

TEST(SeedOf, IsAnotherForEveryReferenceAndPrefixAndSeed) {
  StudyPlan plan = sample_plan::plan();
  const std::uint32_t own = seedOf(plan, 0);
  EXPECT_EQ(seedOf(plan, 0), own);
  EXPECT_NE(own, plan.seed);
  EXPECT_NE(seedOf(plan, 1), own);
  plan.request.output.prefix = "sub-02";
  EXPECT_NE(seedOf(plan, 0), own);
  plan = sample_plan::plan();
  plan.seed = 7002;
  EXPECT_NE(seedOf(plan, 0), own);
  plan = sample_plan::plan();
  plan.regions.erase(plan.regions.begin());  // whatever else is computed
  EXPECT_EQ(seedOf(plan, 0), seedOf(sample_plan::plan(), 1));
}

TEST(SeedOf, IsTheStudysOwnWithMethodPlugin) {
  StudyPlan plan = sample_plan::plan();
  plan.request.settings.method = Method::kPlugin;
  EXPECT_EQ(seedOf(plan, 0), 7001U);
  EXPECT_EQ(seedOf(plan, 1), 7001U);
}

TEST(CautionsOf, AreThoseOfThePlanAndOfTheRegion) {
  const std::vector<std::string> cautions = cautionsOf(sample_plan::plan(), 1);
  ASSERT_EQ(cautions.size(), 3U);
  EXPECT_EQ(cautions[0], "filtered");
  EXPECT_NE(cautions[1].find("V2"), std::string::npos);  // few voxels
  EXPECT_EQ(cautions[2], "note of V2");
}

}  // namespace
}  // namespace study
