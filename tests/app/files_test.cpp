// convert, info and export as a user runs them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "formats/json_file.h"
#include "formats/map_set.h"
#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "tests/fakes/vtc_file.h"
#include "tests/formats/sample_map_set.h"
#include "tests/support/program.h"
#include "tests/support/scratch.h"

namespace {

using testing::HasSubstr;

const std::string kExample = APP_TEST_EXAMPLES "/oneback-small/";

formats::Json infoOf(const Scratch& folder, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "info");
  arguments.push_back("--json");
  const auto run = tavmap(arguments, folder.path());
  EXPECT_EQ(run.exitCode, 0) << run.err;
  return formats::parseJson(run.out, "info");
}

TEST(Version, NamesTheKernelInUse) {
  const Scratch folder;
  const auto run = tavmap({"--version"}, folder.path());
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out,
              testing::MatchesRegex("tavmap [0-9.]+, kernel (reference|scalar|baseline|avx2|avx512)\n"));
}

TEST(ConvertCommand, ImportsARealRunAndGivesItBack) {
  const Scratch folder;
  auto run =
      tavmap({"convert", kExample + "bold_small.nii.gz", "run.vtc", "--mask", kExample + "mask_small.nii.gz"},
             folder.path());
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out,
            "run.vtc: 24 x 32 x 35 voxels, 156 volumes, TR 2000 ms\n"
            "14478 of 26880 voxels exceed the inclusion threshold of 100\n");
  run = tavmap({"convert", "run.vtc", "back.nii.gz"}, folder.path());
  EXPECT_EQ(run.out, "back.nii.gz: written\n");
  const auto before = formats::readVolume(kExample + "bold_small.nii.gz", 100);
  const auto mask = formats::readImage(kExample + "mask_small.nii.gz");
  const auto after = formats::readVolume(folder.file("back.nii.gz"), 100);
  for (std::size_t i = 0; i < mask.values.size(); ++i) {
    ASSERT_EQ(after.values[i], mask.values[i] != 0 ? before.values[i] : 0.0F) << i;
  }
}

TEST(ConvertCommand, RefusesWhatItCannotDo) {
  const Scratch folder;
  auto run = tavmap({"convert", "a.nii", "b.nii"}, folder.path());
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err, "tavmap: convert needs one .vtc and one .nii or .nii.gz file, not a.nii and b.nii\n");
  run = tavmap({"convert", "a.vtc", "b.nii", "--tr", "5"}, folder.path());
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err,
            "tavmap: --mask, --type, --tr, --threshold and --skip apply only to the conversion into a VTC\n");
  run = tavmap({"convert", "none.nii.gz", "b.vtc"}, folder.path());
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err,
            "tavmap: none.nii.gz: cannot open the file (No such file or directory). Check the path and its "
            "permissions.\n");
  run = tavmap({"convert", kExample + "bold_small.nii.gz", "b.vtc", "--type", "int9"}, folder.path());
  EXPECT_EQ(run.exitCode, 2);
}

TEST(ConvertCommand, FailsWithOneWhereItMayNotWrite) {
  const Scratch folder;
  const auto run = tavmap({"convert", kExample + "bold_small.nii.gz", "no/folder/b.vtc"}, folder.path());
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("no/folder/b.vtc"));
  EXPECT_THAT(run.err, HasSubstr("Create the folder first."));
}

TEST(ConvertCommand, SaysWhereAVtcWithoutSidecarIsTakenToLie) {
  const Scratch folder;
  const fakes::VtcSpec spec = fakes::cellGrid(2, 2, 2, 3);
  fakes::writeVtc(folder.file("a.vtc"), spec, std::vector<float>(24, 7));
  EXPECT_EQ(tavmap({"convert", "a.vtc", "a.nii"}, folder.path()).out,
            "a.nii: written (there is no a.vtc.json, so its voxels are taken to lie in Talairach space)\n");
}

TEST(InfoCommand, DescribesMapsWithThresholdsPeaksAndRegions) {
  const Scratch folder;
  formats::saveMapSet(folder.file("a.tav"), formats_test::sampleMapSet());
  formats::LabelImage labels;
  labels.header.size = {3, 2, 2};
  labels.header.dataType = formats::DataType::kInt16;
  labels.header.affine = labels.header.qform = formats_test::sampleMapSet().affine;
  labels.header.sformCode = labels.header.qformCode = 3;
  labels.labels = {0, 4, 0, 0, 0, 0, 0, 9, 0, 0, 0, 0};
  formats::writeLabelImage(folder.file("dseg.nii"), labels);
  folder.write("dseg.tsv", "index\tname\n9\tthe ninth\n");
  const auto json = infoOf(folder, {"a.tav", "--labels", "dseg.nii"});
  EXPECT_EQ(json["kind"], "map set");
  const auto& first = json["maps"][0];
  EXPECT_EQ(first["name"], "faces: Ref2Vox");
  EXPECT_EQ(first["voxels_not_zero"], 4);
  EXPECT_EQ(first["thresholds"][0]["name"], "thres q=0.050");
  EXPECT_EQ(first["thresholds"][0]["voxels_reaching_it"], 3);
  EXPECT_TRUE(first["thresholds"][1]["value"].is_null());
  EXPECT_EQ(first["thresholds"][1]["voxels_reaching_it"], 0);
  EXPECT_EQ(first["peak"]["voxel"], (formats::Json{1, 0, 1}));
  EXPECT_EQ(first["peak"]["mm"], (formats::Json{66.0, 68.0, 76.0}));
  EXPECT_EQ(first["peak"]["region"], "the ninth");
  EXPECT_EQ(json["maps"][1]["peak"]["value"], -0.5);
  EXPECT_EQ(json["maps"][1]["peak"]["region"], "label-4");
}

