#include "report/chart.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>

namespace {

using namespace report;
using testing::HasSubstr;

Chart sample() {
  return {"one",
          "line",
          "Words",
          {"Volume", "s"},
          {"Value", "", true},
          {1, 2},
          "f.json#/X",
          {{"<main>", "main", {0.1, NAN}, "f.json#/Y"}, {"derived", "bound", {3}}},
          {{1.5, "q = 0.1"}},
          {{0.5, 1.5, "censored", "censored"}}};
}

TEST(ChartJson, HasWhatTheScriptDraws) {
  const auto json = chartJson(sample());
  EXPECT_EQ(json["xs"], nlohmann::json({1.0, 2.0}));
  EXPECT_EQ(json["series"][0]["ys"][0], 0.1);
  EXPECT_TRUE(json["series"][0]["ys"][1].is_null());
  EXPECT_EQ(json["y"]["log"], true);
  EXPECT_EQ(json["marks"][0]["label"], "q = 0.1");
  EXPECT_EQ(json["spans"][0]["to"], 1.5);
}

TEST(ChartFigure, HasTheSameNumbersAsATable) {
  const std::string html = chartFigure(sample());
  EXPECT_THAT(html, HasSubstr("data-chart=\"one\""));
  EXPECT_THAT(html, HasSubstr("data-from=\"f.json#/Y\">&lt;main&gt;</th>"));
  EXPECT_THAT(html, HasSubstr("<tr><td>1</td><td>0.1</td><td>3</td></tr>"));
  EXPECT_THAT(
      html, HasSubstr("<tr><td>2</td><td>n/a</td><td></td></tr>"));  // a histogram has an edge more than bins
}

}  // namespace
