#include "study/child_process.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "study/interrupt.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

bool ended(pid_t pid) {
  std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
  std::string text;
  return !std::getline(stat, text) || text[text.rfind(')') + 2] == 'Z';
}

// The process number that a shell leaves in the file.
pid_t numberIn(const std::filesystem::path& file) {
  pid_t pid = -1;
  for (int i = 0; i < 10000 && !(std::ifstream(file) >> pid); ++i) usleep(1000);
  return pid;
}

// One that never reports, so that no closed pipe ends it.
std::vector<std::string> sleeper(const std::filesystem::path& file) {
  return {"/bin/sh", "-c", "echo $$ > " + file.string() + "; exec sleep 60"};
}

TEST(ChildProcess, DiesWithItsParent) {
  const Scratch scratch;
  const std::filesystem::path file = scratch.folder() / "pid";
  const pid_t parent = fork();
  if (parent == 0) {
    const ChildProcess child(sleeper(file));
    pause();
  }
  const pid_t child = numberIn(file);
  ASSERT_GT(child, 0);
  EXPECT_FALSE(ended(child));
  kill(parent, SIGKILL);
  waitpid(parent, nullptr, 0);
  for (int i = 0; i < 10000 && !ended(child); ++i) usleep(1000);
  EXPECT_TRUE(ended(child));
  kill(child, SIGKILL);
}

// Before it has become the program it would take a signal as its parent does, which notes it and goes on.
TEST(ChildProcess, EndsHoweverEarlyItIsAskedTo) {
  const InterruptGuard guard;
  for (int i = 0; i < 50; ++i) {
    ChildProcess child({"/bin/sleep", "60"});
    child.terminate();
    pollfd end{child.reports(), POLLIN, 0};
    ASSERT_EQ(poll(&end, 1, 10000), 1) << "the child goes on";
    EXPECT_EQ(child.wait(), "was ended by signal 15 (Terminated)");
  }
}

TEST(ChildProcess, DiesWithItsObject) {
  const Scratch scratch;
  const std::filesystem::path file = scratch.folder() / "pid";
  pid_t number = -1;
  {
    const ChildProcess child(sleeper(file));
    number = numberIn(file);
    ASSERT_GT(number, 0);
  }
  EXPECT_EQ(kill(number, 0), -1);
}

TEST(ChildProcess, SaysHowItEnded) {
  EXPECT_EQ(ChildProcess({"/bin/sh", "-c", "exit 3"}).wait(), "ended with code 3");
  EXPECT_EQ(ChildProcess({"/bin/sh", "-c", "kill -TERM $$"}).wait(), "was ended by signal 15 (Terminated)");
}

}  // namespace
}  // namespace study
