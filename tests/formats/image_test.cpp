#include "formats/image.h"

#include <gtest/gtest.h>

#include "tests/formats/message_of.h"

namespace {

using formats_test::messageOf;

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
  EXPECT_EQ(messageOf([] { requireSameGrid(grid(4, 0), "a.nii", grid(7, 0), "b.nii"); }),
            "its grid of 7 x 5 x 6 voxels is not that of a.nii, 4 x 5 x 6. "
            "Resample one of them to the grid of the other.");
}

TEST(SameGrid, RefusesAnotherPlaceAndNamesBoth) {
  EXPECT_EQ(messageOf([] { requireSameGrid(grid(4, 0), "a.nii", grid(4, 0.2), "b.nii"); }),
            "its voxels do not lie where those of a.nii lie (the affines differ). "
            "Resample one of them to the grid of the other.");
}

TEST(SameGrid, RefusesAFlippedAxisOfTheSameSize) {
  formats::ImageHeader flipped = grid(4, 9);
  flipped.affine.at(0, 0) = -3;
  EXPECT_NE(messageOf([&] { requireSameGrid(grid(4, 0), "a.nii", flipped, "b.nii"); }), "");
}

TEST(DataType, HasANameAndASize) {
  EXPECT_STREQ(formats::nameOf(formats::DataType::kUint16), "uint16");
  EXPECT_STREQ(formats::nameOf(formats::DataType::kFloat64), "float64");
  EXPECT_EQ(formats::bytesOf(formats::DataType::kInt8), 1U);
  EXPECT_EQ(formats::bytesOf(formats::DataType::kUint64), 8U);
}

}  // namespace
