#include "report/methods_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/report/sample_outputs.h"

namespace {

using namespace report;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

struct MethodsTextTest : testing::Test {
  study::Record record = sample_outputs::recordOf({});
  [[nodiscard]] MethodsText text() const { return methodsText({&record}); }
};

TEST_F(MethodsTextTest, HasTheNumbersOfTheRun) {
  record.model.settings.order = 4;
  record.model.settings.surrogates = 1003;
  record.model.settings.nullDraws = 21;
  record.model.settings.fdrConstant = 1.75;
  record.model.settings.fweDraws = 999;
  const std::string words = text().words;
  for (const char* expected :
       {"Tavmap 1.2.3", "TR 2.25 s, 117 of 120 volumes, the first 2 dropped, 1 censored for motion", "rank 1",
        "115 effective volumes", "order 4 (fixed in advance)", "1003 surrogates", "21 of them",
        "q = 0.01, 0.05", "divided by 1.75", "999 surrogates, each against", "seeded with 7001"})
    EXPECT_THAT(words, HasSubstr(expected));
}

TEST_F(MethodsTextTest, CitesWhatItUsesAndNothingElse) {
  const auto works = text().works;
  for (const Work work : {Work::kGeweke1982, Work::kBenjamini1995, Work::kPhipson2010, Work::kNichols2002,
                          Work::kHaufe2013, Work::kWinkler2016, Work::kPower2012})
    EXPECT_THAT(works, Contains(work));
  EXPECT_THAT(works, Not(Contains(Work::kSchwarz1978)));
  EXPECT_THAT(works, Not(Contains(Work::kBenjamini2001)));
}

TEST_F(MethodsTextTest, SaysHowTheOrderWasChosen) {
  record.model.settings.orderChoice = study::OrderChoice::kHqc;
  EXPECT_THAT(text().words, HasSubstr("Hannan-Quinn criterion (Hannan & Quinn 1979)"));
}

TEST_F(MethodsTextTest, WithoutDirectionMapSaysNothingOfReversedTime) {
  EXPECT_THAT(text().words, HasSubstr("reversed time"));
  record.conditions[0].direction = {};
  EXPECT_THAT(text().words, Not(HasSubstr("reversed time")));
}

TEST_F(MethodsTextTest, OfThePluginSaysWhatThePluginDoes) {
  record.model.settings.method = study::Method::kPlugin;
  EXPECT_THAT(text().words, HasSubstr("walk from the strongest voxel down (constant 2)"));
  EXPECT_THAT(text().words, Not(HasSubstr("least squares")));
  EXPECT_THAT(text().works, Contains(Work::kBenjamini2001));
}

TEST_F(MethodsTextTest, NamesAFewReferencesAndCountsMany) {
  study::Record other = record;
  other.reference = "V2";
  EXPECT_THAT(methodsText({&record, &other}).words, HasSubstr("between V1 and V2 and every voxel"));
  EXPECT_THAT(methodsText(std::vector<const study::Record*>(9, &record)).words,
              HasSubstr("between 9 regions"));
}

}  // namespace
