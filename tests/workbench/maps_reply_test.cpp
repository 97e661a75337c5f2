#include "workbench/maps_reply.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "tests/workbench/packed_reply.h"

namespace {

using nlohmann::json;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(),
                kInfinity = std::numeric_limits<float>::infinity();

live::LiveMaps someMaps(live::Care care) {
  live::LiveMaps maps;
  maps.care = care;
  maps.ask.condition = "rest \"1\"";
  maps.ask.draws = 20;
  maps.reference = "V1";
  maps.voxels = 7;
  maps.mm = {1, 2, 3};
  maps.status.assign(3, tav::VoxelStatus::kComputed);
  live::LiveMap map{tav::DTAV, {1.5F, -3, kNan}, {}, {{0.01F, kInfinity, 0}, {0.05F, 2.5F, 1}}};
  if (care == live::Care::kFull) map.p = {0.001F, 1, kNan};
  maps.maps = {map};
  return maps;
}

TEST(MapsReply, AFullResultHasTheVeryValues) {
  const live::LiveMaps maps = someMaps(live::Care::kFull);
  const PackedReply read(workbench::encodedMaps({maps, {0, 3, 1}, 17, 4.5, {"a warning"}}));
  const auto values = read.array<float>("what", "value");
  EXPECT_EQ(std::memcmp(values.data(), maps.maps[0].values.data(), sizeof(float) * 3), 0);
  EXPECT_EQ(read.array<std::uint8_t>("what", "p"), (std::vector<std::uint8_t>{30, 0, 255}));
  EXPECT_EQ(read.array<std::uint8_t>("what", "direction"), (std::vector<std::uint8_t>{0, 3, 1}));
  EXPECT_EQ(read.header["draft"], false);
  EXPECT_EQ(read.header["draws"], 20);
  EXPECT_EQ(read.header["sequence"], 17);
  EXPECT_EQ(read.header["condition"], "rest \"1\"");
  EXPECT_EQ(read.header["reference"]["name"], "V1");
  EXPECT_EQ(read.header["warnings"], json({"a warning"}));
}

TEST(MapsReply, ADraftIsShortAndHasNoP) {
  const live::LiveMaps maps = someMaps(live::Care::kDraft);
  const PackedReply read(workbench::encodedMaps({maps, {}, 1, 0, {}}));
  EXPECT_EQ(read.header["draft"], true);
  EXPECT_EQ(read.header["draws"], 1);
  ASSERT_EQ(read.header["arrays"].size(), 1U);
  const float scale = read.header["arrays"][0]["scale"];
  const auto codes = read.array<std::int16_t>("what", "value");
  EXPECT_EQ(codes[1], -32767) << "the largest magnitude has the largest code";
  EXPECT_EQ(codes[2], -32768) << "none";
  EXPECT_NEAR(static_cast<float>(codes[0]) * scale, 1.5F, 1e-4F);
}

TEST(MapsReply, AThresholdThatNothingReachesIsNone) {
  const live::LiveMaps maps = someMaps(live::Care::kFull);
  const json thresholds =
      PackedReply(workbench::encodedMaps({maps, {}, 1, 0, {}})).header["maps"][0]["thresholds"];
  EXPECT_EQ(thresholds[0]["q"], 0.01);
  EXPECT_TRUE(thresholds[0]["threshold"].is_null());
  EXPECT_EQ(thresholds[1]["threshold"], 2.5);
  EXPECT_EQ(thresholds[1]["passing"], 1);
}

TEST(MapsReply, AMapOfZerosHasAScale) {
  live::LiveMaps maps = someMaps(live::Care::kDraft);
  maps.maps[0].values = {0, 0, 0};
  const PackedReply read(workbench::encodedMaps({maps, {}, 1, 0, {}}));
  EXPECT_EQ(read.array<std::int16_t>("what", "value"), (std::vector<std::int16_t>{0, 0, 0}));
  EXPECT_EQ(read.header["arrays"][0]["scale"], 1);
}

}  // namespace
