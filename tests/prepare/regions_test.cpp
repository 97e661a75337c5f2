#include "prepare/regions.h"

#include <gtest/gtest.h>

#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

using Coordinates = std::vector<std::int32_t>;

// 3 x 2 x 2 voxels of 2 mm; labels 0 to 3.
LabelVolume atlas() {
  LabelVolume image;
  image.grid.size = {3, 2, 2};
  image.grid.affine = formats::Affine{{2, 0, 0, -10, 0, 2, 0, 0, 0, 0, 2, 5, 0, 0, 0, 1}};
  image.labels = {0, 1, 1, 0, 2, 0, 3, 0, 0, 0, 0, 0};
  image.names = {{1, "V1"}, {2, "V2"}, {7, "absent"}};
  image.file = "dseg.nii.gz";
  return image;
}

RegionSpace space() {
  return {atlas().grid, {}, true};
}

ReferenceRequest labels(std::vector<std::string> names) {
  ReferenceRequest request;
  request.labels = std::move(names);
  return request;
}

TEST(Regions, LabelsAreTakenByNameAndByIndex) {
  const auto regions = labelRegions(labels({"V2", "1", "3"}), atlas(), space(), "r.toml:4");
  ASSERT_EQ(regions.size(), 3U);
  EXPECT_EQ(regions[0].coordinates, (Coordinates{1, 1, 0}));
  EXPECT_EQ(regions[1].name, "V1");
  EXPECT_EQ(regions[1].coordinates, (Coordinates{1, 0, 0, 2, 0, 0}));
  EXPECT_EQ(regions[2].name, "label3");
}

TEST(Regions, KnowWhereTheyComeFrom) {
  LabelVolume image = atlas();
  image.table = "dseg.tsv";
  const Region label = labelRegions(labels({"V2"}), image, space(), "r")[0];
  EXPECT_EQ(label.source.image, "dseg.nii.gz");
  EXPECT_EQ(label.source.table, "dseg.tsv");
  EXPECT_EQ(label.source.label, 2);
  EXPECT_EQ(label.source.labelName, "V2");
  EXPECT_EQ(label.source.grid, "3 x 2 x 2 voxels of 2 x 2 x 2 mm");
  EXPECT_FALSE(label.source.isResampled);
  ReferenceRequest all;
  all.allLabels = true;
  EXPECT_EQ(labelRegions(all, image, space(), "r")[2].source.label, 3);
  RegionSpace other = space();
  other.grid.affine.at(0, 3) += 1;
  EXPECT_TRUE(labelRegions(labels({"V2"}), image, other, "r")[0].source.isResampled);
  ReferenceRequest sphere;
  sphere.name = "s";
  sphere.centreMm = {-8, 0, 5};
  sphere.radiusMm = 2;
  EXPECT_EQ(sphereRegion(sphere, space(), "r").source.kind, ReferenceKind::kSphere);
  EXPECT_EQ(sphereRegion(sphere, space(), "r").source.radiusMm, 2);
}

TEST(Regions, UnknownLabelsNameTheNearest) {
  EXPECT_EQ(messageOf<InputError>([] { return labelRegions(labels({"V3"}), atlas(), space(), "r.toml:4"); }),
            "r.toml:4: no label 'V3' in dseg.nii.gz; did you mean 'V1'?");
  EXPECT_EQ(
      messageOf<InputError>([] { return labelRegions(labels({"absent"}), atlas(), space(), "r.toml:4"); }),
      "r.toml:4: reference 'absent' has no voxel in the grid of the runs");
  EXPECT_NE(messageOf<InputError>([] { return labelRegions(labels({"0"}), atlas(), space(), "r"); }), "");
}

TEST(Regions, RepeatedNamesMustBeNamedByIndex) {
  LabelVolume image = atlas();
  image.names = {{1, "V1"}, {2, "V1"}};
  EXPECT_EQ(messageOf<InputError>([&] { return labelRegions(labels({"V1"}), image, space(), "r"); }),
            "r: dseg.nii.gz has 2 labels named 'V1'; name them by index");
}

