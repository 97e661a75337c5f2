#include "report/limits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/report/sample_outputs.h"

namespace {

using namespace report;
using testing::HasSubstr;

// The words under a title; empty when the limit is not there.
std::string wordsOf(const study::Record& record, const std::string& title) {
  for (const Limit& limit : limitsOf({&record}))
    if (limit.title == title) return limit.words;
  return "";
}

struct LimitsTest : testing::Test {
  study::Record record = sample_outputs::recordOf({});
  study::ConditionRecord& condition = record.conditions[0];
};

TEST_F(LimitsTest, SayTheRepetitionTimeAndHowFarModelsLookBack) {
  record.model.settings.order = 3;
  EXPECT_THAT(wordsOf(record, "Sampling"), HasSubstr("here 2.25 s, and with order 3 they look back 6.75 s"));
  EXPECT_THAT(wordsOf(record, "Sampling"), HasSubstr("slice timing"));
  condition.runs[0].repetitionTime = 0.7;
  EXPECT_THAT(wordsOf(record, "Sampling"), testing::Not(HasSubstr("slice timing")));
}

TEST_F(LimitsTest, SpeakOfTheFilterOnlyWhenThereIsOne) {
  EXPECT_EQ(wordsOf(record, "Filter"), "");
  record.model.settings.highPass = 128;
  EXPECT_THAT(wordsOf(record, "Filter"), HasSubstr("slower than 128 s"));
}

TEST_F(LimitsTest, TellConfoundsFromNone) {
  EXPECT_NE(wordsOf(record, "Confounds"), "");
  EXPECT_EQ(wordsOf(record, "No confounds"), "");
  condition.runs[0].confoundsRegressed.clear();
  EXPECT_EQ(wordsOf(record, "Confounds"), "");
  EXPECT_NE(wordsOf(record, "No confounds"), "");
}

TEST_F(LimitsTest, CompareConditionsOfDifferentLength) {
  EXPECT_EQ(wordsOf(record, "Conditions of different length"), "");
  record.conditions.push_back(condition);
  record.conditions[1].effectiveVolumes = 60;
  EXPECT_THAT(wordsOf(record, "Conditions of different length"), HasSubstr("60 to 115"));
}

TEST_F(LimitsTest, PointOutShortIntervals) {
  EXPECT_EQ(wordsOf(record, "Short intervals"), "");
  record.conditions[0].runs[0].intervals = {{1, 12}, {20, 60}};
  EXPECT_THAT(wordsOf(record, "Short intervals"), HasSubstr("The shortest of 2 intervals has 12 volumes"));
  record.conditions[0].runs[0].intervals = {{1, 30}, {40, 90}};
  EXPECT_EQ(wordsOf(record, "Short intervals"), "");
  record.conditions[0].runs[0].intervals = {{1, 12}};
  EXPECT_EQ(wordsOf(record, "Short intervals"), "") << "one interval is a short run, of which others speak";
}

TEST_F(LimitsTest, SayHowManyRunsTheMapsDescribe) {
  condition.runs.resize(1);
  EXPECT_THAT(wordsOf(record, "One participant"), HasSubstr("The maps describe one run of one data set"));
  condition.runs.push_back(condition.runs[0]);
  condition.runs[1].run = "another";
  EXPECT_THAT(wordsOf(record, "One participant"), HasSubstr("The maps describe 2 runs of one data set"));
}

TEST_F(LimitsTest, SpeakOfCensoringOnlyWhenVolumesWereCensored) {
  EXPECT_NE(wordsOf(record, "Censored volumes"), "");
  condition.runs[0].volumesCensored = 0;
  EXPECT_EQ(wordsOf(record, "Censored volumes"), "");
}

TEST_F(LimitsTest, OfThePluginAreItsOwn) {
  EXPECT_EQ(wordsOf(record, "Method plugin: thresholds"), "");
  record.model.settings.method = study::Method::kPlugin;
  EXPECT_NE(wordsOf(record, "Method plugin: thresholds"), "");
  EXPECT_EQ(wordsOf(record, "Method plugin: order 2 and above"), "");
  EXPECT_THAT(wordsOf(record, "Unequal noise"), HasSubstr("does not test for it"));
  record.model.settings.order = 2;
  EXPECT_NE(wordsOf(record, "Method plugin: order 2 and above"), "");
}

TEST_F(LimitsTest, CountMapsOnlyWhenSomethingPasses) {
  EXPECT_THAT(wordsOf(record, "Several maps"), HasSubstr("There are 2 maps"));
  sample_outputs::Sample nothing;
  nothing.survives = false;
  EXPECT_EQ(wordsOf(sample_outputs::recordOf(nothing), "Several maps"), "");
}

TEST_F(LimitsTest, WithoutDifferencesDoNotSpeakOfLeads) {
  condition.maps.pop_back();
  EXPECT_EQ(wordsOf(record, "Unequal noise"), "");
  EXPECT_EQ(wordsOf(record, "Blood vessels"), "");
}

TEST_F(LimitsTest, HaveEveryTitleOnce) {
  const study::Record other = record;
  std::vector<std::string> titles;
  for (const Limit& limit : limitsOf({&record, &other})) titles.push_back(limit.title);
  std::sort(titles.begin(), titles.end());
  EXPECT_EQ(std::unique(titles.begin(), titles.end()), titles.end());
  EXPECT_TRUE(limitsOf({}).empty());
}

}  // namespace
