#include "report/group_view.h"

#include <gtest/gtest.h>

#include <cmath>

#include "formats/nifti_writer.h"
#include "group/group_names.h"
#include "tests/support/scratch.h"

namespace {

using namespace report;
namespace image = study::group_image;

using Values = std::vector<float>;
using Flags = std::vector<std::uint8_t>;

// Three voxels, stored from right to left.
struct GroupViewTest : testing::Test {
  Scratch scratch;
  GroupOutputs outputs;

  GroupViewTest() {
    outputs.outDir = scratch.folder();
    outputs.cells.resize(1);
    std::filesystem::create_directories(outputs.folder());
    record().inference.level = 0.05;
    addImage(image::kT, {std::nanf(""), -4, 3});
  }
  [[nodiscard]] study::GroupTestRecord& record() { return outputs.cells[0].record; }
  static formats::ImageHeader header(int voxels = 3) {
    formats::ImageHeader header;
    header.size = {voxels, 1, 1};
    header.affine.m = {-2, 0, 0, 4, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
    header.sformCode = 1;
    return header;
  }
  void addImage(const char* what, const Values& values) {
    const std::string file = std::string(what) + ".nii";
    formats::writeImage(outputs.path(file), {header(), values});
    record().images.push_back({what, file});
  }
  void addParticipant(const std::string& name, const char* end, const Values& values) {
    const std::string stem = "sub-" + name + "/func/sub-" + name + "_task-x";
    const std::string file = scratch.write(stem + end).string();
    formats::writeImage(file, {header(static_cast<int>(values.size())), values});
    study::GroupRow row;
    row.images = {stem + "_seed-V1_contrast-facesdTAV_stat-effect_statmap.nii.gz"};
    record().rows.push_back(row);
  }
  [[nodiscard]] GroupView view() const {
    return readGroupView(outputs, PageGrid(header()), outputs.cells[0]);
  }
  [[nodiscard]] GroupUnderlay underlay() const { return readGroupUnderlay(outputs, PageGrid(header())); }
};

TEST_F(GroupViewTest, IsUprightAndPassesUpToTheLevel) {
  addImage(image::kPTfce, {0.5, 0.05F, 0.0501F});
  addImage(image::kPFwe, {0, 0, 0});
  addImage(image::kPMass, {0.01F, 0.06F, 0.05F});
  const GroupView view = this->view();
  EXPECT_EQ(view.t[0], 3);
  EXPECT_EQ(view.t[1], -4);
  EXPECT_TRUE(std::isnan(view.t[2]));
  EXPECT_EQ(view.passes, (Flags{0, 1, 0}));
  EXPECT_EQ(view.clusters, (Flags{1, 0, 1}));
}

TEST_F(GroupViewTest, PassesByTheMaximumWhereNothingWasEnhanced) {
  addImage(image::kPFwe, {0.5, 0.2F, 0.01F});
  EXPECT_EQ(view().passes, (Flags{1, 0, 0}));
  EXPECT_EQ(view().clusters, (Flags{0, 0, 0}));
}

TEST_F(GroupViewTest, AnotherLevelLetsOthersPass) {
  record().inference.level = 0.2;
  addImage(image::kPFwe, {0.5, 0.125F, 0.01F});
  EXPECT_EQ(view().passes, (Flags{1, 1, 0}));
}

TEST_F(GroupViewTest, ColoursBeginAtTheSmallestThatPassesAndEndAtTheLargest) {
  addImage(image::kPTfce, {0.01F, 0.01F, 0.01F});
  const OverlayScale scale = view().scale;
  EXPECT_TRUE(scale.hasSign);
  EXPECT_EQ(scale.threshold, 3);
  EXPECT_EQ(scale.full, 4);
  record().inference.level = 0.001;
  EXPECT_FALSE(view().scale.threshold);
  EXPECT_EQ(view().scale.full, 4);
}

TEST_F(GroupViewTest, WhatFallsShortIsFaintHoweverStrong) {
  addImage(image::kPTfce, {0.5, 0.5, 0.01F});  // 3 passes, -4 does not
  const GroupView view = this->view();
  EXPECT_EQ(view.colour(0).alpha, 255);
  EXPECT_GT(view.colour(1).alpha, 0);
  EXPECT_LT(view.colour(1).alpha, 128);
  EXPECT_EQ(view.colour(2), render::Rgba{});
}

TEST_F(GroupViewTest, LiesOnTheMeanOfEquallyBrightImages) {
  addParticipant("01", "_desc-mean_boldref.nii.gz", {2, 4, 6});
  addParticipant("02", "_desc-mean_boldref.nii.gz", {10, 10, 10});
  addParticipant("03", "_desc-mean_boldref.nii.gz", {9, 9, 9, 9});  // of another grid
  EXPECT_EQ(underlay().values, (Values{1.5, 2, 2.5}));
  EXPECT_EQ(underlay().words, "the mean of 2 mean images");
  EXPECT_EQ(underlay().brightness, 1);
}

TEST_F(GroupViewTest, AnatomiesGoBeforeMeanImages) {
  addParticipant("01", "_desc-mean_boldref.nii.gz", {2, 4, 6});
  addParticipant("01", "_desc-anatomy_T1w.nii.gz", {1, 1, 4});
  addParticipant("02", "_desc-anatomy_T1w.nii.gz", {1, 1, 1});
  EXPECT_EQ(underlay().values, (Values{1.5, 1.5, 3}));
  EXPECT_EQ(underlay().words, "the mean of 2 anatomies");
}

TEST_F(GroupViewTest, WithoutImagesOfTheBrainLiesOnWhatWasTested) {
  EXPECT_EQ(underlay().values, (Values{0, 1, 1}));
  EXPECT_LT(underlay().brightness, 1);
}

}  // namespace
