#include "report/quotes.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using namespace report;

struct QuotesTest : testing::Test {
  formats::Json json = formats::Json::parse(
      R"({"Conditions":[{"Peak":13.0103035,"None":null,"Count":594,"Small":-0.04}],"Text":"5"})");
  Quotes quotes{json, "a.json"};
};

TEST_F(QuotesTest, SayWhereANumberStands) {
  EXPECT_EQ(quotes.number("/Conditions/0/Peak", Digits::kFour),
            "<data value=\"13.0103035\" data-from=\"a.json#/Conditions/0/Peak\">13.01</data>");
  EXPECT_EQ(quotes.at("/Conditions/0").number("/Count"),
            "<data value=\"594\" data-from=\"a.json#/Conditions/0/Count\">594</data>");
}

TEST_F(QuotesTest, AreNotAvailableWhereThereIsNoNumber) {
  for (const char* way : {"/Conditions/0/None", "/Conditions/1/Peak", "/Text", "/Nowhere"})
    EXPECT_EQ(quotes.number(way), "n/a") << way;
  EXPECT_TRUE(quotes.has("/Conditions/0/None"));
  EXPECT_FALSE(quotes.has("/Conditions/1"));
}

TEST_F(QuotesTest, HaveNoMinusBeforeZero) {
  EXPECT_NE(quotes.number("/Conditions/0/Small", Digits::kTenth).find(">0.0<"), std::string::npos);
}

TEST(QuotedCell, CountsRowsBelowTheHeaderFromOne) {
  EXPECT_EQ(quotedCell(0, "peak", "12.75", Digits::kTenth),
            "<data value=\"12.75\" data-from=\"#1/peak\">12.8</data>");
  EXPECT_EQ(quotedCell(0, "peak", "n/a"), "n/a");
}

}  // namespace
