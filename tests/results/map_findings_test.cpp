#include "results/map_findings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace study {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

std::vector<std::uint8_t> codes(const std::vector<StatusCode>& list) {
  std::vector<std::uint8_t> bytes;
  for (const StatusCode code : list) bytes.push_back(static_cast<std::uint8_t>(code));
  return bytes;
}
constexpr auto kComputed = StatusCode::kComputed, kInside = StatusCode::kInsideReference,
               kOutside = StatusCode::kOutsideMask, kIll = StatusCode::kIllDefined;

TEST(MapFindings, EveryVoxelHasItsOwnReason) {
  using tav::VoxelStatus;
  EXPECT_EQ(statusOf(VoxelStatus::kComputed, true, false), StatusCode::kComputed);
  EXPECT_EQ(statusOf(VoxelStatus::kComputed, true, true), StatusCode::kInsideReference);
  EXPECT_EQ(statusOf(VoxelStatus::kBelowInclusion, true, false), StatusCode::kBelowInclusion);
  EXPECT_EQ(statusOf(VoxelStatus::kBelowInclusion, false, false), StatusCode::kOutsideMask);
  EXPECT_EQ(statusOf(VoxelStatus::kIllDefined, true, true), StatusCode::kIllDefined);
  EXPECT_EQ(statusOf(VoxelStatus::kNotFinite, true, true), StatusCode::kNotFinite);
}

TEST(MapFindings, TheCodesAreThoseOfTheTableBesideTheMap) {
  const std::vector<std::string> names = {
      "outside the mask",     "computed",  "below the inclusion threshold", "ill-defined",
      "inside the reference", "not finite"};
  ASSERT_EQ(names.size(), kStatusCodes);
  for (std::size_t code = 0; code < kStatusCodes; ++code)
    EXPECT_EQ(statusName(static_cast<StatusCode>(code)), names[code]);
}

// The reference's voxel and one outside both reach the threshold, one of them exactly.
TEST(MapFindings, AVoxelAtTheThresholdPassesUnlessItIsTheReferences) {
  const float values[] = {0.5F, -2.5F, 3.0F, 2.4F, 2.5F, 0.0F};
  const auto status = codes({kComputed, kComputed, kInside, kComputed, kComputed, kOutside});
  EXPECT_EQ(passingOutside(values, 2.5F, status), 2U);
  EXPECT_EQ(passingOutside(values, 0.0F, status), 4U);  // a zero is no finding
}

TEST(MapFindings, ThresholdsSayHowManyPassInsideAndOutside) {
  const float values[] = {5, -6, 7, 1};
  const auto status = codes({kComputed, kComputed, kInside, kComputed});
  const tav::MapOutcome map{tav::REF2VOX, values, {{0.01F, kInfinity, 0}, {0.05F, 5.0F, 3}, {0.1F, 0.1F, 4}}};
  const auto results = thresholdsOf(map, {0.01, 0.05, 0.1}, status);
  ASSERT_EQ(results.size(), 3U);
  EXPECT_EQ(results[0].q, 0.01);
  EXPECT_FALSE(results[0].threshold.has_value());
  EXPECT_EQ(results[0].outsideReference, 0U);
  EXPECT_EQ(results[1].q, 0.05);
  EXPECT_EQ(results[1].threshold, 5.0);
  EXPECT_EQ(results[1].voxelsPassing, 3U);
  EXPECT_EQ(results[1].outsideReference, 2U);
  EXPECT_EQ(results[2].threshold, 0.1) << "with the digits of the float";
  EXPECT_EQ(results[2].outsideReference, 3U);
}

// A walk that is settled at its first candidate leaves a threshold that nothing has passed.
TEST(MapFindings, NothingPassesOutsideWhenNothingPasses) {
  const float values[] = {5, 4};
  const tav::MapOutcome map{tav::REF2VOX, values, {{0.05F, 5.0F, 0}}};
  const auto results = thresholdsOf(map, {0.05}, codes({kComputed, kComputed}));
  EXPECT_EQ(results[0].threshold, 5.0);
  EXPECT_EQ(results[0].outsideReference, 0U);
}

TEST(MapFindings, ThePeakIsTheLargestMagnitudeOutsideTheReference) {
  const float values[] = {1, 3, -4, 9, 4, 20, kNan};
  EXPECT_EQ(peakOf(values, codes({kComputed, kComputed, kComputed, kInside, kComputed, kIll, kComputed})),
            2U);
  EXPECT_EQ(peakOf(values, codes({kIll, kInside, kIll, kInside, kIll, kIll, kIll})), 0U);
}

formats::ImageHeader runHeader() {
  formats::ImageHeader header;
  header.size = {4, 3, 2};
  header.volumes = 150;
  header.series = true;
  header.trMs = 2000;
  header.dataType = formats::DataType::kInt16;
  header.slope = 0.25;
  header.intercept = 12;
  header.intentCode = 3;
  header.intentName = "t-test";
  header.affine.at(0, 3) = -17;
  return header;
}

TEST(MapFindings, MapsAndStatusHaveTheRunsGridAndNothingElseOfIt) {
  const formats::ImageHeader map = mapHeader(runHeader()), status = statusHeader(runHeader());
  for (const formats::ImageHeader& header : {map, status}) {
    EXPECT_EQ(header.size, runHeader().size);
    EXPECT_EQ(header.affine.at(0, 3), -17);
    EXPECT_EQ(header.volumes, 1);
    EXPECT_FALSE(header.series);
    EXPECT_EQ(header.trMs, 0);
    EXPECT_EQ(header.slope, 1);
    EXPECT_EQ(header.intercept, 0);
    EXPECT_EQ(header.intentName, "");
  }
  EXPECT_EQ(map.dataType, formats::DataType::kFloat32);
  EXPECT_EQ(map.intentCode, 0);
  EXPECT_EQ(status.dataType, formats::DataType::kUint8);
  EXPECT_EQ(status.intentCode, formats::kLabelIntent);
}

TEST(MapFindings, AThresholdedMapIsZeroWhereNothingPasses) {
  const float values[] = {1, -2, 3, kNan};
  EXPECT_EQ(thresholdedMap(values, {0, 1, 2, 0}), (std::vector<float>{0, -2, 3, 0}));
}

TEST(MapFindings, OnlyComputedVoxelsOutsideTheReferenceHaveAP) {
  const float values[] = {5, 4, 0, 3, -2};
  const tav::MapOutcome map{tav::REF2VOX, values, {}, {0.01F, 0.1F, kNan, 1, 0.001F}};
  const std::vector<float> image = minusLogP(map, codes({kComputed, kInside, kComputed, kIll, kComputed}));
  EXPECT_FLOAT_EQ(image[0], 2);
  EXPECT_TRUE(std::isnan(image[1]));
  EXPECT_EQ(image[2], 0);  // nothing falls short of it
  EXPECT_TRUE(std::isnan(image[3]));
  EXPECT_FLOAT_EQ(image[4], 3);
}

}  // namespace
}  // namespace study
