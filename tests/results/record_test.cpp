#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "results/record_json.h"
#include "tests/support/message_of.h"
#include "tests/support/sample_result.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;

std::string stored(const std::string& name) {
  return formats::readTextFile(std::string(TAVMAP_STORED_RESULTS) + "/" + name);
}

void addLeaves(const Json& json, std::vector<std::string>& leaves) {
  if (json.is_structured()) {
    for (const Json& item : json) addLeaves(item, leaves);
  } else if (!json.is_boolean()) {
    leaves.push_back(json.dump());
  }
}

// The texts of this record and of its JSON are worth a comparison only when this holds.
TEST(Records, NoValueOfTheSampleStandsForAnother) {
  std::vector<std::string> leaves;
  addLeaves(recordJson(sample_result::record()), leaves);
  std::multiset<std::string> counted(leaves.begin(), leaves.end());
  for (const std::string& leaf : leaves) EXPECT_EQ(counted.count(leaf), 1U) << leaf;
  EXPECT_GT(leaves.size(), 100U);
}

TEST(Records, AreWrittenAsTheyAlwaysWere) {
  EXPECT_EQ(recordText(sample_result::record()), stored("record.json"));
}

TEST(Records, ReadWhatWasWritten) {
  const Record record = sample_result::record();
  EXPECT_EQ(recordText(recordFromText(recordText(record), "r")), recordText(record));
  Record read = recordFromText(stored("record.json"), "r");
  // What records do not hold is not asked for.
  read.model.settings.qValues = record.model.settings.qValues;
  read.model.settings.mapTypes = record.model.settings.mapTypes;
  EXPECT_TRUE(read == record);
}

// Each single value comes back: taking any of them away, or changing its kind, is noticed and placed.
TEST(Records, EveryValueIsNeededAndOfItsKind) {
  const std::set<std::string> mayBeMissing = {"MethodDescription",
                                              "AnyVoxelPasses",
                                              "ReferenceFromRun",
                                              "Thresholds",
                                              "VoxelsTested",
                                              "VoxelsSupported",
                                              "Label",
                                              "PassingFile",
                                              "ThresholdedFile",
                                              "PFile",
                                              "ZFile",
                                              "ReversedFile",
                                              "ClustersFile",
                                              "EvidenceFile"};
  const Json whole = recordJson(sample_result::record()).flatten();
  int tried = 0;
  for (const auto& item : whole.items()) {
    const Json::json_pointer at(item.key());
    if (mayBeMissing.count(at.back()) > 0) continue;
    Json other = recordJson(sample_result::record());
    other[at] = Json::object();
    EXPECT_THROW((void)recordFromText(other.dump(), "r"), formats::FileError) << item.key();
    Json& parent = other[at.parent_pointer()];
    if (!parent.is_object() || parent == other["Files"]) continue;
    parent.erase(at.back());
    const std::string message =
        messageOf<formats::FileError>([&] { return recordFromText(other.dump(), "r"); });
    EXPECT_NE(message.find("\"" + at.back() + "\" is missing"), std::string::npos) << message;
    ++tried;
  }
  EXPECT_GT(tried, 60);
}

TEST(Records, MessagesSayWhatAndWhere) {
  const auto problem = [](const char* pointer, const Json& value) {
    Json json = recordJson(sample_result::record());
    json[Json::json_pointer(pointer)] = value;
    return messageOf<formats::FileError>([&] { return recordFromText(json.dump(), "r.json"); });
  };
  const std::string begin = "r.json: not a whole record (", end = "). Compute the result again.";
  EXPECT_EQ(problem("/Conditions/1/Maps/0/MapType", "REF"),
            begin + "Conditions[1].Maps[0].MapType: unknown map type 'REF'" + end);
  EXPECT_EQ(problem("/Conditions/0/Runs/1/Volumes", 1.5),
            begin +
                "Conditions[0].Runs[1].Volumes: a whole number from -2147483648 to 2147483647 is expected" +
                end);
  EXPECT_EQ(problem("/Seed", -1), begin + "Seed: a whole number from 0 to 4294967295 is expected" + end);
  EXPECT_EQ(problem("/Method", "other"), begin + "Method: \"other\" is not known here" + end);
  EXPECT_EQ(problem("/Conditions/0/Maps/0/Peak/Value", "high"),
            begin + "Conditions[0].Maps[0].Peak.Value: a number or null is expected" + end);
  EXPECT_EQ(problem("/Conditions/0/Maps/0/Peak/Voxel", Json::array({1, 2})),
            begin + "Conditions[0].Maps[0].Peak.Voxel: a list of 3 is expected" + end);
  EXPECT_EQ(messageOf<formats::FileError>([] { return recordFromText("{\n\"Key\": \"x", "r.json"); }),
            begin + "line 2: this is no valid JSON" + end);
  EXPECT_EQ(messageOf<formats::FileError>([] { return recordFromText("[]", "r.json"); }),
            begin + "an object is expected" + end);
}

TEST(Records, UnknownKeysAreOverlooked) {
  Json json = recordJson(sample_result::record());
  json["Later"] = {1, 2};
  json["Conditions"][0]["Maps"][0]["Peak"]["Later"] = "x";
  EXPECT_EQ(recordText(recordFromText(json.dump(), "r")), recordText(sample_result::record()));
}

TEST(Records, WhatIsNotFiniteIsNullThereAndBack) {
  Record record = sample_result::record();
  MapResult& map = record.conditions[0].maps[0];
  map.peak = std::numeric_limits<double>::quiet_NaN();
  map.peakMm[1] = std::numeric_limits<double>::infinity();
  map.thresholds[0].threshold.reset();
  const Json json = recordJson(record)["Conditions"][0]["Maps"][0];
  EXPECT_TRUE(json["Peak"]["Value"].is_null());
  EXPECT_TRUE(json["Thresholds"][0]["Threshold"].is_null());
  const Record read = recordFromText(recordText(record), "r");
  const MapResult& same = read.conditions[0].maps[0];
  EXPECT_TRUE(std::isnan(same.peak));
  EXPECT_TRUE(std::isnan(same.peakMm[1]));
  EXPECT_FALSE(same.thresholds[0].threshold.has_value());
  EXPECT_EQ(same.thresholds[1].threshold, 4.5);
}

TEST(Records, AMapHasAPeakWhenVoxelsWereComputed) {
  ConditionRecord condition = sample_result::record().conditions[0];
  MapResult map = condition.maps[0];
  EXPECT_TRUE(hasPeak(condition, map));
  map.peak = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(hasPeak(condition, map));
  condition.voxels[static_cast<std::size_t>(StatusCode::kComputed)] = 0;
  EXPECT_FALSE(hasPeak(condition, condition.maps[0]));
}

TEST(Records, UnreadableFilesAreNamed) {
  const Scratch scratch;
  const std::string path = (scratch.folder() / "none.json").string();
  EXPECT_NE(messageOf<formats::FileError>([&] { return readRecordFile(path); }).find(path),
            std::string::npos);
}

}  // namespace
}  // namespace study
