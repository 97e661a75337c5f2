#include "cluster/job_files.h"

#include <gtest/gtest.h>

#include "cluster/run_command.h"
#include "tests/support/scratch.h"

namespace {

using cluster::Command;
using cluster::Condition;
using cluster::JobChain;
using cluster::SlurmOptions;
using cluster::Stage;

JobChain sampleChain(const std::string& folder = "/out/jobs 1") {
  JobChain chain{folder, "/data set", {}};
  chain.stages = {
      {"participants", {{"sub-01", {{"tavmap", "a b"}}}, {"sub-02", {{"tavmap", "it's"}}}}, {7, 900, 2}},
      {"group",
       {{"group", {{"tavmap", "group"}}}},
       {10, 2000, 1},
       {{"participants", Condition::kAllSucceeded}}},
      {"reports",
       {{"reports", {{"tavmap", "pages"}}}},
       {5, 1500, 1},
       {{"participants", Condition::kAllEnded}, {"group", Condition::kAllEnded}}}};
  return chain;
}

TEST(JobFiles, ATaskIsALine) {
  EXPECT_EQ(cluster::taskList(sampleChain().stages[0]), "tavmap 'a b'\ntavmap 'it'\\''s'\n");
}

TEST(JobFiles, SubmitScriptHasTheChainInFull) {
  const std::string text = cluster::submitScript(sampleChain(), {});
  EXPECT_EQ(text, R"(#!/bin/bash
# Submits the job arrays of this folder to Slurm.
set -euo pipefail
participants=$(sbatch --parsable --requeue --open-mode=append --kill-on-invalid-dep=yes --job-name=tavmap-participants '--chdir=/out/jobs 1' --output=participants/%a.slurm --array=1-2 --ntasks=1 --cpus-per-task=2 --mem=900M --time=7 '/out/jobs 1/participants.sh')
echo "participants: job $participants"
group=$(sbatch --parsable --requeue --open-mode=append --kill-on-invalid-dep=yes --job-name=tavmap-group '--chdir=/out/jobs 1' --output=group/%a.slurm --array=1-1 --ntasks=1 --cpus-per-task=1 --mem=2000M --time=10 "--dependency=afterok:${participants%%;*}" '/out/jobs 1/group.sh')
echo "group: job $group"
reports=$(sbatch --parsable --requeue --open-mode=append --kill-on-invalid-dep=yes --job-name=tavmap-reports '--chdir=/out/jobs 1' --output=reports/%a.slurm --array=1-1 --ntasks=1 --cpus-per-task=1 --mem=1500M --time=5 "--dependency=afterany:${participants%%;*},afterany:${group%%;*}" '/out/jobs 1/reports.sh')
echo "reports: job $reports"
)");
}

TEST(JobFiles, FilesAreListsScriptsAndOneThatSubmits) {
  std::vector<std::string> names;
  for (const cluster::JobFile& file : cluster::jobFiles(sampleChain(), {})) names.push_back(file.name);
  EXPECT_EQ(names, (std::vector<std::string>{"participants.tasks", "participants.sh", "group.tasks",
                                             "group.sh", "reports.tasks", "reports.sh", "submit.sh"}));
}

// The scripts themselves, run by bash as Slurm would.
struct StageScript : testing::Test {
  Scratch scratch;
  // Everything that a path can have.
  std::string folder = scratch.file("it's a \"folder\"\nwith $HOME `x` %a");
  std::string working = scratch.file("work\n'here'");

  void write(const std::vector<cluster::Task>& tasks) const {
    std::filesystem::create_directories(folder);
    std::filesystem::create_directories(working);
    cluster::writeJobFiles({folder, working, {{"stage", tasks, {}}}}, {});
  }
  [[nodiscard]] cluster::Answer runTask(int number) const {
    return cluster::run({"bash", folder + "/stage.sh", std::to_string(number)});
  }
  [[nodiscard]] std::string left(const std::string& name) const {
    return contentOf(folder + "/stage/" + name);
  }
};

TEST_F(StageScript, RunsItsTaskInTheWorkingFolderAndLeavesItsCode) {
  write({{"first", {{"bash", "-c", "echo one; echo oops >&2; exit 4"}}}, {"second", {{"pwd"}}}});
  EXPECT_EQ(runTask(1).exitCode, 4);
  EXPECT_EQ(left("1.out"), "one\n");
  EXPECT_EQ(left("1.err"), "oops\n");
  EXPECT_EQ(left("1.code"), "4\n");
  EXPECT_EQ(runTask(2).exitCode, 0);
  EXPECT_EQ(left("2.out"), working + "\n");
  EXPECT_EQ(left("2.code"), "0\n");
}

TEST_F(StageScript, TakesItsNumberFromTheArray) {
  write({{"first", {{"echo", "1"}}}, {"second", {{"echo", "2"}}}});
  EXPECT_EQ(cluster::run({"env", "SLURM_ARRAY_TASK_ID=2", "bash", folder + "/stage.sh"}).exitCode, 0);
  EXPECT_EQ(left("2.out"), "2\n");
  const cluster::Answer none =
      cluster::run({"env", "-u", "SLURM_ARRAY_TASK_ID", "bash", folder + "/stage.sh"});
  EXPECT_NE(none.exitCode, 0);
  EXPECT_NE(none.err.find("give the number of a task"), std::string::npos) << none.err;
}

TEST_F(StageScript, RefusesATaskThatIsNotThere) {
  write({{"first", {{"true"}}}});
  const cluster::Answer answer = runTask(2);
  EXPECT_EQ(answer.exitCode, 1);
  EXPECT_NE(answer.err.find("no task 2 in "), std::string::npos) << answer.err;
}

TEST_F(StageScript, OneThatFailsInABundleFailsItAndTheOthersStillRun) {
  write({{"both", {{"bash", "-c", "exit 5"}, {"echo", "it's \n there"}}}});
  EXPECT_EQ(runTask(1).exitCode, 5);
  EXPECT_EQ(left("1.out"), "it's \n there\n");
}

// A task that begins again has no code of its earlier life.
TEST_F(StageScript, ForgetsTheCodeOfBefore) {
  write({{"killed", {{"bash", "-c", "kill -9 $PPID $$"}}}});
  std::ofstream(folder + "/stage/1.code") << "0\n";
  (void)runTask(1);
  EXPECT_NE(left("1.code"), "0\n");
}

// A scheduler's TERM, at a time limit, reaches what works below.
TEST_F(StageScript, PassesTermOnAndTellsTheCodeThatComesOfIt) {
  const std::string wait = "trap 'echo ended; exit 130' TERM; echo begun; while :; do sleep 0.05; done";
  write({{"long", {{"true"}, {"bash", "-c", wait}}}});
  const std::string script = cluster::quotedWord(folder + "/stage.sh"),
                    out = cluster::quotedWord(folder + "/stage/1.out");
  const cluster::Answer answer =
      cluster::run({"bash", "-c",
                    "bash " + script + " 1 & job=$!; until grep -q begun " + out +
                        " 2>/dev/null; do sleep 0.05; done; kill -TERM $job; wait $job"});
  EXPECT_NE(answer.exitCode, 0);
  EXPECT_EQ(left("1.out"), "begun\nended\n");
  EXPECT_NE(left("1.code"), "0\n");
  EXPECT_NE(left("1.code"), "");
}

}  // namespace
