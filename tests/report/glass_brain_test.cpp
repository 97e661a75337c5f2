#include "report/glass_brain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "report/encoding.h"

namespace {

using namespace report;
using render::Pixels;
using render::Rgba;
using testing::HasSubstr;
using testing::Not;

constexpr Rgba kBrain{127, 127, 127, 60}, kStrong{255, 0, 0, 255}, kWeak{0, 0, 255, 255};

// 2 x 3 x 4 voxels of 2, 3 and 4 mm, to the right, the front and the top.
struct GlassBrainTest : testing::Test {
  static formats::ImageHeader header(double rightwards = 2) {
    formats::ImageHeader header;
    header.size = {2, 3, 4};
    header.affine.m = {rightwards, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1};
    return header;
  }
  static std::size_t place(std::size_t right, std::size_t front, std::size_t up) {
    return (up * 3 + front) * 2 + right;
  }
  // The brain is one voxel on the right, at the back, below; on the left in front one is strong, to its right
  // a weak one.
  GlassMap map{[](std::size_t at) { return at == place(1, 0, 0); },
               [](std::size_t at) {
                 return at == place(0, 2, 2) ? 2.0F : at == place(1, 2, 2) ? 1.0F : 0.0F;
               },
               [](std::size_t at) { return at == place(0, 2, 2) ? kStrong : kWeak; }};
};

TEST_F(GlassBrainTest, HasTheFrontOnTheLeftSeenFromTheLeftAndElseTheLeft) {
  Pixels fromLeft(3, 4), fromBehind(2, 4), fromAbove(2, 3);
  fromLeft.at(0, 1) = kStrong;  // hides the weak one behind it
  fromLeft.at(2, 3) = kBrain;
  fromBehind.at(0, 1) = kStrong;
  fromBehind.at(1, 1) = kWeak;
  fromBehind.at(1, 3) = kBrain;
  fromAbove.at(0, 0) = kStrong;
  fromAbove.at(1, 0) = kWeak;
  fromAbove.at(1, 2) = kBrain;
  const std::string svg = glassBrain(PageGrid(header()), map, "");
  std::size_t last = 0;
  for (const Pixels* pixels : {&fromLeft, &fromBehind, &fromAbove}) {
    const std::size_t at = svg.find(pngUri(pixels->png()), last);
    ASSERT_NE(at, std::string::npos) << pixels->width() << " x " << pixels->height();
    last = at;
  }
}

TEST_F(GlassBrainTest, NamesItsSides) {
  const std::string svg = glassBrain(PageGrid(header()), map, "a <label>");
  EXPECT_THAT(svg, HasSubstr("aria-label=\"a &lt;label&gt;\""));
  std::size_t last = 0;
  for (const char* word :
       {">from the left<", ">A<", ">P<", ">from behind<", ">L<", ">R<", ">from above<", ">L<", ">R<"}) {
    const std::size_t at = svg.find(word, last);
    ASSERT_NE(at, std::string::npos) << word;
    last = at + 1;
  }
}

// 9 x 16, 4 x 16 and 4 x 9 mm, 8 mm apart.
TEST_F(GlassBrainTest, HasTheSizeOfTheBrain) {
  const std::string svg = glassBrain(PageGrid(header()), map, "");
  EXPECT_THAT(svg, HasSubstr("viewBox=\"0 0 33.00 26.00\""));
  EXPECT_THAT(svg, HasSubstr("<image x=\"0.00\" y=\"10.00\" width=\"9.00\" height=\"16.00\""));
  EXPECT_THAT(svg, HasSubstr("<image x=\"17.00\" y=\"10.00\" width=\"4.00\" height=\"16.00\""));
  EXPECT_THAT(svg, HasSubstr("<image x=\"29.00\" y=\"10.00\" width=\"4.00\" height=\"9.00\""));
}

// The map is in upright order: how the image is stored plays no part.
TEST_F(GlassBrainTest, IsTheSameForAnImageThatIsStoredFromTheRight) {
  EXPECT_EQ(glassBrain(PageGrid(header(-2)), map, ""), glassBrain(PageGrid(header()), map, ""));
}

}  // namespace
