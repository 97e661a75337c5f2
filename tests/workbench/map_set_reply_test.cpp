#include "workbench/map_set_reply.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>

#include "tests/formats/sample_map_set.h"
#include "tests/workbench/packed_reply.h"

namespace {

using nlohmann::json;

TEST(MapSetReply, HasTheVeryValuesOfEachMap) {
  const formats::MapSet set = formats_test::sampleMapSet();
  const PackedReply read(workbench::encodedMapSet(set));
  EXPECT_EQ(read.header["grid"]["size"], json({3, 2, 2}));
  EXPECT_EQ(read.header["grid"]["affine"][1][3], set.affine.at(1, 3));
  ASSERT_EQ(read.header["maps"].size(), set.maps.size());
  for (std::size_t i = 0; i < set.maps.size(); ++i) {
    EXPECT_EQ(read.header["maps"][i]["name"], set.maps[i].name);
    const std::string type = read.header["maps"][i]["type"];
    const auto values = read.array<float>("type", type.c_str());
    const std::vector<float>& own = set.maps[i].values;
    ASSERT_EQ(values.size(), own.size());
    EXPECT_EQ(std::memcmp(values.data(), own.data(), sizeof(float) * own.size()), 0) << i;
  }
}

TEST(MapSetReply, ThresholdsAreNumbersOrNone) {
  formats::MapSet set = formats_test::sampleMapSet();
  set.thresholdNames = {"thres q=0.010", "thres q=0.050"};
  set.maps[0].lowerThreshold = 0.1F;
  set.maps[0].thresholds = {std::numeric_limits<float>::quiet_NaN(), 2.5F};
  set.maps[1].lowerThreshold = 0.2F;
  set.maps[1].thresholds = {0, 0};  // compared with no surrogates
  const json maps = PackedReply(workbench::encodedMapSet(set)).header["maps"];
  const json none = {{"q", 0.01}, {"threshold", nullptr}}, some = {{"q", 0.05}, {"threshold", 2.5}};
  EXPECT_EQ(maps[0]["thresholds"], json::array({none, some}));
  EXPECT_EQ(maps[1]["thresholds"], json::array());
  EXPECT_EQ(maps[1]["lower"], 0.2F);
}

TEST(MapSetReply, KindsAreThoseOfTheNames) {
  formats::MapSet set = formats_test::sampleMapSet();
  set.maps[0].name = "faces: dTAV IT";
  set.maps[1].name = "something else";
  set.maps[1].negativeColorFrom = set.maps[1].negativeColorTo = 0;
  const json maps = PackedReply(workbench::encodedMapSet(set)).header["maps"];
  EXPECT_EQ(maps[0]["kind"], "DTAV_IT");
  EXPECT_EQ(maps[0]["negative"], "more from the voxel to the reference");
  EXPECT_TRUE(maps[1]["kind"].is_null());
  EXPECT_TRUE(maps[1]["negative"].is_null()) << "it has no colours for negative values";
}

TEST(MapSetReply, NamesInAnotherCodeAreStillSent) {
  formats::MapSet set = formats_test::sampleMapSet();
  set.maps[0].name = "caf\xe9: dTAV";
  EXPECT_EQ(PackedReply(workbench::encodedMapSet(set)).header["maps"][0]["name"], "caf\xef\xbf\xbd: dTAV");
}

}  // namespace
