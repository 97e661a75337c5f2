#include "prepare/region_files.h"

#include <gtest/gtest.h>

#include "formats/nifti_writer.h"
#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

class RegionFiles : public ::testing::Test {
 protected:
  RegionFiles() {
    request_.title = "r.toml";
    request_.runs.resize(1);
    request_.runs[0].bold = "sub-01_task-x_space-MNI_bold.nii.gz";
    header_.size = {3, 2, 1};
    for (int axis = 0; axis < 3; ++axis) header_.affine.at(axis, axis) = 2;
    header_.sformCode = 1;
  }
  std::filesystem::path image(const std::string& name, const std::vector<float>& values) const {
    formats::ImageHeader header = header_;
    header.dataType = formats::DataType::kFloat32;
    formats::writeImage(scratch_.file(name), {header, values});
    return scratch_.file(name);
  }
  RunPlan run(const std::filesystem::path& mask) const {
    RunPlan plan;
    plan.grid = gridOf(header_);
    plan.request.mask = mask;
    return plan;
  }
  RegionSpace space() const { return {gridOf(header_), {}, true}; }

  Request request_;
  formats::ImageHeader header_;
  Scratch scratch_;
};

// A voxel belongs to the space when every run's mask holds it, whatever the sign of its value.
TEST_F(RegionFiles, TheSpaceIsWhatAllMasksShare) {
  const auto first = image("a.nii", {1, 1, 0, 1, -1, 0}), second = image("b.nii", {1, 0, 1, 2, 1, 0});
  EXPECT_EQ(regionSpace({run(first), run({}), run(second)}, Method::kCalibrated).mask,
            (std::vector<bool>{true, false, false, true, true, false}));
  EXPECT_TRUE(regionSpace({run({}), run({})}, Method::kCalibrated).mask.empty());
}

TEST_F(RegionFiles, OnlyThePluginAveragesOutsideTheMask) {
  EXPECT_TRUE(regionSpace({run({})}, Method::kCalibrated).insideMaskOnly);
  EXPECT_FALSE(regionSpace({run({})}, Method::kPlugin).insideMaskOnly);
}

TEST_F(RegionFiles, MaskReferencesTakeNegativeValuesToo) {
  ReferenceRequest mask;
  mask.kind = ReferenceKind::kMask;
  mask.name = "m";
  mask.image = image("m.nii", {0, -2, 0.5F, 0, 0, 1});
  request_.references = {mask};
  const auto regions = readRegions(request_, space());
  ASSERT_EQ(regions.size(), 1U);
  EXPECT_EQ(regions[0].coordinates, (std::vector<std::int32_t>{1, 0, 0, 2, 0, 0, 2, 1, 0}));
}

TEST_F(RegionFiles, TwoReferencesOfOneNameAreRefused) {
  ReferenceRequest voxel;
  voxel.kind = ReferenceKind::kVoxels;
  voxel.name = "v";
  voxel.voxels = {{0, 0, 0}};
  voxel.line = 7;
  request_.references = {voxel, voxel};
  EXPECT_EQ(messageOf<InputError>([&] { return readRegions(request_, space()); }),
            "r.toml:7: two references are named 'v'; their results would overwrite each other, give one "
            "another 'name'");
}

TEST_F(RegionFiles, NotesWhenNamesStateDifferentSpaces) {
  ReferenceRequest labels;
  labels.kind = ReferenceKind::kLabels;
  labels.labels = {"1"};
  labels.image = image("atlas-x_space-T1w_dseg.nii", {0, 1, 1, 0, 0, 0});
  request_.references = {labels};
  const auto regions = readRegions(request_, space());
  ASSERT_EQ(regions[0].notes.size(), 1U);
  EXPECT_EQ(
      regions[0].notes[0],
      "atlas-x_space-T1w_dseg.nii names space 'T1w', the runs 'MNI'; regions may lie in the wrong place");
  request_.runs[0].bold = "sub-01_task-x_space-T1w_bold.nii.gz";
  EXPECT_TRUE(readRegions(request_, space())[0].notes.empty());
}

TEST_F(RegionFiles, EveryRegionNotesThatOneNameStatesNoSpace) {
  ReferenceRequest labels;
  labels.kind = ReferenceKind::kLabels;
  labels.labels = {"1", "2"};
  labels.image = image("dseg.nii", {0, 1, 2, 0, 0, 0});
  request_.references = {labels};
  const auto regions = readRegions(request_, space());
  ASSERT_EQ(regions.size(), 2U);
  for (const Region& region : regions) {
    EXPECT_EQ(region.notes, (std::vector<std::string>{
                                "dseg.nii has no 'space-' in its name, but 'MNI' in that of the runs: "
                                "nothing says that both lie in the same space; make sure, or regions "
                                "lie in the wrong place"}));
  }
  request_.runs[0].bold = "bold.nii";
  EXPECT_TRUE(readRegions(request_, space())[0].notes.empty());
  request_.references[0].image = image("atlas-x_space-T1w_dseg.nii", {0, 1, 2, 0, 0, 0});
  EXPECT_EQ(readRegions(request_, space())[0].notes[0],
            "the runs have no 'space-' in their name, but 'T1w' in that of atlas-x_space-T1w_dseg.nii: "
            "nothing says "
            "that both lie in the same space; make sure, or regions lie in the wrong place");
}

TEST_F(RegionFiles, NamesComeFromTheTableThatWasAskedFor) {
  ReferenceRequest labels;
  labels.kind = ReferenceKind::kLabels;
  labels.allLabels = true;
  labels.image = image("dseg.nii", {0, 1, 2, 0, 0, 0});
  scratch_.write("dseg.tsv", "index\tname\n1\tbeside\n");
  request_.references = {labels};
  EXPECT_EQ(readRegions(request_, space())[0].name, "beside");
  request_.references[0].table = scratch_.write("other.tsv", "index\tname\n1\tasked\n2\tfor\n");
  const auto regions = readRegions(request_, space());
  EXPECT_EQ(regions[0].name, "asked");
  EXPECT_EQ(regions[1].name, "for");
}

}  // namespace
}  // namespace study
