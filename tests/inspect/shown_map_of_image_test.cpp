// How an effect map and its sidecar come into a picture.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "formats/file_error.h"
#include "formats/nifti_writer.h"
#include "inspect/map_pictures.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using inspect::MapColours;
using inspect::ShownMap;

constexpr const char* kThresholds =
    R"(, "Thresholds": [{"Q": 0.01, "Threshold": null}, {"Q": 0.05, "Threshold": 4.5}, {"Q": 0.1, "Threshold": 2}])";

class StatisticMap : public testing::Test {
 protected:
  StatisticMap() {
    header_.size = {3, 2, 1};
    for (int axis = 0; axis < 3; ++axis) header_.affine.at(axis, axis) = 10;
    header_.sformCode = 1;
    formats::writeImage(path(), {header_, values_});
    writeSidecar("DTAV", kThresholds);
  }
  std::string path() const { return scratch_.file("s_contrast-a_stat-effect_statmap.nii.gz"); }
  void writeSidecar(const std::string& mapType, const std::string& more) const {
    scratch_.write(
        "s_contrast-a_stat-effect_statmap.json",
        R"({"MapType": ")" + mapType + R"(", "Reference": "V1", "Condition": "faces")" + more + "}");
  }
  ShownMap shown(double q = 0.05) const { return inspect::shownMapOfImage(path(), q, MapColours::kReadable); }
  std::string refusal(double q = 0.05, MapColours colours = MapColours::kReadable) const {
    return reasonOf([&] { return inspect::shownMapOfImage(path(), q, colours); });
  }

  Scratch scratch_;
  formats::ImageHeader header_;
  std::vector<float> values_ = {0, 5, -6, 7, NAN, -9.5F};
};

TEST_F(StatisticMap, ShowsTheImageFromTheThresholdOfTheSidecarOn) {
  const ShownMap map = shown();
  EXPECT_EQ(map.file, "s_contrast-a_stat-effect_statmap");
  EXPECT_EQ(map.picture.map[5], -9.5F);
  EXPECT_TRUE(map.picture.size == header_.size);
  EXPECT_EQ(map.picture.affine, header_.affine.m);
  EXPECT_EQ(map.picture.lower, 4.5F);
  EXPECT_EQ(map.picture.upper, 13.5F);
  EXPECT_EQ(map.picture.title, "faces: DTAV");
  EXPECT_EQ(map.reference, "V1");
  EXPECT_EQ(map.picture.caption, "false discovery rate q = 0.05: threshold 4.5");
}

TEST_F(StatisticMap, AnotherQHasItsOwnThreshold) {
  EXPECT_EQ(shown(0.1).picture.lower, 2.0F);
}

TEST_F(StatisticMap, NothingIsShownWhereNoVoxelSurvives) {
  const ShownMap map = shown(0.01);
  EXPECT_EQ(map.picture.lower, std::numeric_limits<float>::infinity());
  EXPECT_EQ(map.picture.caption, "false discovery rate q = 0.01: no voxel survives");
}

TEST_F(StatisticMap, DifferencesAloneHaveColoursForNegativeValues) {
  for (const std::string type : {"DTAV", "DTAV_IT", "DTAV_RC"}) {
    writeSidecar(type, kThresholds);
    EXPECT_EQ(shown().picture.positive, render::warmScale());
    EXPECT_EQ(shown().picture.negative, render::coldScale()) << type;
  }
  for (const std::string type : {"REF2VOX", "VOX2REF", "INST"}) {
    writeSidecar(type, kThresholds);
    EXPECT_EQ(shown().picture.positive, render::warmScale());
    EXPECT_TRUE(shown().picture.negative.empty()) << type;
  }
}

TEST_F(StatisticMap, InstantaneousMapsHaveFullColourAtFiveTimesTheThreshold) {
  writeSidecar("INST", kThresholds);
  EXPECT_EQ(shown().picture.upper, 22.5F);
}

TEST_F(StatisticMap, AMapWithoutThresholdsIsShownWhole) {
  writeSidecar("DTAV_RC", "");
  EXPECT_EQ(shown().picture.lower, 0.0F);
  EXPECT_EQ(shown().picture.upper, 9.5F);
  EXPECT_EQ(shown().picture.caption, "without thresholds: every value but 0 is shown");
}

