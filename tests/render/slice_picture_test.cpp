#include "render/slice_picture.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <utility>

namespace render {
namespace {

// One slice of 8 x 8 voxels of 20 mm, stored with x to the left: each voxel is 26 pixels wide.
SlicePicture onePanel() {
  SlicePicture picture;
  picture.size = {8, 8, 1};
  picture.affine = {-20, 0, 0, 0, 0, 20, 0, 0, 0, 0, 20, 0, 0, 0, 0, 1};
  picture.anatomy.assign(64, 100.0F);
  picture.map.assign(64, 0.0F);
  picture.lower = 1;
  picture.upper = 3;
  picture.positive = {64, 255};
  picture.negative = {16384, 65280};
  return picture;
}

// The pixel at (x, y) as 0xRRGGBB.
unsigned pixel(const std::string& png, int x, int y) {
  struct Reader {
    const std::string& bytes;
    std::size_t at = 0;
    static cairo_status_t read(void* self, unsigned char* data, unsigned length) {
      auto* reader = static_cast<Reader*>(self);
      if (reader->at + length > reader->bytes.size()) return CAIRO_STATUS_READ_ERROR;
      std::memcpy(data, reader->bytes.data() + reader->at, length);
      reader->at += length;
      return CAIRO_STATUS_SUCCESS;
    }
  } reader{png};
  cairo_surface_t* surface = cairo_image_surface_create_from_png_stream(Reader::read, &reader);
  EXPECT_EQ(cairo_surface_status(surface), CAIRO_STATUS_SUCCESS);
  unsigned value = 0;
  std::memcpy(&value,
              cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface) + 4 * x,
              sizeof value);
  cairo_surface_destroy(surface);
  return value & 0xFFFFFFU;
}

// Centre of the voxel `column` from the left and `row` from the top of the first panel.
unsigned voxelPixel(const std::string& png, int column, int row) {
  return pixel(png, 12 + column * 26 + 13, 54 + row * 26 + 13);
}

TEST(SlicePicture, ShowsThePatientsLeftOnTheLeftAndTheFrontAtTheTop) {
  SlicePicture picture = onePanel();
  picture.map[7 + 8 * 7] = 3;  // stored x 7: leftmost; stored y 7: front
  const std::string png = renderPng(picture);
  EXPECT_EQ(voxelPixel(png, 0, 0), 0xFF0000U);
  EXPECT_EQ(voxelPixel(png, 7, 7), 0xFFFFFFU);
}

TEST(SlicePicture, ColoursNegativeValuesInTheirOwnColours) {
  SlicePicture picture = onePanel();
  picture.map[7 + 8 * 7] = -3;
  EXPECT_EQ(voxelPixel(renderPng(picture), 0, 0), 0x00FF00U);
}

TEST(SlicePicture, ShowsValuesFromTheLowerThresholdOn) {
  SlicePicture picture = onePanel();
  picture.map[7 + 8 * 7] = 0.999F;
  picture.map[6 + 8 * 7] = 1;
  const std::string png = renderPng(picture);
  EXPECT_EQ(voxelPixel(png, 0, 0), 0xFFFFFFU);
  EXPECT_EQ(voxelPixel(png, 1, 0), 0x400000U);  // red 64: the start of the range
}

TEST(SlicePicture, LeavesNegativeValuesOutWhenTheyHaveNoColours) {
  SlicePicture picture = onePanel();
  picture.negative = {};
  picture.map[7 + 8 * 7] = -3;
  EXPECT_EQ(voxelPixel(renderPng(picture), 0, 0), 0xFFFFFFU);
}

TEST(SlicePicture, OutlinesTheReferenceAtItsBorder) {
  SlicePicture picture = onePanel();
  picture.reference.assign(64, 0);
  picture.reference[7 + 8 * 7] = 1;
  const std::string png = renderPng(picture);
  EXPECT_EQ(pixel(png, 12 + 26, 54 + 13), 0x00FFFFU);
  EXPECT_EQ(pixel(png, 12 + 26 + 1, 54 + 13), 0x000000U);  // which parts it from what it crosses
  EXPECT_EQ(pixel(png, 12 + 26 + 4, 54 + 13), 0xFFFFFFU);
  EXPECT_EQ(voxelPixel(png, 0, 0), 0xFFFFFFU);
}

// How much of a box is lit.
unsigned ink(const std::string& png, int x, int y, int width, int height) {
  unsigned sum = 0;
  for (int row = y; row < y + height; ++row) {
    for (int column = x; column < x + width; ++column) sum += pixel(png, column, row) & 0xFFU;
  }
  return sum;
}

// An L has nothing in its upper right quarter, an R has its bow there.
TEST(SlicePicture, WritesLOnThePatientsLeftAndROnTheRight) {
  SlicePicture picture = onePanel();
  picture.anatomy.assign(64, 0.0F);  // so that only letters are lit
  const std::string png = renderPng(picture);
  const int base = 54 + 4 * 26, left = 12 + 3, right = 12 + 8 * 26 - 12;
  EXPECT_GT(ink(png, left, base - 10, 10, 10), 0U);
  EXPECT_EQ(ink(png, left + 4, base - 9, 5, 5), 0U);
  EXPECT_GT(ink(png, right + 4, base - 9, 5, 5), 0U);
}

// 256 voxels: 50, 54 of 200 and two of 2000, which the 99th percentile leaves out.
TEST(SlicePicture, The99thPercentileOfTheAnatomyIsWhite) {
  SlicePicture picture = onePanel();
  picture.size = {8, 8, 4};
  picture.anatomy.assign(256, 50.0F);
  std::fill_n(picture.anatomy.begin() + 128, 128, 0.0F);  // which counts for nothing
  picture.anatomy[10] = 200.0F;
  picture.anatomy[11] = 2000.0F;
  picture.map.assign(256, 0.0F);
  picture.slices = 1;
  const unsigned grey = voxelPixel(renderPng(picture), 0, 0) & 0xFFU;
  EXPECT_NEAR(static_cast<double>(grey), 255 * 50 / 200.0, 1);
}

// Only the two sides away from the picture's corner are lines to others of the region's kind.
TEST(SlicePicture, OutlinesAllFourSides) {
  SlicePicture picture = onePanel();
  picture.anatomy.assign(64, 0.0F);
  picture.reference.assign(64, 0);
  picture.reference[4 + 8 * 4] = 1;  // column 3, row 3
  const std::string png = renderPng(picture);
  const int left = 12 + 3 * 26, top = 54 + 3 * 26;
  for (const auto& [x, y] :
       {std::pair{left, top + 13}, {left + 26, top + 13}, {left + 13, top}, {left + 13, top + 26}})
    EXPECT_EQ(pixel(png, x, y), 0x00FFFFU) << x << " " << y;
}

// Voxels of 20 x 10 mm are 26 x 13 pixels.
TEST(SlicePicture, DrawsVoxelsInTheirProportions) {
  SlicePicture picture = onePanel();
  picture.affine[5] = 10;
  picture.map[7 + 8 * 7] = 3;
  const std::string png = renderPng(picture);
  EXPECT_EQ(pixel(png, 12 + 13, 54 + 6), 0xFF0000U);
  EXPECT_EQ(pixel(png, 12 + 13, 54 + 13 + 6), 0xFFFFFFU);
}

TEST(SlicePicture, TheSixthSliceBeginsASecondRow) {
  SlicePicture picture = onePanel();
  picture.size = {8, 8, 6};
  picture.anatomy.assign(384, 100.0F);
  picture.map.assign(384, 0.0F);
  picture.map[5 * 64 + 7 + 8 * 7] = 3;  // front left of the topmost slice
  const std::string png = renderPng(picture);
  EXPECT_EQ(pixel(png, 12 + 13, 54 + 8 * 26 + 12 + 13), 0xFF0000U);
  EXPECT_EQ(voxelPixel(png, 0, 0), 0xFFFFFFU);
}

// Below the slices: a bar of the positive colours, and one of the negative ones if there are any.
TEST(SlicePicture, ColourBarsShowBothRanges) {
  SlicePicture picture = onePanel();
  const auto pure = [&](unsigned colour) {
    const std::string png = renderPng(picture);
    unsigned found = 0;
    for (int x = 12; x < 400; ++x) found += pixel(png, x, 54 + 8 * 26 + 12 + 8 + 6) == colour ? 1U : 0U;
    return found;
  };
  EXPECT_GT(pure(0xFF0000U), 0U);
  EXPECT_GT(pure(0x00FF00U), 0U);
  picture.negative = {};
  EXPECT_EQ(pure(0x00FF00U), 0U);
}

TEST(SlicePicture, RefusesAVolumeOfAnotherGrid) {
  SlicePicture picture = onePanel();
  picture.anatomy.pop_back();
  EXPECT_THROW((void)renderPng(picture), std::runtime_error);
}

}  // namespace
}  // namespace render
