#include "report/mosaic.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/report/sample_outputs.h"

namespace {

using namespace report;
using testing::HasSubstr;
using testing::Not;

struct MosaicTest : testing::Test {
  static formats::ImageHeader header() {
    formats::ImageHeader header;
    header.size = {6, 7, 40};
    header.affine.m = {3, 0, 0, -9, 0, 3, 0, -10, 0, 0, 2, -30, 0, 0, 0, 1};
    return header;
  }
  PageGrid grid{header()};
  std::vector<float> underlay = std::vector<float>(grid.voxels(), 1.0F);
  std::vector<std::uint8_t> region = std::vector<std::uint8_t>(grid.voxels(), 0);

  [[nodiscard]] std::string svg(const std::vector<int>& slices) const {
    const MosaicMap map{"m", [](std::size_t) { return render::Rgba{255, 0, 0, 255}; }, {{region, "#0ff"}}};
    return mosaic(grid, map, slices, "a <label>");
  }
};

TEST_F(MosaicTest, SpreadsItsSlicesOverTheHead) {
  const auto slices = mosaicSlices(grid, underlay, {});
  EXPECT_EQ(slices.size(), 15U);
  EXPECT_TRUE(std::is_sorted(slices.begin(), slices.end()));
  EXPECT_LT(slices.front(), 4);
  EXPECT_GT(slices.back(), 36);
}

TEST_F(MosaicTest, ShowsEverySliceThatIsWanted) {
  for (int wanted = 0; wanted < 40; ++wanted) {
    const auto slices = mosaicSlices(grid, underlay, {wanted, (wanted + 1) % 40, (wanted + 2) % 40});
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(std::count(slices.begin(), slices.end(), (wanted + i) % 40), 1) << wanted << " " << i;
    EXPECT_EQ(std::set<int>(slices.begin(), slices.end()).size(), 15U);
  }
}

TEST_F(MosaicTest, OfMoreWishesThanSlicesKeepsTheFirst) {
  std::vector<int> wanted;
  for (int i = 0; i < 40; i += 2) wanted.push_back(i);
  const auto slices = mosaicSlices(grid, underlay, wanted);
  EXPECT_EQ(slices.size(), 15U);
  EXPECT_EQ(std::count(slices.begin(), slices.end(), 0), 1);
}

TEST_F(MosaicTest, SaysItsLabelAsText) {
  EXPECT_THAT(svg({3}), HasSubstr("aria-label=\"a &lt;label&gt;\""));
}

TEST_F(MosaicTest, MarksSidesAndHeights) {
  const std::string text = svg({0, 15, 39});
  EXPECT_THAT(text, HasSubstr(">z -30<"));
  EXPECT_THAT(text, HasSubstr(">z 0<"));
  EXPECT_THAT(text, HasSubstr(">z 48<"));
  EXPECT_LT(text.find(">L<"), text.find(">R<"));
}

TEST_F(MosaicTest, OutlinesTheRegionAlone) {
  EXPECT_THAT(svg({3}), Not(HasSubstr("stroke=\"#0ff\"")));
  region[(3 * 7 + 2) * 6 + 1] = 1;
  EXPECT_THAT(svg({3}),
              HasSubstr("d=\"M1 4h1M1 5h1M1 4v1M2 4v1\""));  // four rows above it
  EXPECT_THAT(svg({4}), Not(HasSubstr("stroke=\"#0ff\"")));
}

TEST(ColourBar, HasBothSignsOfADifference) {
  const std::string both = colourBar(scaleOf(4.0, 3, 9, true), "unit"),
                    one = colourBar(scaleOf(4.0, 3, 9, false), "unit");
  EXPECT_THAT(both, HasSubstr(">-12<"));
  EXPECT_THAT(both, HasSubstr(">-4<"));
  EXPECT_THAT(one, Not(HasSubstr(">-4<")));
  EXPECT_THAT(one, HasSubstr(">12<"));
}

// Negative ones on the left, the strongest outwards.
TEST(ColourBar, RunsFromTheStrongestNegativeToTheStrongestPositive) {
  const std::string both = colourBar(scaleOf(4.0, 3, 9, true), "unit"),
                    one = colourBar(scaleOf(4.0, 3, 9, false), "unit");
  EXPECT_THAT(both, HasSubstr("viewBox=\"0 0 254 26\""));
  EXPECT_THAT(both, HasSubstr("<text x=\"0.00\" y=\"23\" text-anchor=\"start\">-12</text>"));
  EXPECT_THAT(both, HasSubstr("<text x=\"120.00\" y=\"23\" text-anchor=\"end\">-4</text>"));
  EXPECT_THAT(both, HasSubstr("<text x=\"134.00\" y=\"23\" text-anchor=\"start\">4</text>"));
  EXPECT_THAT(both, HasSubstr("<text x=\"254.00\" y=\"23\" text-anchor=\"end\">12</text>"));
  EXPECT_THAT(one, HasSubstr("viewBox=\"0 0 120 26\""));
  EXPECT_THAT(one, HasSubstr("<text x=\"0.00\" y=\"23\" text-anchor=\"start\">4</text>"));
  const auto fillAt = [](const std::string& svg, const std::string& x) {
    const std::size_t at = svg.find("<rect x=\"" + x + "\"");
    return at == std::string::npos ? "" : svg.substr(svg.find('#', at), 7);
  };
  EXPECT_EQ(fillAt(one, "0.00"), fillAt(both, "134.00"));
  EXPECT_EQ(fillAt(one, "115.00"), fillAt(both, "249.00"));
  EXPECT_NE(fillAt(one, "0.00"), fillAt(one, "115.00"));
  EXPECT_NE(fillAt(both, "0.00"), fillAt(both, "249.00"));
}

TEST(ColourBar, IsNotThereWhenNothingSurvives) {
  EXPECT_EQ(colourBar(scaleOf(std::nullopt, 3, 9, true), "unit"), "");
}

}  // namespace
