#include "formats/affine.h"

#include <gtest/gtest.h>

#include <cmath>

#include "formats/nifti_affine.h"

namespace {

using formats::Affine;
using formats::Point;

const Affine kOblique{{-2, 0.3, 0.1, 90, 0.2, 1.9, -0.5, -120, 0.05, 0.6, 3, -40, 0, 0, 0, 1}};

TEST(Affine, MapsTheOriginToItsOffset) {
  EXPECT_EQ(formats::apply(kOblique, {0, 0, 0}), (Point{90, -120, -40}));
  EXPECT_EQ(formats::apply(kOblique, {1, 0, 0}), (Point{88, -119.8, -39.95}));
}

TEST(Affine, IsUndoneByItsInverse) {
  const Point there = formats::apply(kOblique, {3, -7, 11});
  const Point back = formats::apply(inverse(kOblique), there);
  EXPECT_NEAR(back[0], 3, 1e-12);
  EXPECT_NEAR(back[1], -7, 1e-12);
  EXPECT_NEAR(back[2], 11, 1e-12);
}

TEST(Affine, TellsVoxelSizes) {
  const Point size = formats::voxelSize({{0, 0, 3, 1, 4, 0, 0, 1, 0, 5, 0, 1, 0, 0, 0, 1}});
  EXPECT_EQ(size, (Point{4, 5, 3}));
}

TEST(Affine, OfTalairachSpaceFollowsTheStatedAxes) {
  const Affine affine = formats::talairachAffine(57, 52, 59, 3);
  // X = 128 - (zStart + res z), Y = 128 - (xStart + res x), Z = 128 - (yStart + res y)
  EXPECT_EQ(formats::apply(affine, {0, 0, 0}), (Point{69, 71, 76}));
  EXPECT_EQ(formats::apply(affine, {2, 5, 7}), (Point{128 - (59 + 21), 128 - (57 + 6), 128 - (52 + 15)}));
}

// A quarter turn about z as a quaternion: (b, c, d) = (0, 0, sin 45).
formats::NiftiTransforms quarterTurn() {
  formats::NiftiTransforms t;
  t.qformCode = 1;
  t.quaternion = {0, 0, std::sqrt(0.5), 10, 20, 30};
  t.pixdim = {1, 2, 3, 4};
  return t;
}

TEST(NiftiAffine, FollowsTheQuaternionWhenThereIsNoSform) {
  formats::ImageHeader header;
  ASSERT_TRUE(chooseAffine(quarterTurn(), header));
  const Point p = formats::apply(header.affine, {1, 1, 1});  // x step goes to y, y step to -x
  EXPECT_NEAR(p[0], 10 - 3, 1e-12);
  EXPECT_NEAR(p[1], 20 + 2, 1e-12);
  EXPECT_NEAR(p[2], 30 + 4, 1e-12);
}

TEST(NiftiAffine, ReadsNegativeHandednessAsAFlippedThirdAxis) {
  formats::NiftiTransforms t = quarterTurn();
  t.pixdim[0] = -1;
  formats::ImageHeader header;
  ASSERT_TRUE(chooseAffine(t, header));
  EXPECT_NEAR(formats::apply(header.affine, {0, 0, 1})[2], 30 - 4, 1e-12);
}

TEST(NiftiAffine, PrefersTheSformAndKeepsTheQform) {
  formats::NiftiTransforms t = quarterTurn();
  t.sformCode = 4;
  t.sform = {1, 0, 0, -5, 0, 1, 0, -6, 0, 0, 1, -7};
  formats::ImageHeader header;
  ASSERT_TRUE(chooseAffine(t, header));
  EXPECT_EQ(formats::apply(header.affine, {0, 0, 0}), (Point{-5, -6, -7}));
  EXPECT_NEAR(formats::apply(header.qform, {0, 0, 0})[0], 10, 1e-12);
  EXPECT_EQ(header.sformCode, 4);
  EXPECT_EQ(header.qformCode, 1);
}

TEST(NiftiAffine, PassesOverAnSformWithoutInverse) {
  formats::NiftiTransforms t = quarterTurn();
  t.sformCode = 1;  // all zeros
  formats::ImageHeader header;
  ASSERT_TRUE(chooseAffine(t, header));
  EXPECT_EQ(header.sformCode, 0);
  EXPECT_NEAR(formats::apply(header.affine, {0, 0, 0})[0], 10, 1e-12);
}

TEST(NiftiAffine, FallsBackToVoxelSizes) {
  formats::NiftiTransforms t;
  t.pixdim = {1, 2, 0, -4};
  formats::ImageHeader header;
  ASSERT_TRUE(chooseAffine(t, header));
  EXPECT_EQ(formats::apply(header.affine, {1, 1, 1}), (Point{2, 1, 4}));
}

TEST(NiftiAffine, SurvivesTheWayThroughAQuaternion) {
  formats::ImageHeader header, again;
  ASSERT_TRUE(chooseAffine(quarterTurn(), header));
  formats::NiftiTransforms t = transformsOf(header);
  ASSERT_TRUE(chooseAffine(t, again));
  for (unsigned i = 0; i < 16; ++i) EXPECT_NEAR(again.affine.m[i], header.affine.m[i], 1e-9) << i;
}

}  // namespace
