// The pool with workers made of shell commands, which speak the protocol of worker_channel.h.
#include "study/worker_pool.h"

#include <gtest/gtest.h>

#include <csignal>
#include <map>

#include "request/problem.h"
#include "study/interrupt.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

std::vector<std::string> shell(const std::string& script) {
  return {"/bin/sh", "-c", script};
}

// The command that sends one message.
std::string say(const std::string& word, const std::string& text = "") {
  return "printf '%s' '" + word + " " + std::to_string(text.size()) + "\n" + text + "' >&3; ";
}

class WorkerPoolTest : public ::testing::Test {
 protected:
  WorkPiece piece(const std::string& name, const std::vector<std::string>& command) {
    return {name, 1, command, [this, name](const WorkOutcome& outcome) { outcomes_[name] = outcome; }};
  }
  WorkPiece piece(const std::string& name, const std::string& script) { return piece(name, shell(script)); }
  WorkOutcome outcomeOf(const std::vector<std::string>& command) {
    WorkerPool pool(1, nullptr);
    pool.add(piece("only", command));
    pool.run();
    return outcomes_["only"];
  }
  std::map<std::string, WorkOutcome> outcomes_;
};

TEST_F(WorkerPoolTest, CollectsResultsWhateverTheNumberOfJobs) {
  for (const int jobs : {1, 2, 3, 7}) {
    outcomes_.clear();
    WorkerPool pool(jobs, nullptr);
    for (int i = 0; i < 5; ++i) {
      pool.add(piece(std::to_string(i), say("result", std::to_string(i * i)) + say("done")));
    }
    pool.run();
    ASSERT_EQ(outcomes_.size(), 5U);
    for (int i = 0; i < 5; ++i) {
      EXPECT_TRUE(outcomes_[std::to_string(i)].done);
      EXPECT_EQ(outcomes_[std::to_string(i)].result, std::to_string(i * i));
    }
  }
}

TEST_F(WorkerPoolTest, ADeadWorkerIsReportedAndTheOthersFinish) {
  WorkerPool pool(2, nullptr);
  pool.add(piece("dies", "kill -KILL $$"));
  pool.add(piece("leaves", "exit 7"));
  pool.add(piece("throws", say("failed", "no space left") + "exit 1"));
  pool.add(piece("misread", say("wrong-input", "unknown label") + "exit 2"));
  pool.add(piece("lives", say("done")));
  pool.run();
  EXPECT_FALSE(outcomes_["dies"].done);
  EXPECT_EQ(outcomes_["dies"].message, "the worker process was ended by signal 9 (Killed)");
  EXPECT_EQ(outcomes_["leaves"].message, "the worker process ended with code 7");
  EXPECT_EQ(outcomes_["throws"].message, "no space left");
  EXPECT_FALSE(outcomes_["throws"].inputProblem);
  EXPECT_EQ(outcomes_["misread"].message, "unknown label");
  EXPECT_TRUE(outcomes_["misread"].inputProblem);
  EXPECT_TRUE(outcomes_["lives"].done);
}

TEST_F(WorkerPoolTest, AProgramThatIsNotThereIsNamed) {
  const WorkOutcome outcome = outcomeOf({"/nowhere/tavmap", "worker"});
  EXPECT_FALSE(outcome.done);
  EXPECT_EQ(outcome.message, "cannot start /nowhere/tavmap: No such file or directory");
}

TEST_F(WorkerPoolTest, AMessageThatIsCutOffIsNotTakenForWhole) {
  WorkOutcome outcome = outcomeOf(shell("printf 'result 10\\nabc' >&3"));
  EXPECT_FALSE(outcome.done);
  EXPECT_EQ(outcome.result, "");
  EXPECT_EQ(outcome.message, "the worker process ended with code 0");
  outcome = outcomeOf(shell("printf 'done 4' >&3; kill -KILL $$"));
  EXPECT_FALSE(outcome.done);
  EXPECT_EQ(outcome.message, "the worker process was ended by signal 9 (Killed)");
}