TEST(InfoCommand, DescribesEveryKindOfFile) {
  const Scratch folder;
  const auto series = infoOf(folder, {kExample + "bold_small.nii.gz"});
  EXPECT_EQ(series["kind"], "time series");
  EXPECT_EQ(series["volumes"], 156);
  EXPECT_EQ(series["tr_ms"], 2000.0);
  const auto labels = infoOf(folder, {kExample + "dseg_small.nii.gz"});
  EXPECT_EQ(labels["kind"], "label image");
  EXPECT_EQ(labels["regions"].size(), 116U);
  const auto events = infoOf(folder, {kExample + "events.tsv"});
  EXPECT_EQ(events["kind"], "events table");
  EXPECT_EQ(events["conditions"][0]["intervals_ms"][0], (formats::Json{12028, 27923}));
  EXPECT_EQ(infoOf(folder, {kExample + "dseg_small.tsv"})["kind"], "label table");
  fakes::writeVtc(folder.file("a.vtc"), fakes::cellGrid(2, 2, 2, 3), std::vector<float>(24, 7));
  EXPECT_EQ(infoOf(folder, {"a.vtc"})["kind"], "VTC");
  folder.write("v.json", R"({"vois": [{"name": "A", "voxels": [[0, 0, 0]]}]})");
  EXPECT_EQ(infoOf(folder, {"v.json"})["regions"][0]["voxels"], 1);
}

TEST(InfoCommand, ReadsWellAsText) {
  const Scratch folder;
  folder.write("p.prt", "condition\tfirst_volume\tlast_volume\nrest\t1\t3\nrest\t11\t20\n");
  EXPECT_EQ(tavmap({"info", "p.prt"}, folder.path()).out,
            "file: p.prt\n"
            "kind: protocol in volumes\n"
            "conditions:\n"
            "  - name: rest\n"
            "    intervals volumes:\n"
            "      - 1, 3\n"
            "      - 11, 20\n");
}

TEST(InfoCommand, RefusesAnUnknownEnding) {
  const Scratch folder;
  const auto run = tavmap({"info", "a.xyz"}, folder.path());
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err,
            "tavmap: a.xyz: the ending of its name is not known here. Give a .vtc, .nii, .nii.gz, .tav, "
            ".tsv, .prt, .xml or .json file.\n");
}

TEST(ExportCommand, WritesOneImageAndOneSidecarPerMap) {
  const Scratch folder;
  formats::MapSet set = formats_test::sampleMapSet();
  set.maps.push_back(set.maps[0]);  // a name that comes twice
  formats::saveMapSet(folder.file("a.tav"), set);
  const auto run = tavmap({"export", "a.tav", "out/maps"}, folder.path());
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out,
            "out/maps/a_faces-Ref2Vox.nii.gz: faces: Ref2Vox\n"
            "out/maps/a_faces-dTAV.nii.gz: faces: dTAV\n"
            "out/maps/a_faces-Ref2Vox-2.nii.gz: faces: Ref2Vox\n");
  const auto image = formats::readImage(folder.file("out/maps/a_faces-Ref2Vox.nii.gz"));
  EXPECT_EQ(image.values, set.maps[0].values);
  EXPECT_EQ(image.header.sformCode, 3);
  const auto sidecar = formats::parseJson(contentOf(folder.file("out/maps/a_faces-Ref2Vox.json")), "");
  EXPECT_EQ(sidecar["Description"], "faces: Ref2Vox");
  EXPECT_EQ(sidecar["Sources"][0], "a.tav");
  EXPECT_TRUE(sidecar["Thresholds"]["thres q=0.010"].is_null());
  EXPECT_EQ(sidecar["PositiveColors"][0], "#400000");
}

TEST(PictureCommand, TakesSeveralFilesAndRefusesTheContradictionsOfItsOptions) {
  const Scratch folder;
  formats::saveMapSet(folder.file("a.tav"), formats_test::sampleMapSet());
  formats::saveMapSet(folder.file("b.tav"), formats_test::sampleMapSet());
  formats::ImageHeader header;
  header.size = {3, 2, 2};
  header.sformCode = 1;
  formats::writeImage(folder.file("t1.nii"), {header, std::vector<float>(12, 1)});
  auto run =
      tavmap({"picture", "a.tav", "b.tav", "p", "--anatomy", "t1.nii", "--colours", "plugin"}, folder.path());
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out,
            "p/a_faces_Ref2Vox.png\np/a_faces_dTAV.png\np/b_faces_Ref2Vox.png\np/b_faces_dTAV.png\n");
  const std::string stored = contentOf(folder.file("p/a_faces_dTAV.png"));
  run = tavmap({"picture", "--anatomy", "t1.nii", "a.tav", "p"}, folder.path());
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_NE(contentOf(folder.file("p/a_faces_dTAV.png")), stored);
  EXPECT_EQ(tavmap({"picture", "a.tav", "--anatomy", "t1.nii"}, folder.path()).exitCode, 2);
  EXPECT_EQ(
      tavmap({"picture", "a.tav", "p", "--anatomy", "t1.nii", "--colours", "grey"}, folder.path()).exitCode,
      2);
  run = tavmap({"picture", "a.tav", "p", "--anatomy", "t1.nii", "--region", "V1"}, folder.path());
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("--labels and --region belong together"));
}

}  // namespace
