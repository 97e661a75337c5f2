#include "render/matrix_picture.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

double brightness(const render::Rgb& colour) {
  return colour.red + colour.green + colour.blue;
}

TEST(MatrixPicture, ColoursTellSignAndMagnitude) {
  const render::Rgb more = render::cellColour(1, 1, true), less = render::cellColour(-1, 1, true);
  EXPECT_GT(more.red, more.blue);
  EXPECT_GT(less.blue, less.red);
  EXPECT_GT(brightness(more), brightness(render::cellColour(0.1, 1, true)));
  EXPECT_EQ(brightness(render::cellColour(1, 1, true)), brightness(render::cellColour(7, 1, true)));
}

TEST(MatrixPicture, WhatDoesNotPassIsFaintAndNothingIsGrey) {
  EXPECT_LT(brightness(render::cellColour(1, 1, false)), brightness(render::cellColour(1, 1, true)) / 2);
  const render::Rgb nothing = render::cellColour(std::nan(""), 1, true);
  EXPECT_EQ(nothing.red, nothing.green);
  EXPECT_EQ(nothing.red, nothing.blue);
  EXPECT_GT(brightness(nothing), brightness(render::cellColour(0, 1, true)));
}

TEST(MatrixPicture, IsAPngWhateverItsSize) {
  for (const std::size_t size : {0UL, 1UL, 50UL}) {
    render::MatrixPicture picture;
    picture.size = size;
    picture.values.assign(size * size, 0.5);
    picture.isEmphasised.assign(size * size, 1);
    picture.groups = {{0, size, "Vis"}};
    EXPECT_EQ(render::matrixPixels(picture).substr(1, 3), "PNG");
    EXPECT_EQ(render::drawMatrix(picture, render::cellPixels(size)).substr(1, 3), "PNG");
  }
  EXPECT_EQ(render::cellPixels(400), 2);
  EXPECT_EQ(render::cellPixels(5000), 1);
}

TEST(MatrixPicture, NamesOfRowsTakeRoomBelow) {
  const auto heightOf = [](const std::vector<std::string>& names) {
    render::MatrixPicture picture;
    picture.size = 2;
    picture.values = {0, 1, 1, 0};
    picture.isEmphasised = {1, 1, 1, 1};
    picture.names = names;
    const std::string png = render::drawMatrix(picture, 400);
    const auto byte = [&](std::size_t at) { return static_cast<int>(static_cast<unsigned char>(png[at])); };
    return 256 * byte(22) + byte(23);  // of the header
  };
  EXPECT_GT(heightOf({"V1", "V2"}), heightOf({}) + 50);
}

TEST(MatrixPicture, LongNamesAreCutBetweenLetters) {
  EXPECT_EQ(render::shortName("LH-V1"), "LH-V1");
  EXPECT_EQ(render::shortName("123456789012345678"), "123456789012345678");
  EXPECT_EQ(render::shortName("1234567890123456789"), "123456789012345678\u2026");
  std::string umlauts, kept;
  for (int i = 0; i < 20; ++i) umlauts += "\u00e4";
  for (int i = 0; i < 18; ++i) kept += "\u00e4";
  EXPECT_EQ(render::shortName(umlauts), kept + "\u2026");
}

TEST(MatrixPicture, LettersFitTheirCells) {
  EXPECT_LT(render::nameSize(10), 10);
  EXPECT_EQ(render::nameSize(10), render::nameSize(5) * 2);
  EXPECT_EQ(render::nameSize(100), render::nameSize(200));
}

}  // namespace
