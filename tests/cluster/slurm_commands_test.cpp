#include "cluster/slurm_commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using cluster::Command;
using cluster::Condition;
using testing::Contains;
using testing::Not;

cluster::Stage stage() {
  return {"group",
          {{"group", {{"x"}}}},
          {10, 2000, 3},
          {{"first", Condition::kAllSucceeded}, {"second", Condition::kAllEnded}}};
}

TEST(SlurmCommands, DependenciesSaySuccessOrEnd) {
  EXPECT_EQ(
      cluster::dependencyText(stage(), [](const std::string& name) { return name == "first" ? "12" : "34"; }),
      "afterok:12,afterany:34");
  EXPECT_EQ(cluster::dependencyText(stage(), [](const std::string&) { return ""; }), "");
}

TEST(SlurmCommands, SubmissionAsksForTheSizesOfItsTasks) {
  const Command command = cluster::submitCommand({"/jobs", "/", {}}, stage(), {{"first", "12"}}, {});
  EXPECT_EQ(command, (Command{"sbatch", "--parsable", "--requeue", "--open-mode=append",
                              "--kill-on-invalid-dep=yes", "--job-name=tavmap-group", "--chdir=/jobs",
                              "--output=group/%a.slurm", "--array=1-1", "--ntasks=1", "--cpus-per-task=3",
                              "--mem=2000M", "--time=10", "--dependency=afterok:12", "/jobs/group.sh"}));
}

TEST(SlurmCommands, WhatIsAskedForStandsInPlaceOfSizes) {
  cluster::SlurmOptions options;
  options.partition = "long";
  options.time = "1-00:00";
  options.memory = "2G";
  options.mostAtOnce = 4;
  options.extra = {"--account=a b"};
  const Command command = cluster::submitCommand({"/jobs", "/", {}}, stage(), {}, options);
  for (const char* word :
       {"--array=1-1%4", "--mem=2G", "--time=1-00:00", "--partition=long", "--account=a b"})
    EXPECT_THAT(command, Contains(word));
  EXPECT_THAT(command, Not(Contains("--mem=2000M")));
  EXPECT_EQ(command.back(), "/jobs/group.sh");
}

TEST(SlurmCommands, ReadsNumbersOfJobs) {
  EXPECT_EQ(cluster::submittedJob("123\n"), "123");
  EXPECT_EQ(cluster::submittedJob("123;far\n"), "123");
  EXPECT_EQ(cluster::submittedJob("Submitted batch job 123\n"), std::nullopt);
  EXPECT_EQ(cluster::submittedJob(""), std::nullopt);
}

TEST(SlurmCommands, ReadsTheQueue) {
  EXPECT_EQ(cluster::queueCommand({"7", "8"}).back(), "--jobs=7,8");
  const auto tasks =
      cluster::queuedTasks("7_1|RUNNING|None\n7_12|PENDING|Resources\nnonsense\n8|PENDING|x\n7_x|A|B\n");
  ASSERT_EQ(tasks.size(), 2U);
  EXPECT_EQ(tasks[0].job + "/" + tasks[0].state, "7/RUNNING");
  EXPECT_EQ(tasks[1].number, 12);
  EXPECT_EQ(tasks[1].reason, "Resources");
}

TEST(SlurmCommands, KnowsWhatIsForgottenFromWhatIsBroken) {
  EXPECT_TRUE(cluster::areForgotten("slurm_load_jobs error: Invalid job id specified\n"));
  EXPECT_FALSE(
      cluster::areForgotten("slurm_load_jobs error: Unable to contact slurm controller (connect failure)\n"));
}

TEST(SlurmCommands, ReadsWhatIsRemembered) {
  EXPECT_EQ(cluster::rememberedState("JobId=9 ArrayTaskId=2 JobState=TIMEOUT Reason=TimeLimit\n"), "TIMEOUT");
  EXPECT_EQ(cluster::rememberedState("slurm_load_jobs error: Invalid job id specified\n"), "");
  EXPECT_EQ(cluster::accountedState("CANCELLED by 1000\n"), "CANCELLED");
  EXPECT_EQ(cluster::accountedState(""), "");
}

}  // namespace
