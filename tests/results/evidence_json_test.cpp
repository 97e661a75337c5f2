#include "results/evidence_json.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>

#include "formats/file_error.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;

// Every number and text is another one.
Evidence sample() {
  Evidence evidence;
  evidence.reference = "V1", evidence.condition = "faces", evidence.version = "1.2.3";
  MapEvidence& map = evidence.maps.emplace_back();
  map.type = tav::DTAV;
  map.histogram = {{-1.5, 0.25, 2.5}, {11, 12}, {13, 14}, 15, 16, 17, 18};
  map.search = {21, 1.375, {1, 22}, {2.375, 1.625}, {0.0625, 0.125}};
  evidence.maps.push_back({tav::INST, {{3.5, 4.5}, {23}, {24}, 25, 26, 27, 28}, {}});
  RunEvidence& run = evidence.runs.emplace_back();
  run.run = "b", run.referenceFromRun = "a";
  run.repetitionTime = 2.125, run.volumes = 31, run.droppedVolumes = 4;
  run.censoredVolumes = {5, 6}, run.spikes = {7, 8};
  run.spectrum = {{9, 10}, {0.5, 0.75}, {0.375, 0.625}, 32, {0.11, 0.12}, {0.13, 0.14}, {0.15, 0.16}};
  run.residuals = {33, {0.31, 0.32}, {-0.01, -0.02}, 0.341, 34.5, 0.035, 35};
  run.predictability = {0.41, 0.42, 36};
  run.motion = {"a column", {0.51, 0.52}};
  evidence.runs.emplace_back().run = "c";
  for (std::size_t code = 0; code < kStatusCodes; ++code)
    evidence.voxelsBySlice[code] = {100 + code, 200 + code};
  return evidence;
}

Evidence readBack(const Evidence& evidence) {
  return evidenceFromText(evidenceText(evidence), "e.json");
}

std::string problem(const char* pointer, const Json& value) {
  Json json = Json::parse(evidenceText(sample()));
  json[Json::json_pointer(pointer)] = value;
  return messageOf<formats::FileError>([&] { return evidenceFromText(json.dump(), "e.json"); });
}

TEST(Evidence, ComesBackAsItWasWritten) {
  EXPECT_TRUE(readBack(sample()) == sample());
  EXPECT_EQ(evidenceText(readBack(sample())), evidenceText(sample()));
}

TEST(Evidence, EveryValueIsNeededAndOfItsKind) {
  const std::set<std::string> mayBeMissing = {"ReferenceFromRun", "MotionSource"};
  const Json whole = Json::parse(evidenceText(sample())).flatten();
  int tried = 0;
  for (const auto& item : whole.items()) {
    const Json::json_pointer at(item.key());
    Json other = Json::parse(evidenceText(sample()));
    other[at] = Json::object();
    EXPECT_THROW((void)evidenceFromText(other.dump(), "e"), formats::FileError) << item.key();
    Json& parent = other[at.parent_pointer()];
    if (!parent.is_object() || mayBeMissing.count(at.back()) > 0) continue;
    parent.erase(at.back());
    EXPECT_NE(messageOf<formats::FileError>([&] {
                return evidenceFromText(other.dump(), "e");
              }).find("\"" + at.back() + "\" is missing"),
              std::string::npos)
        << item.key();
    ++tried;
  }
  EXPECT_GT(tried, 25);
}

TEST(Evidence, MessagesSayWhatAndWhere) {
  const std::string begin = "e.json: not a whole evidence file (", end = "). Compute the result again.";
  EXPECT_EQ(problem("/Maps/0/MapType", "REF"), begin + "Maps[0].MapType: unknown map type 'REF'" + end);
  EXPECT_EQ(problem("/Runs/0/Spectrum/Frequency/1", "high"),
            begin + "Runs[0].Spectrum.Frequency[1]: a number or null is expected" + end);
  EXPECT_EQ(messageOf<formats::FileError>([] { return evidenceFromText("[]", "e.json"); }),
            begin + "an object is expected" + end);
}

TEST(Evidence, ListsThatBelongTogetherAreEquallyLong) {
  const std::string begin = "e.json: not a whole evidence file (", end = "). Compute the result again.";
  const Json one = Json::array({1});
  EXPECT_EQ(problem("/Maps/0/Histogram/Null", one),
            begin + "Maps[0].Histogram: 1 numbers where 2 belong" + end);
  EXPECT_EQ(problem("/Maps/0/Search/P", one), begin + "Maps[0].Search: 1 numbers where 2 belong" + end);
  EXPECT_EQ(problem("/Runs/0/Spectrum/Reference", one),
            begin + "Runs[0].Spectrum: 1 numbers where 2 belong" + end);
  EXPECT_EQ(problem("/Runs/0/Spectrum/SurrogateLow", one),
            begin + "Runs[0].Spectrum: 1 numbers where 2 belong" + end);
  EXPECT_EQ(problem("/Runs/0/Residuals/Expected", one),
            begin + "Runs[0].Residuals: 1 numbers where 2 belong" + end);
  EXPECT_EQ(problem("/VoxelsBySlice/computed", one), begin + "VoxelsBySlice: 1 numbers where 2 belong" + end);
}

TEST(Evidence, WhatIsNotFiniteIsNullThereAndBack) {
  Evidence evidence = sample();
  evidence.runs[0].motion.displacement[0] = std::numeric_limits<double>::quiet_NaN();
  evidence.runs[0].residuals.p.reset();
  evidence.maps[0].search.magnitudes[1] = std::numeric_limits<double>::infinity();
  const Json json = Json::parse(evidenceText(evidence));
  EXPECT_TRUE(json["Runs"][0]["Motion"][0].is_null());
  EXPECT_TRUE(json["Maps"][0]["Search"]["Magnitude"][1].is_null());
  const Evidence read = readBack(evidence);
  EXPECT_TRUE(std::isnan(read.runs[0].motion.displacement[0]));
  EXPECT_EQ(read.runs[0].motion.displacement[1], 0.52);
  EXPECT_FALSE(read.runs[0].residuals.p);
}

TEST(Evidence, UnknownKeysAreOverlooked) {
  Json json = Json::parse(evidenceText(sample()));
  json["Runs"][0]["Later"] = {1, 2};
  EXPECT_TRUE(evidenceFromText(json.dump(), "e") == sample());
}

TEST(Evidence, UnreadableFilesAreNamed) {
  const Scratch scratch;
  const std::string path = scratch / "none.json";
  EXPECT_NE(messageOf<formats::FileError>([&] { return readEvidenceFile(path); }).find(path),
            std::string::npos);
}

}  // namespace
}  // namespace study
