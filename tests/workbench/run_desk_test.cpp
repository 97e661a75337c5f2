// Runs of a program that does what its request says, a script of a shell.
#include "workbench/run_desk.h"

#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/support/scratch.h"
#include "tests/workbench/status_of.h"

namespace {

using workbench::RunDesk;
using workbench::RunEntry;
using workbench::RunState;

constexpr const char* kEndless = "exec sleep 600\n";
constexpr const char* kAtHalf = "printf 'progress 3\\n0.5' >&3\nexec sleep 600\n";

struct RunDeskTest : testing::Test {
  Scratch scratch;

  RunDeskTest() {
    const auto program = scratch.write("program", "#!/bin/sh\n. \"$2\"\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    std::filesystem::create_directories(scratch.folder() / "work");
  }
  [[nodiscard]] std::unique_ptr<RunDesk> desk() const {
    return std::make_unique<RunDesk>(
        scratch.folder() / "work", workbench::RunCommand{scratch.file("program"), 1}, [](const RunEntry&) {});
  }
  [[nodiscard]] RunEntry request(const std::string& script, const std::string& name = "a") const {
    RunEntry wanted;
    wanted.title = name;
    wanted.request = scratch.write(name + ".sh", script);
    return wanted;
  }
  // The run once it is so; as it is after half a minute.
  template <class Is>
  [[nodiscard]] static RunEntry once(const RunDesk& desk, int id, Is is) {
    for (int look = 0; look < 3000; ++look) {
      for (const RunEntry& entry : desk.runs())
        if (entry.id == id && is(entry)) return entry;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ADD_FAILURE() << "run " << id << " has not become what was waited for";
    return desk.runs().at(0);
  }
  [[nodiscard]] static RunEntry ended(const RunDesk& desk, int id) {
    return once(desk, id, [](const RunEntry& entry) { return !entry.isActive(); });
  }
  [[nodiscard]] static RunEntry running(const RunDesk& desk, int id) {
    return once(desk, id, [](const RunEntry& entry) { return entry.state == RunState::kRunning; });
  }
};

TEST_F(RunDeskTest, ARunIsDone) {
  const auto desk = this->desk();
  const RunEntry added = desk->add(request("echo said\n"));
  EXPECT_EQ(added.id, 1);
  EXPECT_EQ(added.state, RunState::kQueued);
  const RunEntry run = ended(*desk, 1);
  EXPECT_EQ(run.state, RunState::kDone);
  EXPECT_EQ(run.progress, 1);
  EXPECT_EQ(run.message, "");
  EXPECT_EQ(contentOf(run.log), "said\n");
}

TEST_F(RunDeskTest, AFailureIsToldInTheProgramsLastWords) {
  const auto desk = this->desk();
  (void)desk->add(request("echo first >&2\necho 'tavmap: there is no mask' >&2\nexit 2\n"));
  (void)desk->add(request("exit 1\n", "silent"));
  const RunEntry run = ended(*desk, 1), silent = ended(*desk, 2);
  EXPECT_EQ(run.state, RunState::kFailed);
  EXPECT_EQ(run.message, "there is no mask");
  EXPECT_EQ(silent.state, RunState::kFailed);
  EXPECT_TRUE(silent.message.starts_with("The run ")) << silent.message;
}

TEST_F(RunDeskTest, WhatWasInterruptedAtATerminalIsInterrupted) {
  const auto desk = this->desk();
  (void)desk->add(request("exit 130\n"));
  EXPECT_EQ(ended(*desk, 1).state, RunState::kInterrupted);
}

TEST_F(RunDeskTest, TellsHowFarARunIsAndHowLongItWillTake) {
  const auto desk = this->desk();
  (void)desk->add(request(kAtHalf));
  const RunEntry run = once(*desk, 1, [](const RunEntry& entry) { return entry.progress > 0; });
  EXPECT_EQ(run.progress, 0.5);
  EXPECT_EQ(run.state, RunState::kRunning);
}

TEST_F(RunDeskTest, WhatIsNoMessageEndsTheRun) {
  const auto desk = this->desk();
  (void)desk->add(request("echo nonsense >&3\nexec sleep 600\n"));
  EXPECT_EQ(ended(*desk, 1).state, RunState::kFailed);
}

TEST_F(RunDeskTest, ACancelledRunIsResumedAndADoneOneIsNot) {
  const auto desk = this->desk();
  (void)desk->add(request(kAtHalf));
  (void)running(*desk, 1);
  EXPECT_EQ(statusOf([&] { desk->resume(1); }), 409);
  desk->cancel(1);
  EXPECT_EQ(ended(*desk, 1).state, RunState::kCancelled);
  EXPECT_EQ(statusOf([&] { desk->cancel(1); }), 409);
  (void)request("exit 0\n");  // the same file, from now on
  desk->resume(1);
  EXPECT_EQ(ended(*desk, 1).state, RunState::kDone);
  EXPECT_EQ(statusOf([&] { desk->resume(1); }), 409);
  EXPECT_EQ(statusOf([&] { desk->cancel(2); }), 404);
}

TEST_F(RunDeskTest, TwoRunAtATimeAndOthersWait) {
  const auto desk = this->desk();
  for (const char* name : {"a", "b", "c"}) (void)desk->add(request(kEndless, name));
  (void)running(*desk, 1);
  (void)running(*desk, 2);
  EXPECT_EQ(desk->runs().at(2).state, RunState::kQueued);
  desk->cancel(1);
  EXPECT_EQ(running(*desk, 3).title, "c");
}

TEST_F(RunDeskTest, WhatWaitsIsCancelledAtOnce) {
  const auto desk = this->desk();
  for (const char* name : {"a", "b", "c"}) (void)desk->add(request(kEndless, name));
  desk->cancel(3);
  EXPECT_EQ(desk->runs().at(2).state, RunState::kCancelled);
}

TEST_F(RunDeskTest, ARequestRunsOnceAtATime) {
  const auto desk = this->desk();
  (void)desk->add(request(kEndless));
  EXPECT_EQ(statusOf([&] { (void)desk->add(request(kEndless)); }), 409);
  desk->cancel(1);
  (void)ended(*desk, 1);
  EXPECT_EQ(desk->add(request("exit 0\n")).id, 2);
}

TEST_F(RunDeskTest, TheNextStartKnowsTheRunsOfThisOne) {
  auto desk = this->desk();
  (void)desk->add(request("exit 0\n", "done"));
  (void)ended(*desk, 1);
  (void)desk->add(request(kEndless, "endless"));
  (void)running(*desk, 2);
  desk->stop();
  EXPECT_EQ(desk->runs().at(1).state, RunState::kInterrupted);
  desk.reset();
  desk = this->desk();
  const std::vector<RunEntry> runs = desk->runs();
  ASSERT_EQ(runs.size(), 2U);
  EXPECT_EQ(runs[0].state, RunState::kDone);
  EXPECT_EQ(runs[1].state, RunState::kInterrupted);
  EXPECT_EQ(runs[1].title, "endless");
  EXPECT_EQ(desk->add(request("exit 0\n", "next")).id, 3);
}

// As after a crash, of which nothing could be kept.
TEST_F(RunDeskTest, WhatRanWhenTheProgramDiedIsInterrupted) {
  RunEntry entry = request(kEndless);
  entry.id = 7;
  entry.state = RunState::kRunning;
  scratch.write(
      "work/workbench_runs.json",
      nlohmann::ordered_json{{"runs", nlohmann::ordered_json::array({workbench::keptJson(entry)})}}.dump());
  EXPECT_EQ(desk()->runs().at(0).state, RunState::kInterrupted);
}

TEST_F(RunDeskTest, TheOldestThatHasEndedMakesRoom) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (int id = 1; id <= static_cast<int>(RunDesk::kMostKept); ++id) {
    RunEntry entry = request("exit 0\n", "old");
    entry.id = id;
    entry.state = RunState::kDone;
    list.push_back(workbench::keptJson(entry));
  }
  scratch.write("work/workbench_runs.json", nlohmann::ordered_json{{"runs", list}}.dump());
  const auto desk = this->desk();
  EXPECT_EQ(desk->add(request("exit 0\n", "new")).id, 201);
  EXPECT_EQ(desk->runs().size(), RunDesk::kMostKept);
  EXPECT_EQ(desk->runs().at(0).id, 2);
}

TEST_F(RunDeskTest, RefusesMoreThanItKeeps) {
  const auto desk = this->desk();
  for (std::size_t i = 0; i < RunDesk::kMostKept; ++i) (void)desk->add(request(kEndless, std::to_string(i)));
  EXPECT_EQ(statusOf([&] { (void)desk->add(request(kEndless, "more")); }), 429);
}

}  // namespace
