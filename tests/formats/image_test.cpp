#include "formats/image.h"

#include <gtest/gtest.h>

#include "tests/support/message_of.h"

namespace {

formats::ImageHeader grid(int x, double shift) {
  formats::ImageHeader header;
  header.size = {x, 5, 6};
  header.affine.at(0, 0) = 3;
  header.affine.at(0, 3) = shift;
  return header;
}

TEST(SameGrid, AcceptsRoundingOfHeaders) {
  EXPECT_NO_THROW(requireSameGrid(grid(4, 0), "a.nii", grid(4, 0.04), "b.nii"));
}

TEST(SameGrid, RefusesAnotherSizeAndNamesBoth) {
  EXPECT_EQ(reasonOf([] { requireSameGrid(grid(4, 0), "a.nii", grid(7, 0), "b.nii"); }),
            "its grid of 7 x 5 x 6 voxels is not that of a.nii, 4 x 5 x 6. "
            "Resample one of them to the grid of the other.");
}

TEST(SameGrid, RefusesAnotherPlaceAndNamesBoth) {
  EXPECT_EQ(reasonOf([] { requireSameGrid(grid(4, 0), "a.nii", grid(4, 0.2), "b.nii"); }),
            "its voxels do not lie where those of a.nii lie (the affines differ). "
            "Resample one of them to the grid of the other.");
}

// 0.04 voxel from slice to slice reaches 0.2 at the last of six; it would not at the first.
TEST(SameGrid, LooksAtTheCornersOfTheGrid) {
  const auto stretched = [](int slices, double by) {
    formats::ImageHeader header = grid(4, 0);
    header.size.z = slices;
    header.affine.at(2, 2) += by;
    return header;
  };
  EXPECT_NO_THROW(requireSameGrid(stretched(2, 0), "a.nii", stretched(2, 0.04), "b.nii"));
  EXPECT_NE(reasonOf([&] { requireSameGrid(stretched(6, 0), "a.nii", stretched(6, 0.04), "b.nii"); }), "");
}

// Voxels of 3 x 1 x 1 mm: a twentieth of the shortest edge.
TEST(SameGrid, AllowsForAShareOfTheShortestEdge) {
  EXPECT_NE(reasonOf([] { requireSameGrid(grid(4, 0), "a.nii", grid(4, 0.06), "b.nii"); }), "");
}

TEST(SameGrid, RefusesAFlippedAxisOfTheSameSize) {
  formats::ImageHeader flipped = grid(4, 9);
  flipped.affine.at(0, 0) = -3;
  EXPECT_NE(reasonOf([&] { requireSameGrid(grid(4, 0), "a.nii", flipped, "b.nii"); }), "");
}

TEST(DataType, HasANameAndASize) {
  EXPECT_STREQ(formats::nameOf(formats::DataType::kUint16), "uint16");
  EXPECT_STREQ(formats::nameOf(formats::DataType::kFloat64), "float64");
  EXPECT_EQ(formats::bytesOf(formats::DataType::kInt8), 1U);
  EXPECT_EQ(formats::bytesOf(formats::DataType::kUint64), 8U);
}

}  // namespace
