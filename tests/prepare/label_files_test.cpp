#include "prepare/label_files.h"

#include <fmt/core.h>
#include <gtest/gtest.h>

#include "formats/nifti_writer.h"
#include "prepare/regions.h"
#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

using Labels = std::vector<std::int32_t>;
using NamesByLabel = std::map<std::int32_t, std::string>;

class LabelFiles : public ::testing::Test {
 protected:
  // Volumes of a row of voxels.
  void image(const std::vector<std::vector<float>>& volumes) {
    formats::ImageHeader header;
    header.size = {static_cast<int>(volumes[0].size()), 1, 1};
    header.volumes = static_cast<int>(volumes.size());
    header.series = volumes.size() > 1;
    formats::NiftiWriter writer(scratch_.file("atlas.nii"), header);
    for (const auto& volume : volumes) writer.writeValues(volume.data(), volume.size());
    writer.commit();
    reference_.image = scratch_.file("atlas.nii");
  }
  void table(const std::string& text) { reference_.table = scratch_.write("names.txt", text); }
  LabelVolume read() { return readLabels(reference_, "r.toml:4"); }
  std::string refusal() {
    return messageOf<InputError>([&] { (void)read(); });
  }

  ReferenceRequest reference_;
  Scratch scratch_;
};

TEST_F(LabelFiles, AProbabilityAtlasGivesEachVoxelItsMostProbableLabel) {
  image({{0.6F, 0.2F, 0.4F}, {0.3F, 0.8F, 0.4F}});
  table("<atlas><data><label index=\"0\">A</label><label index=\"1\">B</label></data></atlas>");
  reference_.probability = 0.5;
  const LabelVolume volume = read();
  EXPECT_EQ(volume.labels, (Labels{1, 2, 0}));
  EXPECT_EQ(volume.names, (NamesByLabel{{1, "A"}, {2, "B"}}));
  EXPECT_EQ(volume.rule, "the volume with the largest probability, at least 0.5");
}

TEST_F(LabelFiles, NamesOfVolumesFollowTheOrderOfTheirIndices) {
  image({{60, 20}, {30, 80}});
  table("index\tname\n20\tsecond\n10\tfirst\n0\tbackground\n");
  reference_.probability = 0.5;
  EXPECT_EQ(read().names, (NamesByLabel{{1, "first"}, {2, "second"}}));
  EXPECT_EQ(read().rule,
            "the volume with the largest probability, at least 0.5 (its values taken as per cent)");
}

TEST_F(LabelFiles, AThreeDimensionalProbabilityMapIsAnAtlasOfOne) {
  image({{0.6F, 0.2F, 0.5F}});
  reference_.probability = 0.5;
  EXPECT_EQ(read().labels, (Labels{1, 0, 1}));
}

TEST_F(LabelFiles, ATableOfAnotherAtlasIsRefusedForVolumes) {
  image({{0.6F, 0.2F}, {0.3F, 0.8F}});
  table("index\tname\n1\tA\n");
  reference_.probability = 0.5;
  EXPECT_EQ(refusal(), "r.toml:4: " + reference_.table.string() +
                           " names 1 label (index 0, the background, left out), but " +
                           reference_.image.string() +
                           " has 2 volumes; give the table of this atlas with 'label_table'");
}

TEST_F(LabelFiles, SeveralVolumesAskForAProbability) {
  image({{0.6F, 0.2F}, {0.3F, 0.8F}});
  EXPECT_EQ(refusal(), "r.toml:4: " + reference_.image.string() +
                           " has 2 volumes, as a probability atlas has, but a label image has one; say "
                           "probability = 0.5 in this [[reference]] to take each voxel for the most probable "
                           "label, or give a label image");
}

TEST_F(LabelFiles, ValuesThatAreNotWholeAskForAThresholdOrAProbability) {
  image({{0.25F, 1}});
  EXPECT_EQ(reasonOf([&] { (void)read(); }),
            "it holds 0.25, which is no whole number, so it is no label image. Give a label image "
            "(*_dseg.nii.gz); make one of a probability map by a threshold, or set 'probability' in the "
            "[[reference]] of a request.");
}

class ManyValues : public LabelFiles {
 protected:
  ManyValues() {
    image({{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}});
    table("index\tname\n1\tA\n2\tB\n");
  }
  std::string seen() const {
    return fmt::format(
        "10 of the 12 values in {} have no name in {}: is it a probability map (then say probability = 0.5, "
        "or "
        "threshold it), or the table of another atlas (then give its own with 'label_table')?",
        reference_.image.string(), reference_.table.string());
  }
};

TEST_F(ManyValues, WithoutNamesAreQuestionedWhereTheyAreWanted) {
  reference_.allLabels = true;
  std::string text = seen();
  text.replace(text.find(": is it"), 1, ";");
  EXPECT_EQ(refusal(), "r.toml:4: " + text + " To take it as it is, name the labels");
}

TEST_F(ManyValues, WithoutNamesAreNotedWhereOthersAreWanted) {
  reference_.labels = {"A"};
  const LabelVolume volume = read();
  EXPECT_EQ(volume.question, seen());
  const auto regions = labelRegions(reference_, volume, {volume.grid, {}, true}, "r.toml:4");
  EXPECT_EQ(regions.at(0).notes, std::vector<std::string>{seen()});
}

TEST_F(ManyValues, AreFineWithNamesOrWithoutATable) {
  table("index\tname\n1\tA\n2\tB\n3\tC\n");
  reference_.allLabels = true;
  EXPECT_EQ(read().question, "");  // nine
  reference_.table.clear();
  EXPECT_EQ(read().question, "");
}

TEST_F(ManyValues, AreFineWhereHalfOfThemHaveNames) {
  image({{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20}});
  std::string names = "index\tname\n";
  for (int i = 1; i <= 10; ++i) names += fmt::format("{}\tR{}\n", i, i);
  table(names);
  reference_.allLabels = true;
  EXPECT_EQ(read().question, "");
}

TEST_F(LabelFiles, OfAMaskEveryValueButZeroCounts) {
  image({{0, -2, 0.5F}});
  EXPECT_EQ(readMask(reference_).labels, (Labels{0, 1, 1}));
}

}  // namespace
}  // namespace study