TEST(Regions, AllLabelsLeaveOutBackgroundAndThoseOutsideTheMask) {
  ReferenceRequest request;
  request.allLabels = true;
  RegionSpace masked = space();
  masked.mask.assign(12, true);
  masked.mask[1] = masked.mask[4] = false;
  const auto regions = labelRegions(request, atlas(), masked, "r");
  ASSERT_EQ(regions.size(), 2U);
  EXPECT_EQ(regions[0].coordinates, (Coordinates{2, 0, 0}));
  EXPECT_EQ(regions[0].notes, (std::vector<std::string>{
                                  "reference 'V1': 1 of 2 voxels lie outside the mask and are left out; 50 % "
                                  "of it is used",
                                  "labels of which the runs hold less than 10 %, left out: V2"}));
  EXPECT_EQ(regions[1].name, "label3");
}

TEST(Regions, ThePluginAveragesVoxelsOutsideTheMaskToo) {
  RegionSpace masked = space();
  masked.mask.assign(12, true);
  masked.mask[1] = false;
  masked.insideMaskOnly = false;
  const auto regions = labelRegions(labels({"V1"}), atlas(), masked, "r");
  EXPECT_EQ(regions[0].voxels(), 2);
  masked.mask[2] = false;
  EXPECT_EQ(messageOf<InputError>([&] { return labelRegions(labels({"V1"}), atlas(), masked, "r"); }),
            "r: reference 'V1' has no voxel inside the mask");
}

TEST(Regions, AnotherGridIsReadAtVoxelCentres) {
  Grid fine = atlas().grid;
  fine.size = {6, 4, 4};
  fine.affine = formats::Affine{{1, 0, 0, -10.5, 0, 1, 0, -0.5, 0, 0, 1, 4.5, 0, 0, 0, 1}};
  const auto values = labelsOnGrid(atlas(), fine);
  EXPECT_EQ(values[fine.size.index({2, 0, 0})], 1);
  EXPECT_EQ(values[fine.size.index({3, 1, 1})], 1);
  EXPECT_EQ(values[fine.size.index({2, 2, 0})], 2);
  EXPECT_EQ(std::count(values.begin(), values.end(), 1), 16);  // 2 voxels of 2 mm are 16 of 1 mm
  RegionSpace other = space();
  other.grid = fine;
  EXPECT_EQ(labelRegions(labels({"V1"}), atlas(), other, "r")[0].notes[0],
            "dseg.nii.gz has another grid than the runs: each voxel takes the label at its centre");
}

TEST(Regions, WhatTheGridOfTheRunsCutsOffIsCounted) {
  RegionSpace half = space();
  half.grid.size = {2, 2, 2};
  EXPECT_EQ(labelRegions(labels({"V1"}), atlas(), half, "r")[0].notes[0],
            "reference 'V1': 1 of 2 voxels lie outside the grid of the runs and are left out; 50 % of it is "
            "used");
  half.mask.assign(8, true);
  half.mask[3] = false;
  ReferenceRequest mask;
  mask.name = "m";
  EXPECT_EQ(maskRegion(mask, atlas(), half, "r").notes[0],
            "reference 'm': 1 of 4 voxels lie outside the grid of the runs, and 1 of 3 voxels inside it lie "
            "outside the mask and are left out; 50 % of it is used");
  ReferenceRequest sphere;
  sphere.name = "s";
  sphere.centreMm = {-10, 0, 5};
  sphere.radiusMm = 2;  // 7 voxels, of which 4 are in the corner of the grid
  half.mask.clear();
  EXPECT_EQ(
      sphereRegion(sphere, half, "r").notes[0],
      "reference 's': 3 of 7 voxels lie outside the grid of the runs and are left out; 57 % of it is used");
}

