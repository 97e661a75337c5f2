#include "planning/study_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "planning/machine.h"
#include "tests/support/sample_plan.h"
#include "tests/support/scratch.h"

namespace {

using planning::StudyTable;
using testing::HasSubstr;

study::StudyPlan planOf(const std::string& title) {
  study::StudyPlan plan = sample_plan::plan();
  plan.request.title = title;
  plan.cautions = {"smoothed"};
  plan.request.output.folder = plan.workFolder = "/";
  return plan;
}

StudyTable sampleTable() {
  StudyTable table;
  table.jobs = 2;
  table.measuredSeconds = 1.25;
  table.withoutRequest = {"sub-03: no events"};
  const study::StudyPlan plan = planOf("sub-01");
  table.requests.push_back({plan.request, plan, "", {0, 1}});
  table.requests.push_back({plan.request, std::nullopt, "sub-02: too much motion", {}});
  table.requests[1].request.title = "sub-02";
  planning::Expenses expenses;
  expenses.importSeconds = 30;
  expenses.referenceSeconds = 90;
  expenses.reportSeconds = 5;
  expenses.workerMegabytes = 100;
  expenses.workMegabytes = 200;
  expenses.outMegabytes = 20;
  table.expenses = {expenses, {}};
  return table;
}

TEST(StudyTable, SaysWhoCanBeComputedAndWhoCannotAndWhy) {
  std::ostringstream text;
  planning::printTable(sampleTable(), text);
  EXPECT_THAT(text.str(), HasSubstr("1 of 3 can be computed, 0 of them are finished\n"));
  EXPECT_THAT(text.str(), HasSubstr("EXCLUDED: sub-03: no events\nEXCLUDED: sub-02: too much motion\n"));
  EXPECT_THAT(text.str(), HasSubstr("\nsub-01 "));
  EXPECT_THAT(text.str(), HasSubstr("  2/2 "));
}

std::string printedWith(double seconds, double megabytes) {
  StudyTable table = sampleTable();
  table.expenses[0].importSeconds = table.expenses[0].referenceSeconds = 0;
  table.expenses[0].reportSeconds = seconds;
  table.expenses[0].workerMegabytes = megabytes;
  std::ostringstream text;
  planning::printTable(table, text);
  return text.str();
}

TEST(StudyTable, TellsTimesAndSizesInTheUnitThatIsReadBest) {
  EXPECT_THAT(printedWith(0.2, 0.2), HasSubstr("about 1 s (measured here for 1.2 s), 1 MB of memory each"));
  EXPECT_THAT(printedWith(89, 9999),
              HasSubstr("about 89 s (measured here for 1.2 s), 9999 MB of memory each"));
  EXPECT_THAT(printedWith(600, 12300),
              HasSubstr("about 10 min (measured here for 1.2 s), 12.3 GB of memory"));
  EXPECT_THAT(printedWith(9000, 10000),
              HasSubstr("about 2.5 h (measured here for 1.2 s), 10.0 GB of memory"));
}

TEST(StudyTable, TellsTimeMemoryDiskAndTheJobArray) {
  std::ostringstream text;
  planning::printTable(sampleTable(), text);
  EXPECT_THAT(
      text.str(),
      HasSubstr("On this machine, 2 workers: about 65 s (measured here for 1.2 s), 100 MB of memory each, "
                "200 MB of disk space for imported runs, 20 MB for results\n"));
  EXPECT_THAT(
      text.str(),
      HasSubstr("As a job array: 1 task of up to 60 s; with a margin each asks for 8 min and 400 MB\n"));
  EXPECT_THAT(text.str(), HasSubstr("Warnings that need the data"));
}

TEST(StudyTable, WithNothingToDoSaysSo) {
  StudyTable table = sampleTable();
  table.requests[0].missing.clear();
  std::ostringstream text;
  planning::printTable(table, text);
  EXPECT_THAT(text.str(), HasSubstr("1 of 3 can be computed, 1 of them is finished\n"));
  EXPECT_THAT(text.str(), HasSubstr("Nothing is missing"));
}

TEST(StudyTable, IsTheSameAsJson) {
  const nlohmann::json json = planning::tableJson(sampleTable(), "9.9");
  EXPECT_EQ(json["SoftwareVersion"], "9.9");
  const nlohmann::json& first = json["Requests"][0];
  const study::StudyPlan plan = planOf("sub-01");
  EXPECT_EQ(first["Request"], "sub-01");
  EXPECT_EQ(first["Volumes"], planning::volumesOf(plan).stored);
  EXPECT_EQ(first["MissingReferences"], 2);
  EXPECT_EQ(first["Conditions"].size(), plan.conditions.size());
  EXPECT_EQ(first["Conditions"][0]["EffectiveVolumes"], plan.conditions[0].effectiveVolumes);
  EXPECT_EQ(first["Expected"]["ReferenceSeconds"], 90);
  EXPECT_EQ(json["Requests"][1]["Excluded"], "sub-02: too much motion");
  EXPECT_EQ(json["WithoutRequest"][0], "sub-03: no events");
  EXPECT_EQ(json["ThisMachine"]["Seconds"], 65);
  EXPECT_EQ(json["JobArray"]["Tasks"], 1);
}

TEST(StudyTable, WarnsOfWhatThePlanKnowsOnceAndWithItsOwner) {
  StudyTable table = sampleTable();
  planning::collectWarnings(table);
  EXPECT_EQ(std::count(table.warnings.begin(), table.warnings.end(), "sub-01: smoothed"), 1);
  table.requests.pop_back();
  table.expenses.pop_back();
  table.warnings.clear();
  planning::collectWarnings(table);
  EXPECT_EQ(std::count(table.warnings.begin(), table.warnings.end(), "smoothed"), 1);
}

TEST(StudyTable, WarnsWhenMemoryOrSpaceDoNotSuffice) {
  EXPECT_EQ(planning::memoryWarning(100, 10, 1000), "");
  EXPECT_THAT(planning::memoryWarning(101, 10, 1000),
              HasSubstr("10 workers of up to 101 MB each want more than the 1000 MB"));
  EXPECT_EQ(planning::memoryWarning(101, 10, 0), "");
  EXPECT_EQ(planning::diskWarning("/out", 50, 50), "");
  EXPECT_THAT(planning::diskWarning("/out", 51, 50),
              HasSubstr("about 51 MB will be written where /out lies, and 50 MB are free"));
  EXPECT_EQ(planning::diskWarning("/out", 51, -1), "");
}

// More than any disk has, all of it in folders that share one.
TEST(StudyTable, AddsUpWhatGoesToTheSameDisk) {
  StudyTable table = sampleTable();
  const Scratch scratch;
  const double free = planning::freeMegabytes(scratch.folder());
  ASSERT_GT(free, 0);
  table.requests[0].plan->request.output.folder = scratch.folder() / "out";
  table.requests[0].plan->workFolder = scratch.folder() / "work";
  table.expenses[0].outMegabytes = table.expenses[0].workMegabytes = 0.75 * free;
  planning::collectWarnings(table);
  EXPECT_THAT(table.warnings, testing::Contains(HasSubstr("free some space or give other folders")));
}

TEST(Machine, HasMemoryAndSpaceAlsoWhereAFolderIsYetToBeMade) {
  const Scratch scratch;
  EXPECT_GT(planning::machineMegabytes(), 0);
  EXPECT_GT(planning::freeMegabytes(scratch.folder() / "not" / "there" / "yet"), 0);
  EXPECT_TRUE(planning::shareSpace(scratch.folder() / "a", scratch.folder() / "b/c"));
  EXPECT_FALSE(planning::shareSpace(scratch.folder(), "/proc"));
}

}  // namespace
