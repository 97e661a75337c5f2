#include "results/result_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "formats/atomic_file.h"
#include "results/derived_map_json.h"
#include "results/record_json.h"
#include "tests/support/sample_result.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;

std::string stored(const std::string& name) {
  return formats::readTextFile(std::string(TAVMAP_STORED_RESULTS) + "/" + name);
}

class Sidecars : public ::testing::Test {
 protected:
  Json map(std::size_t condition, std::size_t map) const {
    const ConditionResult& result = reference_.conditions[condition];
    return mapSidecar(context_, reference_, result, result.maps[map]);
  }
  Request request_ = sample_result::request();
  std::vector<RunPlan> runs_ = sample_result::runs();
  ReferenceResult reference_ = sample_result::reference();
  ResultContext context_ = sample_result::context(request_, runs_);
};

TEST_F(Sidecars, OfAMapAreWrittenAsTheyAlwaysWere) {
  EXPECT_EQ(map(0, 0).dump(2) + "\n", stored("map_sidecar.json"));
}

TEST_F(Sidecars, OfAStatusMapAreWrittenAsTheyAlwaysWere) {
  const ConditionResult& condition = reference_.conditions[0];
  EXPECT_EQ(statusSidecar(context_, reference_, condition).dump(2) + "\n", stored("status_sidecar.json"));
}

TEST_F(Sidecars, OfFamilyWiseImagesNameWholeMapsOfAnotherKind) {
  MapResult emptied = reference_.conditions[0].maps[0];
  emptied.type = tav::DTAV_IT;
  const std::string text = familyWiseSidecar(map(0, 0), emptied, FamilyWiseImage::kVoxels)["Description"];
  EXPECT_NE(text.find("the whole maps are those of DTAV, since"), std::string::npos) << text;
}

TEST_F(Sidecars, OfFamilyWiseImagesSayWhatTheirValuesAre) {
  const MapResult& ofFaces = reference_.conditions[0].maps[0];
  const Json voxels = familyWiseSidecar(map(0, 0), ofFaces, FamilyWiseImage::kVoxels);
  EXPECT_EQ(voxels["Description"],
            "family-wise p of each voxel: (1 + the number of 1003 whole maps of surrogates whose largest "
            "magnitude reaches the voxel's) / (1 + 1003), over the voxels of this one map outside the "
            "reference. The map: influence of V1 on each voxel; condition 'faces'");
  EXPECT_EQ(voxels["Units"], "probability; NaN where the status map says anything but \"computed\"");
  EXPECT_EQ(voxels["StatisticFile"], "faces_ref2vox.nii.gz");
  EXPECT_EQ(voxels["FamilyWise"]["Draws"], 1003);
  EXPECT_FALSE(voxels.contains("Thresholds"));
  const Json clusters = familyWiseSidecar(map(0, 0), ofFaces, FamilyWiseImage::kClusters);
  const std::string text = clusters["Description"];
  EXPECT_NE(text.find("magnitudes of at least 3.125, which a share of 0.0015 of the null values"),
            std::string::npos)
      << text;
  EXPECT_EQ(clusters["Literature"], voxels["Literature"]);
  EXPECT_FALSE(voxels["FamilyWise"].contains("Clusters"));
  EXPECT_EQ(clusters["FamilyWise"]["Clusters"][1]["Voxels"], 98);
}

TEST_F(Sidecars, OfDerivedImagesSayWhatTheirValuesAre) {
  MapResult ofFaces = reference_.conditions[0].maps[0];
  const Json thresholded = thresholdedSidecar(map(0, 0), ofFaces);
  EXPECT_EQ(
      thresholded["Description"],
      "the map where it passes outside the reference at q = 0.033; 0 elsewhere. The map: influence of V1 on "
      "each voxel; condition 'faces'");
  EXPECT_EQ(thresholded["StatisticFile"], "faces_ref2vox.nii.gz");
  EXPECT_EQ(thresholded["Units"], map(0, 0)["Units"]);
  EXPECT_EQ(thresholded["Thresholds"], map(0, 0)["Thresholds"]);
  const Json p = nullPSidecar(map(0, 0), ofFaces);
  EXPECT_EQ(
      p["Description"],
      "p of each voxel by itself, whatever the other voxels show: (1 + the number of null values of at least "
      "its magnitude) / (1 + the number of null values), those of all voxels together. The map: influence of "
      "V1 on each voxel; condition 'faces'");
  EXPECT_EQ(p["Units"], "-log10 of a probability; NaN where the status map says anything but \"computed\"");
  EXPECT_FALSE(p.contains("Thresholds") || p.contains("FamilyWise"));
  ofFaces.type = tav::DTAV_IT;
  EXPECT_NE(nullPSidecar(map(0, 0), ofFaces)["Description"].get<std::string>().find(
                "together; the null values are those of DTAV, since"),
            std::string::npos);
}

TEST_F(Sidecars, TheRepetitionTimeIsThatOfAllRunsOrNone) {
  EXPECT_TRUE(map(0, 0)["RepetitionTime"].is_null());
  EXPECT_EQ(map(1, 0)["RepetitionTime"], 3.25);
}

TEST_F(Sidecars, SharesHaveNoFactorAndNoThresholds) {
  EXPECT_EQ(map(0, 1)["Units"], "share, -1 to 1");
  EXPECT_FALSE(map(0, 1).contains("Thresholds"));
  EXPECT_EQ(map(0, 0)["Units"], "natural logarithm of a ratio of error variances, times 104.5");
}