TEST(Regions, LessThanATenthIsRefusedAndLeftOutOfAll) {
  LabelVolume image = atlas();
  image.grid.size = {11, 1, 1};
  image.labels = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2};
  RegionSpace masked{image.grid, std::vector<bool>(11, false), true};
  masked.mask[0] = masked.mask[10] = true;
  EXPECT_EQ(labelRegions(labels({"V1"}), image, masked, "r")[0].voxels(), 1);  // a tenth
  image.labels[10] = 1;
  masked.mask[10] = false;
  EXPECT_EQ(messageOf<InputError>([&] { return labelRegions(labels({"V1"}), image, masked, "r.toml:4"); }),
            "r.toml:4: reference 'V1': 10 of 11 voxels lie outside the mask; the 9.1 % that is left does not "
            "stand for it, take another reference or runs and a mask that hold at least 10 % of it");
  ReferenceRequest all;
  all.allLabels = true;
  EXPECT_EQ(messageOf<InputError>([&] { return labelRegions(all, image, masked, "r.toml:4"); }),
            "r.toml:4: no label of dseg.nii.gz has 10 % of its voxels inside the mask");
}

TEST(Regions, FlippedAffinesMeetInSpaceNotInIndices) {
  Grid flipped = atlas().grid;
  flipped.affine = formats::Affine{{-2, 0, 0, -6, 0, 2, 0, 0, 0, 0, 2, 5, 0, 0, 0, 1}};
  const auto values = labelsOnGrid(atlas(), flipped);
  EXPECT_EQ(values[flipped.size.index({0, 0, 0})], 1);
  EXPECT_EQ(values[flipped.size.index({2, 0, 0})], 0);
}

TEST(Regions, SpheresIncludeTheirBorder) {
  ReferenceRequest request;
  request.name = "s";
  request.centreMm = {-8, 0, 5};  // the centre of voxel (1, 0, 0)
  request.radiusMm = 2;
  EXPECT_EQ(sphereRegion(request, space(), "r").coordinates,
            (Coordinates{0, 0, 0, 1, 0, 0, 2, 0, 0, 1, 1, 0, 1, 0, 1}));
  request.centreMm = {500, 0, 0};
  EXPECT_EQ(messageOf<InputError>([&] { return sphereRegion(request, space(), "r"); }),
            "r: reference 's' has no voxel in the grid of the runs");
}

TEST(Regions, TypedVoxelsMustLieInTheGrid) {
  ReferenceRequest request;
  request.name = "v";
  request.voxels = {{2, 1, 1}, {0, 0, 0}};
  EXPECT_EQ(voxelRegion(request, space(), "r").coordinates, (Coordinates{2, 1, 1, 0, 0, 0}));
  request.voxels = {{3, 0, 0}};
  EXPECT_EQ(messageOf<InputError>([&] { return voxelRegion(request, space(), "r"); }),
            "r: voxel [3, 0, 0] of reference 'v' lies outside the grid of 3 x 2 x 2 voxels (counted from 0)");
}

TEST(Regions, MasksTakeEveryVoxelThatIsNotZero) {
  ReferenceRequest request;
  request.name = "m";
  EXPECT_EQ(maskRegion(request, atlas(), space(), "r").voxels(), 4);
  LabelVolume negative = atlas();
  negative.labels[0] = -1;
  EXPECT_EQ(maskRegion(request, negative, space(), "r").voxels(), 5);
}

TEST(Grid, GridsAreTheSameWhenTheirCornersMeet) {
  Grid a = atlas().grid, b = a;
  b.affine.at(0, 3) += 0.005;
  EXPECT_TRUE(sameGrid(a, b));
  b.affine.at(0, 3) += 0.006;
  EXPECT_FALSE(sameGrid(a, b));
  b = a;
  b.affine.at(2, 2) += 0.02;  // the far corner alone
  EXPECT_FALSE(sameGrid(a, b));
  b = a;
  b.affine.at(0, 1) += 0.02, b.affine.at(0, 2) -= 0.02;  // y and z make up for one another
  EXPECT_FALSE(sameGrid(a, b));
  b = a;
  b.size.z = 1;
  EXPECT_FALSE(sameGrid(a, b));
}

TEST(Regions, ADamagedAffineIsRefused) {
  LabelVolume image = atlas();
  for (int column = 0; column < 4; ++column)
    image.grid.affine.at(1, column) = image.grid.affine.at(0, column);
  EXPECT_EQ(messageOf<InputError>([&] { return labelsOnGrid(image, atlas().grid); }),
            "dseg.nii.gz: its affine cannot be inverted; the header is damaged");
}

}  // namespace
}  // namespace study
