#include "render/slice_picture.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

namespace render {
namespace {

// One slice of 8 x 8 voxels of 20 mm, stored with x to the left: each voxel is 26 pixels wide.
SlicePicture onePanel() {
  SlicePicture picture;
  picture.dims = {8, 8, 1};
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
  std::memcpy(&value, cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface) + 4 * x,
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
  picture.negative = {0, 0};
  picture.map[7 + 8 * 7] = -3;
  EXPECT_EQ(voxelPixel(renderPng(picture), 0, 0), 0xFFFFFFU);
}

TEST(SlicePicture, OutlinesTheReferenceAtItsBorder) {
  SlicePicture picture = onePanel();
  picture.reference.assign(64, 0);
  picture.reference[7 + 8 * 7] = 1;
  const std::string png = renderPng(picture);
  const unsigned border = pixel(png, 12 + 26, 54 + 13);
  EXPECT_EQ(border >> 16, 0xFFU);
  EXPECT_NEAR(static_cast<double>((border >> 8) & 0xFFU), 0.9 * 255, 1);
  EXPECT_NEAR(static_cast<double>(border & 0xFFU), 0.2 * 255, 1);
  EXPECT_EQ(voxelPixel(png, 0, 0), 0xFFFFFFU);
}

TEST(SlicePicture, RefusesAVolumeOfAnotherGrid) {
  SlicePicture picture = onePanel();
  picture.anatomy.pop_back();
  EXPECT_THROW((void)renderPng(picture), std::runtime_error);
}

}  // namespace
}  // namespace render
