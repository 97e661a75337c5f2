#include "report/strip_plot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace report;
using testing::HasSubstr;
using testing::Not;

std::string circle(const char* x, const char* y) {
  return std::string("<circle cx=\"") + x + "\" cy=\"" + y + "\"";
}

// The axis is 150 high and has 6 % of the range beyond both ends.
TEST(StripPlot, HasAPointPerValueAndALineAtTheMean) {
  const std::string svg = stripPlot({{"a", "", 1}, {"b", "", -1}}, "F", "");
  EXPECT_THAT(svg, HasSubstr(circle("89.0", "20.0")));
  EXPECT_THAT(svg, HasSubstr(circle("98.0", "154.0")));
  EXPECT_THAT(svg, HasSubstr("<title>a: 1</title>"));
  EXPECT_THAT(svg, HasSubstr("x1=\"75.0\" x2=\"139.0\" y1=\"87.0\" y2=\"87.0\""));
  EXPECT_THAT(svg, HasSubstr(">n = 2<"));
}

TEST(StripPlot, HasANumberedLineFromOneRoundValueToTheNextAndAStrongOneAt0) {
  const std::string svg = stripPlot({{"a", "", 1}, {"b", "", -1}}, "F", "");
  for (const char* number : {">-1<", ">-0.5<", ">0<", ">0.5<", ">1<"}) EXPECT_THAT(svg, HasSubstr(number));
  EXPECT_THAT(svg, HasSubstr("y1=\"87.0\" y2=\"87.0\" stroke=\"currentColor\" stroke-opacity=\"0.8\""));
  EXPECT_THAT(svg, HasSubstr("y1=\"20.0\" y2=\"20.0\" stroke=\"currentColor\" stroke-opacity=\"0.2\""));
}

TEST(StripPlot, PutsGroupsBesideEachOther) {
  const std::string svg = stripPlot(
      {{"a", "<old>", 1}, {"b", "young", 2}, {"c", "<old>", 3}, {"d", "young", std::nan("")}}, "F", "");
  EXPECT_THAT(svg, HasSubstr(">&lt;old&gt; (2)<"));
  EXPECT_THAT(svg, HasSubstr(">young (1)<"));
  EXPECT_LT(svg.find("old&gt; (2)"), svg.find("young (1)"));
  EXPECT_THAT(svg, HasSubstr("viewBox=\"0 0 272 186\""));
  EXPECT_THAT(svg, HasSubstr("<circle cx=\"199.0\""));  // the other group's first
  EXPECT_THAT(svg, Not(HasSubstr("nan")));
}

TEST(StripPlot, OfEqualValuesAndOfNoneIsDrawnAllTheSame) {
  EXPECT_THAT(stripPlot({{"a", "", 0}}, "F", ""), HasSubstr(circle("89.0", "87.0")));
  EXPECT_THAT(stripPlot({}, "<F>", "l"), HasSubstr("&lt;F&gt;"));
}

}  // namespace
