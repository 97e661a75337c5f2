#include "cluster/outcome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "cluster/run_command.h"
#include "tests/support/scratch.h"

namespace {

using cluster::TaskState;
using testing::HasSubstr;

// Stand-ins for the commands of Slurm, in front of PATH.
struct OutcomeOfTasks : testing::Test {
  Scratch scratch;
  std::string before = std::getenv("PATH");

  void SetUp() override {
    std::filesystem::create_directories(scratch.folder() / "bin");
    setenv("PATH", (scratch.file("bin") + ":" + before).c_str(), 1);
    standIn("squeue", "exit 0");
    standIn("scontrol", "exit 1");
    standIn("sacct", "exit 1");
  }
  void TearDown() override { setenv("PATH", before.c_str(), 1); }

  void standIn(const std::string& command, const std::string& script) const {
    const auto file = scratch.write("bin/" + command, "#!/bin/sh\n" + script + "\n");
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  }
  void left(int task, const std::string& what, const std::string& text) const {
    (void)scratch.write("jobs/participants/" + std::to_string(task) + what, text);
  }
  [[nodiscard]] cluster::Submission submission() const {
    return {scratch.folder() / "jobs", {{"participants", "7", {"sub-01", "sub-02", "sub-03"}}}};
  }
};

TEST_F(OutcomeOfTasks, CodesQueueAndMemoryTogetherSayWhatBecameOfEach) {
  left(1, ".code", "0\n");
  left(2, ".code", "1\n");
  left(2, ".err", "one\ntwo\nthree\nfour\nfive\nsix\n");
  standIn("scontrol", "[ \"$4\" = 7_3 ] && echo 'JobId=7 JobState=OUT_OF_MEMORY Reason=x'");
  const cluster::Outcome outcome = cluster::outcomeOf(submission());
  EXPECT_EQ(outcome.tasks[0].state, TaskState::kDone);
  EXPECT_EQ(outcome.tasks[1].state, TaskState::kFailed);
  EXPECT_EQ(outcome.tasks[1].why, "exit code 1");
  EXPECT_EQ(outcome.tasks[1].said, "two\nthree\nfour\nfive\nsix");
  EXPECT_EQ(outcome.tasks[2].why, "it ended without an exit code; Slurm says OUT_OF_MEMORY");
  EXPECT_FALSE(outcome.isUnderWay());
  EXPECT_EQ(outcome.count(TaskState::kFailed), 2U);
}

TEST_F(OutcomeOfTasks, AccountingAnswersWhereMemoryDoesNot) {
  standIn("sacct", "echo NODE_FAIL");
  EXPECT_THAT(cluster::outcomeOf(submission()).tasks[0].why, HasSubstr("Slurm says NODE_FAIL"));
  standIn("sacct", "exit 1");
  EXPECT_EQ(cluster::outcomeOf(submission()).tasks[0].why,
            "it ended without an exit code: killed, or never begun");
}

// A requeued task stands in the queue again, whatever it left before.
TEST_F(OutcomeOfTasks, WhatStandsInTheQueueIsUnderWay) {
  left(1, ".code", "1\n");
  standIn("squeue", "echo '7_1|PENDING|BeginTime'; echo '7_2|RUNNING|None'");
  const cluster::Outcome outcome = cluster::outcomeOf(submission());
  EXPECT_EQ(outcome.tasks[0].state, TaskState::kWaiting);
  EXPECT_EQ(outcome.tasks[0].why, "BeginTime");
  EXPECT_EQ(outcome.tasks[1].state, TaskState::kRunning);
  EXPECT_TRUE(outcome.isUnderWay());
}

TEST_F(OutcomeOfTasks, JobsThatTheQueueHasForgottenHaveEnded) {
  standIn("squeue", "echo 'slurm_load_jobs error: Invalid job id specified' >&2; exit 1");
  left(1, ".code", "0\n");
  const cluster::Outcome outcome = cluster::outcomeOf(submission());
  EXPECT_EQ(outcome.caution, "");
  EXPECT_EQ(outcome.tasks[0].state, TaskState::kDone);
  EXPECT_EQ(outcome.tasks[1].state, TaskState::kFailed);
}

TEST_F(OutcomeOfTasks, WithoutAQueueNothingIsTakenForEnded) {
  standIn("squeue", "echo 'cannot connect' >&2; exit 1");
  left(1, ".code", "0\n");
  const cluster::Outcome outcome = cluster::outcomeOf(submission());
  EXPECT_EQ(outcome.caution, "the queue cannot be asked (squeue, exit code 1): cannot connect");
  EXPECT_EQ(outcome.tasks[0].state, TaskState::kDone);
  EXPECT_EQ(outcome.tasks[1].state, TaskState::kWaiting);
}

TEST_F(OutcomeOfTasks, TellsCountsAndEachFailure) {
  left(1, ".code", "0\n");
  left(2, ".code", "137\n");
  left(2, ".err", "tavmap: no space\n");
  standIn("squeue", "echo '7_3|PENDING|Priority'");
  std::ostringstream text;
  cluster::printOutcome(cluster::outcomeOf(submission()), text);
  EXPECT_EQ(text.str(),
            "participants: 1 done, 1 failed, 1 waiting\n"
            "FAILED: participants 2 (sub-02): exit code 137: ended by signal 9\n"
            "    tavmap: no space\n"
            "    all of it: " +
                scratch.file("jobs/participants/2.err") + "\n");
}

// What was submitted before the refusal is known.
TEST_F(OutcomeOfTasks, ARefusalKeepsWhatWasSubmittedBefore) {
  standIn("sbatch",
          "case \"$*\" in *first.sh) echo '41;far';; *) echo 'no such partition' >&2; exit 1;; esac");
  std::filesystem::create_directories(scratch.folder() / "all/001");
  const cluster::JobChain chain{
      scratch.file("all/001"), "/", {{"first", {{"a", {{"x"}}}}, {}}, {"second", {{"b", {{"y"}}}}, {}}}};
  std::string said;
  try {
    (void)cluster::submit(chain, {});
  } catch (const std::runtime_error& error) {
    said = error.what();
  }
  EXPECT_THAT(said, HasSubstr("Slurm did not take the second jobs (sbatch, exit code 1): no such partition"));
  const auto kept = cluster::lastSubmission(scratch.folder() / "all");
  ASSERT_TRUE(kept);
  ASSERT_EQ(kept->stages.size(), 1U);
  EXPECT_EQ(kept->stages[0].job, "41");
  EXPECT_EQ(kept->stages[0].tasks, (std::vector<std::string>{"a"}));
  EXPECT_EQ(cluster::nextFolder(scratch.folder() / "all").filename(), "002");
  EXPECT_FALSE(cluster::lastSubmission(scratch.folder() / "none").has_value());
}

}  // namespace
