#include "planning/calibration.h"

#include <gtest/gtest.h>

#include "planning/expenses.h"
#include "planning/miniature.h"
#include "planning/sizes.h"
#include "planning/survey.h"
#include "request/request_file.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"

namespace {

using planning::Surveyed;

struct SmallStudyPlan : testing::Test {
  Scratch scratch;

  void SetUp() override { small_study::writeTo(scratch.folder()); }

  [[nodiscard]] Surveyed planned(const std::string& settings = "", const std::string& more = "") const {
    const auto file =
        scratch.write("r.toml", small_study::request("fwe_draws = 0\nnull_draws = 2\n" + settings, more));
    std::vector<Surveyed> found = planning::survey(
        {study::readRequestFile(file)}, {.seed = 1U, .version = "0", .drawsSeeds = false, .force = false});
    EXPECT_EQ(found.at(0).problem, "");
    return found.at(0);
  }
};

TEST_F(SmallStudyPlan, AMiniatureHasTheSameVolumesConditionsAndSettings) {
  const Surveyed one = planned();
  std::filesystem::create_directories(scratch.folder() / "mini");
  const study::Request request = planning::miniatureOf(*one.plan, 600, 0.5, 2, scratch.folder() / "mini");
  const study::StudyPlan small = study::planStudy(request, 1, "0");
  ASSERT_EQ(small.runs.size(), one.plan->runs.size());
  for (std::size_t i = 0; i < small.runs.size(); ++i) {
    EXPECT_EQ(small.runs[i].volumes.volumes, one.plan->runs[i].volumes.volumes);
    EXPECT_EQ(small.runs[i].volumes.dropped, one.plan->runs[i].volumes.dropped);
    EXPECT_EQ(small.runs[i].volumes.trSeconds, one.plan->runs[i].volumes.trSeconds);
    EXPECT_EQ(small.runs[i].confoundRank, one.plan->runs[i].confoundRank);
  }
  EXPECT_EQ(planning::conditionVolumes(small), planning::conditionVolumes(*one.plan));
  EXPECT_EQ(small.request.settings, one.plan->request.settings);
  EXPECT_EQ(small.regions.size(), 2U);
  EXPECT_EQ(planning::gridVoxels(small), 600U);
  EXPECT_NEAR(planning::usedShare(small), 0.5, 0.01);
}

TEST_F(SmallStudyPlan, RatesAreThoseOfRealWorkAndLeaveNothingBehind) {
  const Surveyed one = planned();
  const planning::Rates rates = planning::measureRates(*one.plan, scratch.folder() / "trial");
  EXPECT_GT(rates.importPerValue, 0);
  EXPECT_GT(rates.passPerVoxel + rates.referencePerVoxel, 0);
  EXPECT_GT(rates.volumes, 0);
  EXPECT_TRUE(filesBelow(scratch.folder() / "trial").empty());
  for (const auto& entry : std::filesystem::directory_iterator(scratch.folder() / "trial"))
    ADD_FAILURE() << entry.path();
}

TEST_F(SmallStudyPlan, ExpensesArePositiveAndGrowWithWhatThereIsToDo) {
  Surveyed one = planned();
  const planning::Rates rates{1e-9, 0.01, 1e-6, 0.005, 1e-5, planning::conditionVolumes(*one.plan)};
  const planning::Expenses all = planning::expensesOf(one, rates);
  for (const double figure : {all.importSeconds, all.referenceSeconds, all.reportSeconds, all.workerMegabytes,
                              all.workMegabytes, all.outMegabytes})
    EXPECT_GT(figure, 0);
  one.missing.pop_back();
  const planning::Expenses fewer = planning::expensesOf(one, rates);
  EXPECT_LT(fewer.referenceSeconds, all.referenceSeconds);
  EXPECT_LT(fewer.outMegabytes, all.outMegabytes);
  EXPECT_EQ(fewer.importSeconds, all.importSeconds);
  planning::Rates twice = rates;
  twice.volumes /= 2;  // measured on half the volumes
  EXPECT_DOUBLE_EQ(planning::expensesOf(one, twice).referenceSeconds, 2 * fewer.referenceSeconds);
  one.plan->runs[0].grid.size.x *= 2;
  EXPECT_GT(planning::expensesOf(one, rates).referenceSeconds, fewer.referenceSeconds);
}

TEST_F(SmallStudyPlan, TimesAreRatesTimesWhatThereIsToDo) {
  Surveyed one = planned();
  const planning::Rates rates{1e-3, 1, 0.01, 0.1, 0.001, planning::conditionVolumes(*one.plan)};
  const double voxels = 12 * 10 * 8;
  planning::Expenses all = planning::expensesOf(one, rates);
  EXPECT_DOUBLE_EQ(all.importSeconds, 1e-3 * voxels * 2 * small_study::kVolumes);
  EXPECT_DOUBLE_EQ(all.referenceSeconds, (1 + 0.01 * voxels) + 3 * (0.1 + 0.001 * voxels));
  one.missing.resize(11);  // of which ten share a pass
  all = planning::expensesOf(one, rates);
  EXPECT_DOUBLE_EQ(all.referenceSeconds, 2 * (1 + 0.01 * voxels) + 11 * (0.1 + 0.001 * voxels));
}

TEST_F(SmallStudyPlan, SizesAreThoseOfTheFilesAndSettings) {
  const Surveyed one = planned();
  const planning::Sizes sizes = planning::sizesOf(*one.plan);
  double inMask = 0;
  for (int z = 0; z < 8; ++z)
    for (int y = 0; y < 10; ++y)
      for (int x = 0; x < 12; ++x) inMask += small_study::inMask(x, y, z) ? 1 : 0;
  EXPECT_EQ(sizes.gridVoxels, 12 * 10 * 8);
  EXPECT_NEAR(sizes.usedVoxels, inMask, 1e-6);
  EXPECT_EQ(sizes.longestRun, small_study::kVolumes);
  EXPECT_EQ(sizes.references, 3);
  EXPECT_EQ(sizes.conditions, static_cast<double>(one.plan->conditions.size()));
  EXPECT_EQ(sizes.draws, 2);
  EXPECT_EQ(sizes.surrogates, 60);
  EXPECT_FALSE(sizes.isPlugin);
}

// Both runs as floats on the whole grid, and nothing else.
TEST_F(SmallStudyPlan, WorkFolderTakesTheImportsThatAreNotThere) {
  const Surveyed one = planned();
  double bytes = 0;
  for (const study::RunPlan& run : one.plan->runs)
    bytes += 4.0 * 12 * 10 * 8 * (run.volumes.volumes - run.volumes.dropped);
  EXPECT_DOUBLE_EQ(planning::expensesOf(one, {}).workMegabytes, bytes / 1e6);
}

TEST_F(SmallStudyPlan, WhatIsFinishedIsNotMissing) {
  EXPECT_EQ(planned().missing.size(), 3U);
  const std::vector<Surveyed> none = {planned()};
  Surveyed done = none[0];
  done.missing.clear();
  const std::vector<planning::Expenses> expenses = planning::expensesOf({done}, scratch.folder() / "trial");
  ASSERT_EQ(expenses.size(), 1U);
  EXPECT_EQ(expenses[0].seconds(), 0);
  EXPECT_FALSE(std::filesystem::exists(scratch.folder() / "trial"));
}

TEST_F(SmallStudyPlan, ARequestThatCannotBePlannedSaysWhy) {
  study::Request request = planned().request;
  request.runs[0].bold = scratch.folder() / "gone.nii.gz";
  const std::vector<Surveyed> found =
      planning::survey({request}, {.seed = 1U, .version = "0", .drawsSeeds = true, .force = false});
  ASSERT_EQ(found.size(), 1U);
  EXPECT_FALSE(found[0].plan);
  EXPECT_TRUE(found[0].problem.starts_with(request.title + ": ")) << found[0].problem;
  EXPECT_NE(found[0].problem.find("gone.nii.gz"), std::string::npos);
}

}  // namespace
