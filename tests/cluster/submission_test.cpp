// `tavmap bids --scheduler slurm` with stand-ins for Slurm's commands: sbatch notes its arguments and runs
// the tasks at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "simulation/bids_tree.h"
#include "tests/support/program.h"
#include "tests/support/scratch.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// Job numbers count up; tasks named in `skip` ("participants 2") never begin. Dependencies are noted alone.
constexpr const char* kSbatch = R"(#!/bin/bash
here=$(dirname "$0")
printf '%s\n' "$*" >>"$here/sbatch.calls"
for word in "$@"; do case $word in --array=*) last=${word##*-};; esac; script=$word; done
stage=$(basename "$script" .sh)
for n in $(seq "$last"); do
  grep -qsx "$stage $n" "$here/skip" || bash "$script" "$n" || true
done
jobs=$(cat "$here/jobs" 2>/dev/null || echo 100)
echo $((jobs + 1)) >"$here/jobs"
echo "$((jobs + 1));stand-in"
)";

constexpr const char* kSettings =
    "[settings]\nfwe_draws = 0\nsurrogates = 20\nnull_draws = 1\ndiscarded_time_points = 10\n";

const Scratch& study() {
  static const Scratch folder;
  static const bool written = [] {
    simulation::DataSetOptions options;
    options.head.grid = {13, 14, 12};
    options.volumes = 80;
    options.runs = 1;
    simulation::writeGroupStudy(folder.file("study"), options, {.participants = 4});
    (void)folder.write("settings.toml", kSettings);
    return true;
  }();
  EXPECT_TRUE(written);
  return folder;
}

struct Submission : testing::Test {
  Scratch scratch;
  std::string before = std::getenv("PATH");
  std::string out = scratch.file("it's out");

  void SetUp() override {
    std::filesystem::create_directories(scratch.folder() / "bin");
    setenv("PATH", (scratch.file("bin") + ":" + before).c_str(), 1);
    standIn("sbatch", kSbatch);
    standIn("squeue", "#!/bin/sh\nexit 0\n");
    standIn("scontrol", "#!/bin/sh\nexit 1\n");
    standIn("sacct", "#!/bin/sh\nexit 1\n");
  }
  void TearDown() override { setenv("PATH", before.c_str(), 1); }

  void standIn(const std::string& command, const std::string& script) const {
    std::filesystem::permissions(scratch.write("bin/" + command, script), std::filesystem::perms::owner_all);
  }
  [[nodiscard]] ProgramResult bids(const std::string& folder, std::vector<std::string> words) const {
    words.insert(words.begin(), {"bids", "study", folder});
    for (const char* word :
         {"--config-file=settings.toml",
          "--atlas=study/derivatives/atlas/atlas-Simulated_space-MNI152NLin2009cAsym_dseg.nii.gz",
          "--labels=Reference", "--confounds=trans_y", "--confounds=a_comp_cor_00", "--fd-threshold=0.5",
          "--drop-volumes=auto"})
      words.emplace_back(word);
    return tavmap(words, study().folder());
  }
  // The three participants that can be computed, unless others are given.
  [[nodiscard]] ProgramResult submit(std::vector<std::string> words = {"participant", "group"},
                                     const std::vector<std::string>& people = {"01", "02", "03"}) const {
    words.insert(words.end(), {"--scheduler=slurm", "--seed=7"});
    for (const std::string& label : people) words.push_back("--participant-label=" + label);
    return bids(out, words);
  }
  [[nodiscard]] std::vector<std::string> calls() const {
    std::vector<std::string> lines;
    std::istringstream text(contentOf(scratch.folder() / "bin/sbatch.calls"));
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }
  [[nodiscard]] std::filesystem::path work() const { return std::filesystem::path(out) / "work"; }
  [[nodiscard]] std::string inFolder(const std::string& name) const {
    return contentOf(work() / "cluster" / name);
  }
};