TEST_F(Sidecars, ANonSurvivingLevelHasNoThreshold) {
  reference_.conditions[0].maps[0].thresholds[1] = {0.033, std::nullopt, 0, 0};
  const Json levels = map(0, 0)["Thresholds"];
  EXPECT_TRUE(levels[1]["Threshold"].is_null());
  EXPECT_FALSE(levels[1]["AnyVoxelPasses"].get<bool>());
  EXPECT_TRUE(levels[0]["AnyVoxelPasses"].get<bool>());
}

// With method "plugin" the reference's own voxels may be the only ones.
TEST_F(Sidecars, AVoxelOfTheReferencePassesToo) {
  reference_.conditions[0].maps[0].thresholds[0] = {0.011, 5.5, 3, 0};
  const Json level = map(0, 0)["Thresholds"][0];
  EXPECT_TRUE(level["AnyVoxelPasses"].get<bool>());
  EXPECT_EQ(level["VoxelsPassing"], 3);
  EXPECT_EQ(level["VoxelsPassingOutsideReference"], 0);
}

// The nearest data set that holds a file names it.
TEST(SourceUri, IsRelativeToTheInnermostDataSet) {
  const Request request = sample_result::request();
  EXPECT_EQ(sourceUri(request, "/data/raw/x.nii.gz"), "bids:raw:x.nii.gz");
  EXPECT_EQ(sourceUri(request, "/data/masks/x.nii.gz"), "bids:all:masks/x.nii.gz");
  EXPECT_EQ(sourceUri(request, "/data/rawer/x.nii.gz"), "bids:all:rawer/x.nii.gz");
  EXPECT_EQ(sourceUri(request, "/elsewhere/x.nii.gz"), "x.nii.gz");
  EXPECT_EQ(sourceUri(request, "/data/raw/a b/x%1#\xc3\xa4.nii"), "bids:raw:a%20b/x%251%23%C3%A4.nii");
}

Region sampleRegion(ReferenceKind kind) {
  Region region{"V1", {}, {}, {}};
  region.source = {kind,
                   "/data/raw/atlas_dseg.nii.gz",
                   "/elsewhere/names.tsv",
                   17,
                   "V1",
                   "3 x 2 x 1 voxels",
                   true,
                   {},
                   0,
                   "the most probable"};
  return region;
}

TEST(ReferenceSourceOf, LabelsNamesImageTableIndexAndGrid) {
  const ReferenceSource source =
      referenceSource(sample_result::request(), sampleRegion(ReferenceKind::kLabels));
  const auto json = sourceJson(source);
  EXPECT_EQ(json["Kind"], "labels");
  EXPECT_EQ(json["Image"], "bids:raw:atlas_dseg.nii.gz");
  EXPECT_EQ(json["Table"], "names.tsv");
  EXPECT_EQ(json["LabelIndex"], 17);
  EXPECT_EQ(json["LabelName"], "V1");
  EXPECT_EQ(json["LabelRule"], "the most probable");
  EXPECT_EQ(json["Grid"], "3 x 2 x 1 voxels");
  EXPECT_EQ(json["OnGridOfRuns"], "each voxel of the runs takes the value at its centre (nearest voxel)");
  EXPECT_FALSE(json.contains("RadiusMillimetres"));
}

TEST(ReferenceSourceOf, ASphereHasCentreAndRadius) {
  Region sphere{"S", {}, {}, {}};
  sphere.source.kind = ReferenceKind::kSphere;
  sphere.source.centreMm = {1.5, -2, 3};
  sphere.source.radiusMm = 6;
  const auto json = sourceJson(referenceSource(sample_result::request(), sphere));
  EXPECT_EQ(json["Kind"], "sphere");
  EXPECT_EQ(json["CentreMillimetres"], (std::vector<double>{1.5, -2, 3}));
  EXPECT_EQ(json["RadiusMillimetres"], 6);
  EXPECT_FALSE(json.contains("Image"));
}

TEST(ReferenceSourceOf, GoesIntoSidecarsAndRecordAndIsReadBack) {
  const Request request = sample_result::request();
  const auto runs = sample_result::runs();
  ResultContext context = sample_result::context(request, runs);
  context.source = referenceSource(request, sampleRegion(ReferenceKind::kLabels));
  context.inputs = {{"run image", "bids:raw:a_bold.nii.gz", "0a"},
                    {"run image", "bids:raw:d_bold.nii.gz", "0d"},
                    {"label image", "bids:raw:atlas_dseg.nii.gz", "0e"}};
  const ReferenceResult reference = sample_result::reference();
  const auto sidecar = statusSidecar(context, reference, reference.conditions[0]);  // of runs a, b and c
  EXPECT_EQ(sidecar["ReferenceSource"]["LabelIndex"], 17);
  ASSERT_EQ(sidecar["Inputs"].size(), 2U);
  EXPECT_EQ(sidecar["Inputs"][0]["SHA256"], "0a");
  EXPECT_EQ(sidecar["Inputs"][1]["Kind"], "label image");
  const Record record = referenceRecord(context, reference, "k");
  EXPECT_EQ(record.inputs.size(), 3U);
  const Record read = recordFromText(recordText(record), "r.json");
  EXPECT_EQ(read.source, record.source);
  EXPECT_EQ(read.source.rule, "the most probable");
  EXPECT_EQ(read.inputs, record.inputs);
}

}  // namespace
}  // namespace study
