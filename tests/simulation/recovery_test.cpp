// The judgement, on maps made by hand: ten voxels of each region in a row, then 200 elsewhere.
#include "simulation/recovery.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace {

using simulation::ConditionRecovery;
using simulation::Kind;

constexpr std::size_t kPerRegion = 10;
constexpr float kLow = 1, kHigh = 8;

struct Made {
  formats::MapSet maps;
  simulation::Truth truth =
      truthOf(simulation::plantedModel(1), std::vector<std::size_t>(9, kPerRegion), 1, 1);
  formats::LabelImage labels;

  [[nodiscard]] std::vector<float>& values(std::size_t map) { return maps.maps[map].values; }
  [[nodiscard]] ConditionRecovery assessed(double q = 0.05) const {
    return assess(maps, "whole", q, truth, labels);
  }
};

std::size_t firstVoxel(std::size_t region) {
  return region * kPerRegion;
}
void paint(std::vector<float>& map, std::size_t region, std::size_t count, float value) {
  for (std::size_t i = 0; i < count; ++i) map[firstVoxel(region) + i] = value;
}

// Maps that show exactly what was planted.
Made perfect() {
  Made made;
  made.maps.xEnd = 290;
  made.maps.yEnd = made.maps.zEnd = 1;
  made.maps.thresholdNames = {"thres q=0.010", "thres q=0.050"};
  made.labels.header.size = {290, 1, 1};
  made.labels.labels.assign(290, 0);
  for (std::size_t i = 0; i < 90; ++i) made.labels.labels[i] = static_cast<std::int32_t>(i / kPerRegion + 1);
  for (const char* name : {"whole: Ref2Vox", "whole: Vox2Ref", "whole: Inst", "whole: dTAV"}) {
    formats::Map map;
    map.name = name;
    map.thresholds = {9, 5};
    map.values.assign(290, kLow);
    made.maps.maps.push_back(map);
  }
  for (std::size_t k = 1; k < 9; ++k) {
    const Kind kind = made.truth.regions[k].model.kind;
    if (kind == Kind::kDriven) paint(made.values(0), k, kPerRegion, kHigh);
    if (kind == Kind::kDriving) paint(made.values(1), k, kPerRegion, kHigh);
    if (kind == Kind::kInstantaneous) paint(made.values(2), k, kPerRegion, kHigh);
    if (kind == Kind::kDriving) paint(made.values(3), k, kPerRegion, -kHigh);
  }
  return made;
}

constexpr std::size_t kDriven = 1, kDriving = 3, kInstantaneous = 5, kUnrelated = 7;

TEST(Recovery, MapsThatShowWhatWasPlantedAreRecovered) {
  const ConditionRecovery recovery = perfect().assessed();
  EXPECT_TRUE(recovery.recovered());
  EXPECT_EQ(recovery.regions[kDriven].share[simulation::kRef2Vox], 1);
  EXPECT_EQ(recovery.regions[kDriven].share[simulation::kVox2Ref], 0);
  EXPECT_EQ(recovery.regions[kDriving].meanSign, -1);
  EXPECT_EQ(recovery.regions[kDriven].computed, kPerRegion);
  EXPECT_EQ(recovery.outsideComputed, 200U);
}

TEST(Recovery, PlantedMeasureMustPassInHalfOfTheVoxels) {
  Made made = perfect();
  paint(made.values(2), kInstantaneous, 5, kLow);
  EXPECT_TRUE(made.assessed().recovered());
  paint(made.values(2), kInstantaneous, 6, kLow);
  EXPECT_FALSE(made.assessed().regions[kInstantaneous].recovered);
  EXPECT_FALSE(made.assessed().recovered());
}

TEST(Recovery, OtherMeasuresMayPassInATenthOfTheVoxels) {
  Made made = perfect();
  paint(made.values(1), kUnrelated, 1, -kHigh);
  EXPECT_TRUE(made.assessed().recovered());
  paint(made.values(1), kUnrelated, 2, -kHigh);
  EXPECT_FALSE(made.assessed().recovered());
}

TEST(Recovery, SignOfTheDifferenceMustFitTheDirection) {
  Made made = perfect();
  paint(made.values(3), kDriven, 6, -kHigh);
  EXPECT_FALSE(made.assessed().regions[kDriven].recovered);
  made = perfect();
  paint(made.values(3), kDriving, 6, kHigh);
  EXPECT_FALSE(made.assessed().regions[kDriving].recovered);
}

TEST(Recovery, ReferenceIsNotJudged) {
  Made made = perfect();
  for (std::size_t map = 0; map < 3; ++map) paint(made.values(map), 0, kPerRegion, kHigh);
  EXPECT_TRUE(made.assessed().recovered());
}