TEST_F(Submission, GivesTheResultsOfOneMachineInAChainOfThreeArrays) {
  const ProgramResult submitted = submit();
  ASSERT_EQ(submitted.exitCode, 0) << submitted.err;
  ASSERT_EQ(calls().size(), 3U) << submitted.out;
  EXPECT_THAT(calls()[0], AllOf(HasSubstr("--array=1-3 "), Not(HasSubstr("--dependency"))));
  EXPECT_THAT(calls()[1], HasSubstr("--dependency=afterok:101 "));
  EXPECT_THAT(calls()[2], HasSubstr("--dependency=afterany:101,afterany:102 "));
  EXPECT_THAT(submitted.out, HasSubstr("participants: 3 tasks as job 101\ngroup: 1 task as job 102\n"));
  const std::string machine = scratch.file("machine");
  const std::vector<std::string> people = {"--participant-label=01", "--participant-label=02",
                                           "--participant-label=03", "--seed=7"};
  std::vector<std::string> words = {"participant", "group"};
  words.insert(words.end(), people.begin(), people.end());
  ASSERT_EQ(bids(machine, words).exitCode, 0);
  EXPECT_EQ(differingFiles(filesBelow(machine), filesBelow(out)), "");
}

TEST_F(Submission, RepeatedTellsTheOutcomeAndSubmitsWhatIsMissingAlone) {
  ASSERT_EQ(submit().exitCode, 0);
  const ProgramResult repeated = submit();
  EXPECT_EQ(repeated.exitCode, 0);
  EXPECT_THAT(repeated.out, AllOf(HasSubstr("participants: 3 done\ngroup: 1 done\nreports: 1 done\n"),
                                  HasSubstr("Nothing is missing")));
  EXPECT_EQ(calls().size(), 3U);
  std::filesystem::remove_all(out + "/sub-02");
  EXPECT_THAT(submit().out, HasSubstr("participants: 1 task as job 104"));
  EXPECT_THAT(inFolder("002/participants.tasks"), HasSubstr("--participant-label=02"));
  EXPECT_EQ(calls().size(), 6U);
}

TEST_F(Submission, ATaskThatNeverEndedIsAFailureAndIsSubmittedAgain) {
  (void)scratch.write("bin/skip", "participants 2\n");
  standIn("scontrol", "#!/bin/sh\necho 'JobId=1 JobState=NODE_FAIL'\n");
  ASSERT_EQ(submit({"participant"}).exitCode, 0);
  const ProgramResult collected = submit({"participant", "--collect"});
  EXPECT_EQ(collected.exitCode, 1);
  EXPECT_THAT(collected.out,
              AllOf(HasSubstr("participants: 2 done, 1 failed"), HasSubstr("FAILED: participants 2 (sub-02"),
                    HasSubstr("Slurm says NODE_FAIL")));
  EXPECT_EQ(calls().size(), 2U);
  std::filesystem::remove(scratch.folder() / "bin/skip");
  EXPECT_EQ(submit({"participant"}).exitCode, 0);
  EXPECT_THAT(calls()[2], HasSubstr("--array=1-1 "));
  EXPECT_EQ(submit({"participant", "--collect"}).exitCode, 0);
}

TEST_F(Submission, WhatATaskSaidLastIsTold) {
  ASSERT_EQ(submit({"participant"}).exitCode, 0);
  std::filesystem::remove_all(out + "/sub-01");
  (void)scratch.write("it's out/sub-01", "a file in the way");
  EXPECT_EQ(submit({"participant"}).exitCode, 0);
  const ProgramResult collected = submit({"participant", "--collect"});
  EXPECT_EQ(collected.exitCode, 1);
  EXPECT_THAT(collected.out,
              AllOf(HasSubstr("participants 1 (sub-01_task-blocks_run-1_space-MNI152NLin2009cAsym): exit "
                              "code 1\n    tavmap: "),
                    HasSubstr("/002/participants/1.err")));
}

