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
          {{"<main>", "main", {0.1, std::nan("")}, "f.json#/Y"},
           {"line", "bound", {}, "", 0.25},
           {"other", "null", {3}}},
          {{1.5, "q = 0.1"}},
          {{0.5, 1.5, "censored", "censored"}}};
}

TEST(ChartJson, HasWhatTheScriptDraws) {
  const auto json = chartJson(sample());
  EXPECT_EQ(json["series"][0]["column"], 1);
  EXPECT_EQ(json["series"][1]["perX"], 0.25);
  EXPECT_EQ(json["series"][2]["column"], 2);
  EXPECT_EQ(json["y"]["log"], true);
  EXPECT_EQ(json["marks"][0]["label"], "q = 0.1");
  EXPECT_EQ(json["spans"][0]["to"], 1.5);
}

TEST(ChartFigure, HasItsNumbersAsATable) {
  const std::string html = chartFigure(sample());
  EXPECT_THAT(html, HasSubstr("data-chart=\"one\""));
  EXPECT_THAT(html, HasSubstr("data-from=\"f.json#/Y\">&lt;main&gt;</th>"));
  EXPECT_THAT(html, HasSubstr("<tr><td>1<td>0.1<td>3<tr>"));
  EXPECT_THAT(html, HasSubstr("<tr><td>2<td>n/a<td></tbody>"));  // a histogram has an edge more than bins
}

}  // namespace