TEST(Recovery, OneVoxelInAHundredMayPassElsewhere) {
  Made made = perfect();
  paint(made.values(0), 9, 2, kHigh);
  EXPECT_TRUE(made.assessed().outsideQuiet);
  paint(made.values(0), 9, 3, kHigh);
  EXPECT_EQ(made.assessed().falsePositives[simulation::kRef2Vox], 3U);
  EXPECT_FALSE(made.assessed().recovered());
}

TEST(Recovery, ThresholdsAreFoundByTheirNames) {
  Made made = perfect();
  EXPECT_FALSE(made.assessed(0.01).recovered());
  std::swap(made.maps.thresholdNames[0], made.maps.thresholdNames[1]);
  EXPECT_TRUE(made.assessed(0.01).recovered());
}

TEST(Recovery, VoxelAtTheThresholdPassesAndNothingPassesNaN) {
  Made made = perfect();
  for (auto& map : made.maps.maps) map.thresholds[1] = kHigh;
  EXPECT_TRUE(made.assessed().recovered());
  made.maps.maps[0].thresholds[1] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(made.assessed().regions[kDriven].share[simulation::kRef2Vox], 0);
}

TEST(Recovery, VoxelsWithoutAValueCountNowhere) {
  Made made = perfect();
  for (auto& map : made.maps.maps) paint(map.values, kDriven, 4, 0);
  paint(made.values(0), kDriven + 1, 4, std::numeric_limits<float>::quiet_NaN());
  const ConditionRecovery recovery = made.assessed();
  EXPECT_EQ(recovery.regions[kDriven].computed, 6U);
  EXPECT_EQ(recovery.regions[kDriven].share[simulation::kRef2Vox], 1);
  EXPECT_NEAR(recovery.regions[kDriven + 1].share[simulation::kRef2Vox], 0.6, 1e-12);
  for (auto& map : made.maps.maps) paint(map.values, kUnrelated, kPerRegion, 0);
  EXPECT_FALSE(made.assessed().regions[kUnrelated].recovered);
}

std::string complaint(const Made& made, double q) {
  try {
    (void)made.assessed(q);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "";
}

TEST(Recovery, SaysWhatIsMissing) {
  Made made = perfect();
  EXPECT_EQ(complaint(made, 0.2), "there is no threshold \"thres q=0.200\"");
  made.maps.maps.pop_back();
  EXPECT_EQ(complaint(made, 0.05), "there is no map \"whole: dTAV\"");
  made = perfect();
  std::replace(made.labels.labels.begin(), made.labels.labels.end(), 2, 0);
  EXPECT_EQ(complaint(made, 0.05), "the label image has no voxel of region Driven-A");
  made = perfect();
  made.maps.xEnd = 289;
  EXPECT_EQ(complaint(made, 0.05), "the maps and the label image differ in size");
}

TEST(Recovery, ConditionsAreNamedByTheMaps) {
  Made made = perfect();
  made.maps.maps.push_back(made.maps.maps[0]);
  made.maps.maps.back().name = "faces: left: Ref2Vox";
  EXPECT_EQ(simulation::conditionsOf(made.maps), (std::vector<std::string>{"whole", "faces: left"}));
}

TEST(Recovery, TextNamesEveryRegionItsKindAndTheVerdict) {
  Made made = perfect();
  const std::string good = toText(made.assessed());
  EXPECT_NE(
      good.find(
          "  Driven-A       driven             10      100%        0%        0%      +1.00   as planted\n"),
      std::string::npos)
      << good;
  EXPECT_NE(good.find("  Verdict: the planted influences are recovered.\n"), std::string::npos);
  paint(made.values(0), 9, 3, kHigh);
  paint(made.values(2), kInstantaneous, kPerRegion, kLow);
  const std::string bad = toText(made.assessed());
  EXPECT_NE(bad.find("NOT AS PLANTED"), std::string::npos);
  EXPECT_NE(bad.find("TOO MANY"), std::string::npos);
  EXPECT_NE(bad.find("  Verdict: the planted influences are NOT recovered.\n"), std::string::npos);
}

TEST(Recovery, JsonSaysTheSame) {
  Made made = perfect();
  const auto good = nlohmann::json::parse(simulation::toJsonText({made.assessed()}, 0.05));
  EXPECT_EQ(good["recovered"], true);
  EXPECT_EQ(good["q"], 0.05);
  EXPECT_EQ(good["conditions"][0]["regions"][kDriving]["share_vox2ref"], 1.0);
  EXPECT_EQ(good["conditions"][0]["elsewhere"]["voxels"], 200);
  paint(made.values(0), kDriven, kPerRegion, kLow);
  const auto bad =
      nlohmann::json::parse(simulation::toJsonText({perfect().assessed(), made.assessed()}, 0.05));
  EXPECT_EQ(bad["recovered"], false);
  EXPECT_EQ(bad["conditions"][0]["recovered"], true);
  EXPECT_EQ(bad["conditions"][1]["regions"][kDriven]["recovered"], false);
}

}  // namespace