TEST_F(WorkerPoolTest, AWorkerThatSendsNoMessageIsEnded) {
  const WorkOutcome outcome = outcomeOf(shell(say("done") + "echo hello >&3; exec sleep 60"));
  EXPECT_FALSE(outcome.done);
  EXPECT_EQ(outcome.message, "the worker process sent what is no message");
}

TEST_F(WorkerPoolTest, LongResultsArriveWhole) {
  const WorkOutcome outcome = outcomeOf(
      shell("printf 'result 200000\\n' >&3; head -c 200000 /dev/zero | tr '\\0' x >&3; " + say("done")));
  EXPECT_TRUE(outcome.done);
  EXPECT_EQ(outcome.result, std::string(200'000, 'x'));
}

TEST_F(WorkerPoolTest, FinishedPiecesMayAddFurtherOnes) {
  WorkerPool pool(2, nullptr);
  WorkPiece first = piece("first", say("done"));
  first.finished = [&](const WorkOutcome&) { pool.add(piece("second", say("done"))); };
  pool.add(std::move(first));
  pool.run();
  EXPECT_TRUE(outcomes_["second"].done);
}

class Recorder : public PoolWatcher {
 public:
  void onProgress(double done, double total) override { lastDone = done, lastTotal = total; }
  void onFinished(const WorkPiece&, const WorkOutcome&) override { ++finished; }
  double lastDone = 0, lastTotal = 0;
  int finished = 0;
};

TEST(WorkerPool, ProgressCountsWeights) {
  Recorder recorder;
  WorkerPool pool(1, &recorder);
  pool.add({"a", 3, shell(say("progress", "0.5") + say("done")), nullptr});
  pool.expect(1);
  pool.run();
  EXPECT_EQ(recorder.finished, 1);
  EXPECT_EQ(recorder.lastDone, 3);
  EXPECT_EQ(recorder.lastTotal, 4);
}

TEST(WorkerPool, AnInterruptEndsTheWorkersAndThrows) {
  for (const char* name : {"INT", "TERM"}) {
    Scratch scratch;
    const InterruptGuard guard;
    WorkerPool pool(2, nullptr);
    const std::string pidFile = (scratch.folder() / "pid").string();
    pool.add({"sleeps", 1, shell("echo $$ > " + pidFile + "; exec sleep 60"), nullptr});
    pool.add({"interrupts", 1,
              shell("while ! [ -s " + pidFile + " ]; do sleep 0.01; done; kill -" + name +
                    " $PPID; exec sleep 60"),
              nullptr});
    EXPECT_THROW(pool.run(), Interrupted) << name;
    pid_t sleeper = -1;
    std::ifstream(pidFile) >> sleeper;
    ASSERT_GT(sleeper, 0);
    EXPECT_EQ(kill(sleeper, 0), -1) << name;  // ended, and waited for
  }
}

TEST(WorkerPool, AnInterruptIsNoticedWhileMuchIsWaiting) {
  const InterruptGuard guard;
  WorkerPool pool(1, nullptr);
  std::vector<std::string> finished;
  const auto piece = [&](const std::string& name, const std::string& script) {
    pool.add({name, 1, shell(script), [&finished, name](const WorkOutcome&) { finished.push_back(name); }});
  };
  piece("interrupts", "kill -INT $PPID; " + say("done"));
  for (const char* name : {"second", "third", "fourth"}) piece(name, say("done"));
  EXPECT_THROW(pool.run(), Interrupted);
  EXPECT_LT(finished.size(), 2U);
}

TEST(WorkerPool, WorkersIgnoreTheTerminalsInterrupt) {
  WorkOutcome outcome;
  WorkerPool pool(1, nullptr);
  pool.add({"a", 1, shell("kill -INT $$; " + say("done")), [&](const WorkOutcome& o) { outcome = o; }});
  pool.run();
  EXPECT_TRUE(outcome.done) << outcome.message;
}

}  // namespace
}  // namespace study
