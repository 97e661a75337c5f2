#include "formats/voi_list.h"

#include <gtest/gtest.h>

#include "formats/nifti_writer.h"
#include "tests/fakes/vtc_file.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using formats::VoiList;
using formats::VoxelIndex;

VoiList parse(const std::string& text) {
  return formats::parseVoiJson(text, "v.json");
}

TEST(VoiJson, ReadsNamesAndVoxels) {
  const VoiList list =
      parse(R"({"talairach": true, "vois": [{"name": "V1", "voxels": [[1, -2, 3], [4, 5, 6]]}]})");
  EXPECT_TRUE(list.talairach);
  ASSERT_EQ(list.vois.size(), 1U);
  EXPECT_EQ(list.vois[0].name, "V1");
  EXPECT_EQ(list.vois[0].voxels, (std::vector<VoxelIndex>{{1, -2, 3}, {4, 5, 6}}));
}

TEST(VoiJson, TakesVoxelIndicesUnlessToldOtherwise) {
  EXPECT_FALSE(parse(R"({"vois": [{"name": "A", "voxels": [[0, 0, 0]]}]})").talairach);
}

struct Wrong {
  const char* text;
  const char* message;
};
class WrongVoiJson : public testing::TestWithParam<Wrong> {};
TEST_P(WrongVoiJson, EndsWithItsMessage) {
  EXPECT_EQ(reasonOf([&] { (void)parse(GetParam().text); }), GetParam().message);
}
INSTANTIATE_TEST_SUITE_P(
    VoiJson, WrongVoiJson,
    testing::Values(
        Wrong{"", "line 1: this is no valid JSON. Correct the text there."},
        Wrong{"{\n\"vois\": [\n}", "line 3: this is no valid JSON. Correct the text there."},
        Wrong{"[]", "an object is expected. Write { ... } there."},
        Wrong{"{}", "\"vois\" is missing. Add \"vois\"."},
        Wrong{R"({"vois": 3})", "vois: a list is expected. Write [ ... ] there."},
        Wrong{R"({"vois": []})", "vois: the list has no regions. Give at least one."},
        Wrong{R"({"VOIs": []})", "\"VOIs\" is not known here. Use only: talairach, vois."},
        Wrong{R"({"talairach": 1, "vois": []})", "talairach: true or false is expected. Write one of them."},
        Wrong{R"({"vois": [{"name": 1, "voxels": []}]})",
              "vois[0].name: a text is expected. Write it in quotation marks."},
        Wrong{R"({"vois": [{"name": "", "voxels": [[1,2,3]]}]})",
              "vois[0].name: the name is empty. Name the region."},
        Wrong{R"({"vois": [{"name": "A"}]})", "vois[0]: \"voxels\" is missing. Add \"voxels\"."},
        Wrong{R"({"vois": [{"name": "A", "voxels": []}]})",
              "vois[0].voxels: the region has no voxels. Give at least one."},
        Wrong{R"({"vois": [{"name": "A", "voxels": [[1, 2]]}]})",
              "vois[0].voxels[0]: a voxel has three coordinates. Write [x, y, z]."},
        Wrong{
            R"({"vois": [{"name": "A", "voxels": [[1, 2, 0.5]]}]})",
            "vois[0].voxels[0][2]: a whole number is expected. Write a whole number of at most 2147483647."},
        Wrong{
            R"({"vois": [{"name": "A", "voxels": [[1, 2, 3e10]]}]})",
            "vois[0].voxels[0][2]: a whole number is expected. Write a whole number of at most 2147483647."},
        Wrong{R"({"vois": [{"name": "A", "voxels": [["1", 2, 3]]}]})",
              "vois[0].voxels[0][0]: a number is expected. Write a number."}));

TEST(VoiJson, RefusesEndlessNesting) {
  EXPECT_EQ(reasonOf([] { (void)parse(std::string(1000000, '[')); }),
            "the JSON text is nested too deeply. Check that it is the right file.");
}

TEST(VoiJson, RefusesNumbersOutOfRange) {
  EXPECT_EQ(reasonOf([] { (void)parse("[1e999]"); }),
            "the JSON text holds a number out of range. Correct the number.");
}

TEST(VoiJson, ComesBackAsWritten) {
  const Scratch folder;
  VoiList list;
  list.talairach = true;
  list.vois = {{"A \"1\"", {{1, 2, 3}, {-4, 5, 6}}}, {"B", {{7, 8, 9}}}};
  formats::writeVoiJson(folder.file("v.json"), list);
  const VoiList again = formats::readVoiJson(folder.file("v.json"));
  EXPECT_TRUE(again.talairach);
  ASSERT_EQ(again.vois.size(), 2U);
  EXPECT_EQ(again.vois[0].name, "A \"1\"");
  EXPECT_EQ(again.vois[0].voxels, list.vois[0].voxels);
  EXPECT_EQ(again.vois[1].voxels, list.vois[1].voxels);
}

formats::LabelImage labels() {
  formats::LabelImage image;
  image.header.size = {3, 2, 2};
  image.header.dataType = formats::DataType::kInt16;
  image.header.sformCode = 1;
  image.labels = {0, 7, 0, 0, 0, 3, 7, 0, 0, 0, 0, 0};
  return image;
}

TEST(LabelVois, AreSortedByIndexAndNamedByTheTable) {
  formats::LabelTable table;
  table.labels = {{7, "seven", std::nullopt}, {3, "three", std::nullopt}};
  const auto result = voisFromLabels(labels(), table);
  ASSERT_EQ(result.list.vois.size(), 2U);
  EXPECT_EQ(result.list.vois[0].name, "three");
  EXPECT_EQ(result.list.vois[0].voxels, (std::vector<VoxelIndex>{{2, 1, 0}}));
  EXPECT_EQ(result.list.vois[1].voxels, (std::vector<VoxelIndex>{{1, 0, 0}, {0, 0, 1}}));
  EXPECT_FALSE(result.list.talairach);
  EXPECT_TRUE(result.unnamed.empty());
  EXPECT_TRUE(result.absent.empty());
}

TEST(LabelVois, TellLabelsWithoutNameAndNamesWithoutVoxels) {
  formats::LabelTable table;
  table.labels = {{3, "three", std::nullopt}, {9, "nine", std::nullopt}};
  const auto result = voisFromLabels(labels(), table);
  EXPECT_EQ(result.unnamed, (std::vector<std::int32_t>{7}));
  EXPECT_EQ(result.list.vois[1].name, "label-7");
  ASSERT_EQ(result.absent.size(), 1U);
  EXPECT_EQ(result.absent[0].name, "nine");
}

TEST(LoadVois, TakesTheTableBesideTheImage) {
  const Scratch folder;
  formats::writeLabelImage(folder.file("x_dseg.nii.gz"), labels());
  folder.write("x_dseg.tsv", "index\tname\n3\tthree\n7\tseven\n");
  folder.write("other.tsv", "index\tname\n3\tdrei\n7\tsieben\n");
  EXPECT_EQ(formats::loadVois(folder.file("x_dseg.nii.gz")).list.vois[1].name, "seven");
  EXPECT_EQ(formats::loadVois(folder.file("x_dseg.nii.gz"), folder.file("other.tsv")).list.vois[1].name,
            "sieben");
}

TEST(LoadVois, TakesAJsonListByItsName) {
  const Scratch folder;
  folder.write("v.json", R"({"vois": [{"name": "A", "voxels": [[0, 0, 0]]}]})");
  EXPECT_EQ(formats::loadVois(folder.file("v.json")).list.vois[0].name, "A");
}

}  // namespace
