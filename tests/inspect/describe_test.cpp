// What is said of each kind of file. No two numbers of a file are equal, so that none can stand for another.
#include "inspect/describe.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "formats/nifti_writer.h"
#include "formats/vtc_sidecar.h"
#include "tests/fakes/vtc_file.h"
#include "tests/formats/sample_map_set.h"
#include "tests/support/scratch.h"

namespace {

using formats::Json;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

class Describe : public testing::Test {
 protected:
  Json of(const std::string& name, const inspect::DescribeOptions& options = {}) const {
    return inspect::describeFile(scratch_.file(name), options);
  }
  // 2 x 3 x 4 voxels of 2, 3 and 4 mm.
  static formats::ImageHeader header(int volumes = 1) {
    formats::ImageHeader header;
    header.size = {2, 3, 4};
    header.volumes = volumes;
    header.series = volumes > 1;
    for (int axis = 0; axis < 3; ++axis) header.affine.at(axis, axis) = 2 + axis;
    header.affine.at(2, 3) = -7;
    header.qform = header.affine;
    header.sformCode = 4, header.qformCode = 1;
    return header;
  }
  // Of the box (10, 12), (20, 26), (30, 42) at resolution 2: 1 x 3 x 6 cells.
  void writeVtc(std::int16_t dataType) const {
    fakes::VtcSpec spec;
    spec.sourceName = "run.nii";
    spec.nrOfLinkedProtocols = 0;
    spec.dataType = dataType;
    spec.nrOfVolumes = 5;
    spec.resolution = 2;
    spec.xStart = 10, spec.xEnd = 12, spec.yStart = 20, spec.yEnd = 26, spec.zStart = 30, spec.zEnd = 42;
    spec.tr = 1750;
    fakes::writeVtc(scratch_.file("a.vtc"), spec, std::vector<float>(18 * 5, 9));
  }
  Scratch scratch_;
};

TEST_F(Describe, ASeriesByAllItsVolumes) {
  formats::ImageHeader image = header(3);
  image.trMs = 2250;
  std::vector<float> values(3 * image.size.voxels(), 5);
  values[2] = kNan;
  values[30] = 7.5F;
  values.back() = -1.25F;
  formats::NiftiWriter writer(scratch_.file("a.nii"), image);
  writer.writeValues(values.data(), values.size());
  writer.commit();
  const Json json = of("a.nii");
  EXPECT_EQ(json["kind"], "time series");
  EXPECT_EQ(json["voxels"], (Json{2, 3, 4}));
  EXPECT_EQ(json["volumes"], 3);
  EXPECT_EQ(json["tr_ms"], 2250);
  EXPECT_EQ(json["data_type"], "float32");
  EXPECT_EQ(json["sform_code"], 4);
  EXPECT_EQ(json["qform_code"], 1);
  EXPECT_EQ(json["voxel_size_mm"], (Json{2, 3, 4}));
  EXPECT_EQ(json["affine"][2], (Json{0, 0, 4, -7}));
  EXPECT_EQ(json["value_range"], (Json{-1.25, 7.5}));
  EXPECT_EQ(json["values_not_finite"], 1);
}

TEST_F(Describe, ASeriesThatDoesNotSayItsTrHasNone) {
  formats::ImageHeader image = header(2);
  image.trMs = 0;
  const std::vector<float> values(2 * image.size.voxels(), 5);
  formats::NiftiWriter writer(scratch_.file("a.nii"), image);
  writer.writeValues(values.data(), values.size());
  writer.commit();
  EXPECT_TRUE(of("a.nii").at("tr_ms").is_null());
}

TEST_F(Describe, ScalingWhereThereIsOne) {
  formats::writeImage(scratch_.file("a.nii"), {header(), std::vector<float>(24, 5)});
  const std::string plain = contentOf(scratch_.file("a.nii"));
  const auto scaled = [&](float slope, float intercept) {
    std::string bytes = plain;
    std::memcpy(&bytes[112], &slope, 4);  // scl_slope and scl_inter of NIfTI-1
    std::memcpy(&bytes[116], &intercept, 4);
    scratch_.write("a.nii", bytes);
    return of("a.nii").value("slope_and_intercept", Json());
  };
  EXPECT_EQ(scaled(0.5, -3), (Json{0.5, -3.0}));
  EXPECT_EQ(scaled(0.5, 0), (Json{0.5, 0.0}));
  EXPECT_EQ(scaled(1, -3), (Json{1.0, -3.0}));
  EXPECT_TRUE(scaled(1, 0).is_null());
}

TEST_F(Describe, AnImageOfLabelsWithItsRegions) {
  formats::LabelImage labels{header(), std::vector<std::int32_t>(24, 0)};
  labels.header.dataType = formats::DataType::kInt16;
  labels.labels[3] = labels.labels[4] = 6;
  labels.labels[9] = 8;
  formats::writeLabelImage(scratch_.file("a_dseg.nii"), labels);
  scratch_.write("a_dseg.tsv", "index\tname\n6\tV1\n11\tnowhere\n");
  const Json json = of("a_dseg.nii");
  EXPECT_EQ(json["kind"], "label image");
  EXPECT_FALSE(json.contains("volumes"));
  EXPECT_EQ(json["regions"][0], (Json{{"name", "V1"}, {"voxels", 2}}));
  EXPECT_EQ(json["labels_without_name"], Json::array({8}));
  EXPECT_EQ(json["names_without_voxels"], Json::array({"nowhere"}));
}

TEST_F(Describe, AVtcAndItsSidecar) {
  writeVtc(2);
  formats::VtcSidecar sidecar;
  sidecar.affine = header().affine;
  sidecar.mask = "mask.nii";
  sidecar.shift = 123;
  formats::writeVtcSidecar(scratch_.file("a.vtc"), sidecar);
  const Json json = of("a.vtc");
  EXPECT_EQ(json["voxels"], (Json{1, 3, 6}));
  EXPECT_EQ(json["volumes"], 5);
  EXPECT_EQ(json["tr_ms"], 1750);
  EXPECT_EQ(json["data_type"], "float32");
  EXPECT_EQ(json["box"]["x"], (Json{10, 12}));
  EXPECT_EQ(json["box"]["y"], (Json{20, 26}));
  EXPECT_EQ(json["box"]["z"], (Json{30, 42}));
  EXPECT_EQ(json["resolution"], 2);
  EXPECT_EQ(json["source"], "run.nii");
  EXPECT_EQ(json["mask"], "mask.nii");
  EXPECT_EQ(json["shift"], 123);
  EXPECT_EQ(json["voxel_size_mm"], (Json{2, 3, 4}));
  EXPECT_FALSE(json.contains("place"));
}

TEST_F(Describe, AVtcOfWholeNumbersInTalairachSpace) {
  writeVtc(1);
  const Json json = of("a.vtc");
  EXPECT_EQ(json["data_type"], "uint16");
  EXPECT_EQ(json["place"], "Talairach space (there is no " + scratch_.file("a.vtc") + ".json)");
  EXPECT_EQ(json["affine"][0], (Json{0, 0, -2, 98}));
  EXPECT_FALSE(json.contains("mask"));
}

// A grid whose three sizes differ, and a peak off every axis.
TEST_F(Describe, ThePlaceOfAPeak) {
  formats::MapSet set = formats_test::sampleMapSet();
  set.xStart = 0, set.xEnd = 6, set.yStart = 0, set.yEnd = 9, set.zStart = 0, set.zEnd = 12;
  set.affine = header().affine;
  for (formats::Map& map : set.maps) {
    map.values.assign(24, 0.125F);
    map.values[(3 * 3 + 2) * 2 + 1] = -0.75F;
  }
  formats::saveMapSet(scratch_.file("a.tav"), set);
  formats::LabelImage labels{header(), std::vector<std::int32_t>(24, 0)};
  labels.header.dataType = formats::DataType::kInt16;
  labels.labels[(3 * 3 + 2) * 2 + 1] = 6;
  formats::writeLabelImage(scratch_.file("atlas.nii"), labels);
  inspect::DescribeOptions options;
  options.labelsPath = scratch_.file("atlas.nii");
  const Json map = of("a.tav", options)["maps"][0];
  EXPECT_EQ(map["value_range"], (Json{-0.75, 0.125}));
  EXPECT_EQ(map["peak"]["value"], -0.75);
  EXPECT_EQ(map["peak"]["voxel"], (Json{1, 2, 3}));
  EXPECT_EQ(map["peak"]["mm"], (Json{2, 6, 5}));
  EXPECT_EQ(map["peak"]["region"], "label-6");
  EXPECT_FALSE(of("a.tav")["maps"][0]["peak"].contains("region"));
}

TEST_F(Describe, ProtocolsInTheirOwnUnit) {
  scratch_.write("v.tsv", "condition\tfirst_volume\tlast_volume\nrest\t2\t5\n");
  scratch_.write("e.tsv", "onset\tduration\ttrial_type\n1\t2\tface\n6\t1\tface\n");
  const Json volumes = of("v.tsv");
  EXPECT_EQ(volumes["kind"], "protocol in volumes");
  EXPECT_EQ(volumes["conditions"][0]["intervals_volumes"], Json::array({{2, 5}}));
  EXPECT_FALSE(volumes.contains("joined_with_tr_ms"));
  inspect::DescribeOptions options;
  options.trMs = 4000;
  const Json events = of("e.tsv", options);
  EXPECT_EQ(events["joined_with_tr_ms"], 4000);
  EXPECT_EQ(events["conditions"][0]["intervals_ms"], Json::array({{1000, 7000}}));
}

}  // namespace
