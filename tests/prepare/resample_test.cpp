#include "prepare/resample.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace study {
namespace {

using formats::Affine;

Affine scaled(double x, double y, double z, double left, double back, double down) {
  return {{x, 0, 0, left, 0, y, 0, back, 0, 0, z, down, 0, 0, 0, 1}};
}

double ramp(const std::array<double, 3>& mm) {
  return 3 + 2 * mm[0] - mm[1] + 0.5 * mm[2];
}

formats::Image3D rampOn(const Grid& grid) {
  formats::Image3D image;
  image.header.size = grid.size;
  image.header.affine = grid.affine;
  for (std::size_t i = 0; i < grid.size.voxels(); ++i)
    image.values.push_back(static_cast<float>(ramp(grid.toMm(grid.size.voxelAt(i)))));
  return image;
}

// The image reaches from -10 to 10 mm along each axis.
void expectRamp(const Affine& ofImage, const formats::GridSize& size, const Grid& grid) {
  const std::vector<float> found = valuesOnGrid(rampOn({size, ofImage}), grid);
  for (std::size_t i = 0; i < found.size(); ++i)
    EXPECT_NEAR(found[i], ramp(grid.toMm(grid.size.voxelAt(i))), 1e-4) << i;
}

const Grid kInside{{5, 4, 6}, scaled(3, 3.5, 2, -7.3, -6.1, -6)};

TEST(Resample, KeepsALinearRampWhateverTheVoxelSize) {
  expectRamp(scaled(1, 1, 1, -10, -10, -10), {21, 21, 21}, kInside);
  expectRamp(scaled(4, 2.5, 5, -10, -10, -10), {6, 9, 5}, kInside);
}

TEST(Resample, KeepsALinearRampOnFlippedAndTiltedAxes) {
  expectRamp(scaled(-1, 2, -2.5, 10, -10, 10), {21, 11, 9}, kInside);
  const Grid flipped{{5, 4, 6}, scaled(-3, 3.5, -2, 7.3, -6.1, 6)};
  expectRamp(scaled(1, 1, 1, -10, -10, -10), {21, 21, 21}, flipped);
  const double c = std::cos(0.3), s = std::sin(0.3);
  const Affine tilted{{c, -s, 0, -12 * c + 12 * s, s, c, 0, -12 * s - 12 * c, 0, 0, 1, -10, 0, 0, 0, 1}};
  expectRamp(tilted, {25, 25, 21}, kInside);
}

TEST(Resample, KeepsTheVoxelsOfItsOwnGrid) {
  const formats::Image3D image = rampOn(kInside);
  EXPECT_EQ(valuesOnGrid(image, kInside), image.values);
}

// Half a voxel beyond the outer centres belongs to the outer voxels.
TEST(Resample, IsZeroOutside) {
  formats::Image3D image;
  image.header.size = {2, 1, 1};
  image.values = {5, 7};
  const Grid line{{7, 1, 1}, scaled(0.4, 1, 1, -0.8, 0, 0)};  // -0.8, -0.4, 0, 0.4, 0.8, 1.2, 1.6
  const std::vector<float> found = valuesOnGrid(image, line);
  const std::vector<float> expected = {0, 5, 5, 5.8F, 6.6F, 7, 0};
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(found[i], expected[i], 1e-5) << i;
}

TEST(Resample, TakesWhatIsNoNumberForZero) {
  formats::Image3D image;
  image.header.size = {2, 1, 1};
  image.values = {std::numeric_limits<float>::quiet_NaN(), 4};
  EXPECT_EQ(valuesOnGrid(image, {{3, 1, 1}, scaled(0.5, 1, 1, 0, 0, 0)}), (std::vector<float>{0, 2, 4}));
}

TEST(Resample, GridsOverlapWhereACentreLiesInTheImage) {
  const Grid image{{10, 10, 10}, scaled(1, 1, 1, 0, 0, 0)};
  const auto at = [](double x) { return Grid{{3, 3, 3}, scaled(2, 2, 2, x, 0, 0)}; };
  EXPECT_TRUE(overlaps(image, at(0)));
  EXPECT_TRUE(overlaps(image, at(9.4)));
  EXPECT_TRUE(overlaps(image, at(-4.4)));
  EXPECT_FALSE(overlaps(image, at(9.6)));
  EXPECT_FALSE(overlaps(image, at(-4.6)));
}

}  // namespace
}  // namespace study