TEST_F(Submission, NothingIsSubmittedWhileJobsAreUnderWay) {
  ASSERT_EQ(submit({"participant"}).exitCode, 0);
  std::filesystem::remove_all(out + "/sub-02");
  standIn("squeue", "#!/bin/sh\necho '101_2|RUNNING|None'\n");
  const ProgramResult meanwhile = submit({"participant"});
  EXPECT_EQ(meanwhile.exitCode, 0);
  EXPECT_THAT(meanwhile.out, AllOf(HasSubstr("2 done, 1 running"),
                                   HasSubstr("Nothing is submitted while they are under way")));
  standIn("squeue", "#!/bin/sh\necho 'no route' >&2; exit 1\n");
  std::filesystem::remove(work() / "cluster/001/participants/2.code");
  const ProgramResult unknown = submit({"participant"});
  EXPECT_EQ(unknown.exitCode, 1);
  EXPECT_THAT(unknown.err, HasSubstr("Repeat the command where squeue works"));
  EXPECT_EQ(calls().size(), 2U);
}

TEST_F(Submission, TheGroupWaitsForAllUnlessToldOtherwise) {
  const ProgramResult refused = submit({"participant", "group"}, {});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.err, HasSubstr("tavmap: sub-04_task-blocks_run-1_space-MNI152NLin2009cAsym: "));
  EXPECT_THAT(refused.out, HasSubstr("The group level is not submitted, since 1 of the participants"));
  EXPECT_EQ(calls().size(), 2U);
  EXPECT_THAT(contentOf(out + "/failures_tavmap.tsv"), HasSubstr("sub-04_task-blocks"));
  const ProgramResult despite = submit({"participant", "group", "--despite-failures", "--force"}, {});
  EXPECT_EQ(despite.exitCode, 1);
  EXPECT_THAT(calls()[3], HasSubstr("--dependency=afterany:103 "));
  EXPECT_TRUE(std::filesystem::exists(out + "/group_tavmap.tsv"));
}

TEST_F(Submission, DryRunWritesScriptsAndSubmitsNothing) {
  const ProgramResult shown = submit({"participant", "--dry-run", "--partition=long", "--per-task=2",
                                      "--sbatch-option=--account=lab", "--at-once=2"});
  EXPECT_EQ(shown.exitCode, 0) << shown.err;
  EXPECT_TRUE(calls().empty());
  EXPECT_THAT(shown.out, AllOf(HasSubstr("--partition=long --account=lab"), HasSubstr("--array=1-2%2"),
                               HasSubstr("code=0; ")));
  EXPECT_THAT(shown.out, HasSubstr(inFolder("dry-run/participants.tasks")));
  EXPECT_THAT(shown.out, HasSubstr(inFolder("dry-run/submit.sh")));
}

// Without a seed one is drawn for each request, before its task is written.
TEST_F(Submission, SeedsAreDrawnOnceByWhoSubmits) {
  const auto words = {std::string("participant"), std::string("--scheduler=slurm"), std::string("--dry-run"),
                      std::string("--participant-label=02")};
  ASSERT_EQ(bids(out, words).exitCode, 0);
  std::string seed = contentOf(work() / "sub-02_task-blocks_run-1_space-MNI152NLin2009cAsym.seed");
  seed.pop_back();
  EXPECT_THAT(inFolder("dry-run/participants.tasks"), HasSubstr("--seed=" + seed + " "));
  ASSERT_EQ(bids(out, words).exitCode, 0);
  EXPECT_THAT(inFolder("dry-run/participants.tasks"), HasSubstr("--seed=" + seed + " "));
}

TEST_F(Submission, RefusesWhatContradictsItself) {
  EXPECT_THAT(submit({"group", "participant"}).err, HasSubstr("participant and then group"));
  EXPECT_THAT(submit({"participant", "--json"}).err, HasSubstr("--json cannot be given with --scheduler"));
  EXPECT_THAT(submit({"participant", "--collect"}).err, HasSubstr("nothing was submitted from"));
  EXPECT_THAT(bids(out, {"participant", "--dry-run"}).err, HasSubstr("--dry-run requires --scheduler"));
}

}  // namespace
