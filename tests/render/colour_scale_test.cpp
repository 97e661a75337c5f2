// Whether people without green cones can read the scales: colours are put through the transform of
// Machado, Oliveira & Fernandes 2009 (doi:10.1109/TVCG.2009.113, severity 1) and compared as distances
// in CIE L*a*b* (1976), in which about 2.3 are just noticeable.
#include "render/colour_scale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace render {
namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;

constexpr Matrix kAllCones = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
constexpr Matrix kDeuteranopia = {
    {{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}};
constexpr Matrix kProtanopia = {
    {{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}};
// IEC 61966-2-1, white D65.
constexpr Matrix kToXyz = {{{0.4124564, 0.3575761, 0.1804375},
                            {0.2126729, 0.7151522, 0.0721750},
                            {0.0193339, 0.1191920, 0.9503041}}};

Vector times(const Matrix& m, const Vector& v) {
  Vector result{};
  for (std::size_t row = 0; row < 3; ++row)
    result[row] = m[row][0] * v[0] + m[row][1] * v[1] + m[row][2] * v[2];
  return result;
}

double linear(double channel) {
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double labStep(double t) {
  return t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116;
}

// L*, a*, b* of a colour as such an eye sees it.
Vector seen(const Rgb& colour, const Matrix& eye) {
  Vector light = times(eye, {linear(colour.red), linear(colour.green), linear(colour.blue)});
  for (double& channel : light) channel = std::clamp(channel, 0.0, 1.0);
  const Vector xyz = times(kToXyz, light);
  const double x = labStep(xyz[0] / 0.95047), y = labStep(xyz[1]), z = labStep(xyz[2] / 1.08883);
  return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

double distance(const Vector& a, const Vector& b) {
  return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

TEST(ColourScale, RunsStraightFromPointToPoint) {
  const ColourScale scale = {0x000000, 0x0000FF, 0x00FFFF};  // black, red, yellow
  EXPECT_DOUBLE_EQ(colourAt(scale, 0).red, 0);
  EXPECT_DOUBLE_EQ(colourAt(scale, 0.25).red, 0.5);
  EXPECT_DOUBLE_EQ(colourAt(scale, 0.5).red, 1);
  EXPECT_DOUBLE_EQ(colourAt(scale, 0.75).green, 0.5);
  EXPECT_DOUBLE_EQ(colourAt(scale, 1).green, 1);
  EXPECT_DOUBLE_EQ(colourAt(scale, 1).blue, 0);
}

TEST(ColourScale, OneColourServesTheWholeScale) {
  EXPECT_DOUBLE_EQ(colourAt({0x0000FF}, 0.7).red, 1);
}

TEST(ColourScale, TheMoreTheLighterOnEachArmForEveryEye) {
  for (const ColourScale& scale : {warmScale(), coldScale()})
    for (const Matrix& eye : {kAllCones, kDeuteranopia, kProtanopia})
      for (int step = 1; step <= 100; ++step)
        EXPECT_GT(seen(colourAt(scale, step / 100.0), eye)[0],
                  seen(colourAt(scale, (step - 1) / 100.0), eye)[0])
            << step;
}

// At the same distance from the threshold and at any two distances: no magnitude hides the sign.
TEST(ColourScale, TheArmsStayApartForEyesWithoutGreenOrRedCones) {
  for (const Matrix& eye : {kAllCones, kDeuteranopia, kProtanopia}) {
    EXPECT_GT(distance(seen(colourAt(warmScale(), 1), eye), seen(colourAt(coldScale(), 1), eye)), 60);
    for (int warm = 0; warm <= 20; ++warm)
      for (int cold = 0; cold <= 20; ++cold)
        EXPECT_GT(distance(seen(colourAt(warmScale(), warm / 20.0), eye),
                           seen(colourAt(coldScale(), cold / 20.0), eye)),
                  50)
            << warm << " " << cold;
  }
}

TEST(ColourScale, NoColourIsOneOfTheGreysOfTheAnatomy) {
  for (const ColourScale& scale : {warmScale(), coldScale()})
    for (const Matrix& eye : {kAllCones, kDeuteranopia, kProtanopia})
      for (int step = 0; step <= 20; ++step) {
        const Vector colour = seen(colourAt(scale, step / 20.0), eye);
        EXPECT_GT(std::hypot(colour[1], colour[2]), 12) << step;
      }
}

TEST(ColourScale, BeginsWellAboveBlackAtTheThreshold) {
  EXPECT_GT(seen(colourAt(warmScale(), 0), kAllCones)[0], 33);
  EXPECT_GT(seen(colourAt(coldScale(), 0), kAllCones)[0], 33);
}

}  // namespace
}  // namespace render
