// `tavmap plan` as users call it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "simulation/bids_tree.h"
#include "tests/support/program.h"
#include "tests/support/run_command_fixture.h"
#include "tests/support/scratch.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;

const Scratch& groupStudy() {
  static const Scratch folder;
  static const bool written = [] {
    simulation::DataSetOptions options;
    options.head.grid = {13, 14, 12};
    options.volumes = 80;
    simulation::writeGroupStudy(folder.file("study"), options, {.participants = 4});
    (void)folder.write("settings.toml", "[settings]\nfwe_draws = 0\nnull_draws = 1\nsurrogates = 20\n");
    return true;
  }();
  EXPECT_TRUE(written);
  return folder;
}

ProgramResult planThatPrints(std::vector<std::string> more = {}) {
  std::vector<std::string> words = {
      "plan",
      "study",
      "out",
      "participant",
      "--config-file=settings.toml",
      "--atlas=study/derivatives/atlas/atlas-Simulated_space-MNI152NLin2009cAsym_dseg.nii.gz",
      "--labels=Reference",
      "--labels=Driven-A",
      "--confounds=trans_y",
      "--fd-threshold=0.5",
      "--drop-volumes=2"};
  words.insert(words.end(), more.begin(), more.end());
  return tavmap(words, groupStudy().folder());
}

TEST(PlanCommand, TellsOfADataSetWhoIsExcludedAndWhyAndWhatIsLeftOfTheOthers) {
  const ProgramResult planned = planThatPrints({"--json", "--seed=1"});
  EXPECT_EQ(planned.exitCode, 1) << planned.err;  // somebody cannot be computed
  const json table = json::parse(planned.out);
  ASSERT_EQ(table["Requests"].size(), 4U);
  for (std::size_t i = 0; i < 3; ++i) {
    const json& one = table["Requests"][i];
    EXPECT_EQ(one["Runs"], 2);
    EXPECT_EQ(one["Volumes"], 160);
    EXPECT_EQ(one["DroppedVolumes"], 4);
    EXPECT_EQ(one["CensoredVolumes"], 4);  // a jerk in each run, there and back
    EXPECT_EQ(one["References"], 2);
    EXPECT_EQ(one["Conditions"][0]["Condition"], "whole");
    EXPECT_EQ(one["Conditions"][0]["Volumes"], 152);
    EXPECT_LT(one["Conditions"][0]["EffectiveVolumes"], 152);
    EXPECT_GT(one["Expected"]["ReferenceSeconds"], 0);
  }
  EXPECT_THAT(table["Requests"][3]["Excluded"].get<std::string>(), HasSubstr("sub-04"));
  EXPECT_THAT(table["Requests"][3]["Excluded"].get<std::string>(), HasSubstr("no degrees of freedom"));
  EXPECT_EQ(table["JobArray"]["Tasks"], 3);
}

TEST(PlanCommand, WritesNothing) {
  ASSERT_EQ(planThatPrints().exitCode, 1);
  EXPECT_FALSE(std::filesystem::exists(groupStudy().folder() / "out"));
}

TEST(PlanCommand, ShowsThePersonAtTheTerminalTheSame) {
  const ProgramResult planned = planThatPrints({"--jobs=2", "--participant-label=01"});
  EXPECT_EQ(planned.exitCode, 0) << planned.err;
  EXPECT_THAT(planned.out, HasSubstr("1 of 1 can be computed, 0 of them are finished\n"));
  EXPECT_THAT(planned.out, HasSubstr("On this machine, 2 workers: about "));
  EXPECT_THAT(planned.out, HasSubstr("As a job array: 1 task of up to "));
}

TEST(PlanCommand, RefusesWhatIsNeitherFilesNorADataSet) {
  EXPECT_THAT(tavmap({"plan", "study"}, groupStudy().folder()).err,
              HasSubstr("give request files, or BIDS_DIR OUT"));
  EXPECT_THAT(tavmap({"plan", "study", "out", "group"}, groupStudy().folder()).err,
              HasSubstr("only that level"));
  EXPECT_EQ(tavmap({"plan", "no.toml"}, groupStudy().folder()).exitCode, 2);
}

using PlanOfRequest = SmallStudyRun;

TEST_F(PlanOfRequest, KnowsWhatIsFinished) {
  const auto request = write("fwe_draws = 0\nnull_draws = 1\n");
  const auto plan = [&] {
    return json::parse(tavmap({"plan", request.string(), "--json", "--seed=3"}, folder()).out);
  };
  const json before = plan();
  EXPECT_EQ(before["Requests"][0]["MissingReferences"], 3);
  ASSERT_EQ(run(request, {"--seed=3", "--no-report"}).exitCode, 0);
  const json after = plan();
  EXPECT_EQ(after["Requests"][0]["MissingReferences"], 0);
  EXPECT_EQ(after["JobArray"]["Tasks"], 0);
  EXPECT_EQ(after["ThisMachine"]["Seconds"], 0);
}

TEST(PlanCommand, ExpectsOnTheDiskWhatThenIsThere) {
  const Scratch scratch;
  ASSERT_EQ(
      tavmap({"simulate", "study", "--bids", "--participants=1", "--runs=1"}, scratch.folder()).exitCode, 0);
  const std::vector<std::string> asked = {
      "study",
      "out",
      "participant",
      "--atlas=study/derivatives/atlas/atlas-Simulated_space-MNI152NLin2009cAsym_dseg.nii.gz",
      "--labels=Reference",
      "--labels=Driven-A",
      "--seed=1"};
  std::vector<std::string> plan = {"plan", "--json"}, bids = {"bids"};
  plan.insert(plan.end(), asked.begin(), asked.end());
  bids.insert(bids.end(), asked.begin(), asked.end());
  const json expected =
      json::parse(tavmap(plan, scratch.folder()).out)["Requests"][0]["Expected"]["OutMegabytes"];
  ASSERT_EQ(tavmap(bids, scratch.folder()).exitCode, 0);
  double bytes = 0;
  for (const auto& [name, content] : filesBelow(scratch.folder() / "out"))
    bytes += static_cast<double>(content.size());
  EXPECT_NEAR(expected.get<double>() / (bytes / 1e6), 1, 0.4);
}

}  // namespace