TEST_F(StatisticMap, RefusesAnUnknownQ) {
  EXPECT_EQ(refusal(0.2), "the map has no threshold for q = 0.2. It has: q = 0.01, 0.05, 0.1.");
}

TEST_F(StatisticMap, RefusesAnImageWithoutItsSidecar) {
  const std::string json = scratch_.file("s_contrast-a_stat-effect_statmap.json");
  std::filesystem::remove(json);
  EXPECT_EQ(refusal(),
            "its sidecar " + json +
                " is missing, which has the thresholds. Keep both files together, or give the map set "
                "(.tav).");
}

TEST_F(StatisticMap, RefusesPValuesAndNamesTheEffectMap) {
  writeSidecar("DTAV", R"(, "StatisticFile": "effect.nii.gz")");
  EXPECT_EQ(refusal(), "holds p-values, and pictures show effects. Draw the effect map: effect.nii.gz.");
}

TEST_F(StatisticMap, TakesAMapThatIsCutWhereItPasses) {
  writeSidecar("DTAV", std::string(R"(, "StatisticFile": "effect.nii.gz")") + kThresholds);
  EXPECT_EQ(shown().picture.lower, 4.5F);
}

TEST_F(StatisticMap, RefusesASidecarOfAnotherKind) {
  scratch_.write("s_contrast-a_stat-effect_statmap.json", R"({"Description": "of another program"})");
  EXPECT_EQ(refusal(),
            "this is no sidecar of a map that `tavmap run` or `tavmap bids` wrote. Give one of their "
            "*_stat-effect_statmap.nii.gz, or the map set (.tav).");
}

TEST_F(StatisticMap, RefusesColoursThatItDoesNotKeep) {
  EXPECT_EQ(refusal(0.05, MapColours::kStored),
            "the image keeps no colours of its own. Leave out --colours plugin, or give the map set (.tav).");
}

TEST_F(StatisticMap, ARegionThatIsNotTheReferenceIsNamedAsWhatIsOutlined) {
  formats::writeImage(scratch_.file("t1.nii"), {header_, std::vector<float>(6, 100)});
  formats::LabelImage labels{header_, {0, 0, 0, 0, 1, 0}};
  labels.header.dataType = formats::DataType::kUint8;
  formats::writeLabelImage(scratch_.file("dseg.nii"), labels);
  scratch_.write("dseg.tsv", "index\tname\n1\tV2\n");
  inspect::PictureOptions options;
  options.maps = {path()};
  options.folder = scratch_.file("p");
  options.anatomy = scratch_.file("t1.nii");
  options.labels = scratch_.file("dseg.nii");
  options.region = "V2";
  ShownMap map = shown();
  map.picture.anatomy.assign(6, 100);
  map.picture.reference = {0, 0, 0, 0, 1, 0};
  map.picture.title = "faces: DTAV   reference: V1   outlined: V2";
  EXPECT_EQ(contentOf(inspect::drawMaps(options)[0]), render::renderPng(map.picture));
}

TEST_F(StatisticMap, SeveralFilesArePicturedInTheirOrderOnTheirGridAlone) {
  formats::writeImage(scratch_.file("t1.nii"), {header_, std::vector<float>(6, 100)});
  formats::writeImage(scratch_.file("b_statmap.nii"), {header_, values_});
  scratch_.write("b_statmap.json", contentOf(scratch_.file("s_contrast-a_stat-effect_statmap.json")));
  inspect::PictureOptions options;
  options.maps = {scratch_.file("b_statmap.nii"), path()};
  options.folder = scratch_.file("p");
  options.anatomy = scratch_.file("t1.nii");
  const auto files = inspect::drawMaps(options);
  EXPECT_EQ(files, (std::vector<std::string>{scratch_.file("p/b_statmap.png"),
                                             scratch_.file("p/s_contrast-a_stat-effect_statmap.png")}));
  ShownMap map = shown();
  map.picture.anatomy.assign(6, 100);
  map.picture.title = "faces: DTAV   reference: V1";
  EXPECT_EQ(contentOf(files[1]), render::renderPng(map.picture));
  header_.affine.at(0, 3) = 30;  // the same size elsewhere
  formats::writeImage(scratch_.file("t1.nii"), {header_, std::vector<float>(6, 100)});
  EXPECT_THROW((void)inspect::drawMaps(options), formats::FileError);
}

}  // namespace
