#include "study/worker_pool.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <stdexcept>

#include "study/problem.h"
#include "tests/study/scratch.h"

namespace study {
namespace {

WorkPiece piece(const std::string& name, std::function<void(WorkerChannel&)> work,
                std::map<std::string, WorkOutcome>& outcomes) {
  return {name, 1, std::move(work), [name, &outcomes](const WorkOutcome& outcome) { outcomes[name] = outcome; }};
}

TEST(WorkerPool, CollectsResultsWhateverTheNumberOfJobs) {
  for (const int jobs : {1, 2, 3, 7}) {
    std::map<std::string, WorkOutcome> outcomes;
    WorkerPool pool(jobs, nullptr);
    for (int i = 0; i < 5; ++i) {
      pool.add(piece(std::to_string(i), [i](WorkerChannel& channel) { channel.result(std::to_string(i * i)); }, outcomes));
    }
    pool.run();
    ASSERT_EQ(outcomes.size(), 5U);
    for (int i = 0; i < 5; ++i) {
      EXPECT_TRUE(outcomes[std::to_string(i)].done);
      EXPECT_EQ(outcomes[std::to_string(i)].result, std::to_string(i * i));
    }
  }
}

TEST(WorkerPool, ADeadWorkerIsReportedAndTheOthersFinish) {
  std::map<std::string, WorkOutcome> outcomes;
  WorkerPool pool(2, nullptr);
  pool.add(piece("dies", [](WorkerChannel&) { raise(SIGKILL); }, outcomes));
  pool.add(piece("leaves", [](WorkerChannel&) { _exit(7); }, outcomes));
  pool.add(piece("throws", [](WorkerChannel&) { throw std::runtime_error("no space left"); }, outcomes));
  pool.add(piece("misread", [](WorkerChannel&) { throw InputError("unknown label"); }, outcomes));
  pool.add(piece("lives", [](WorkerChannel&) {}, outcomes));
  pool.run();
  EXPECT_FALSE(outcomes["dies"].done);
  EXPECT_EQ(outcomes["dies"].message, "the worker process was ended by signal 9 (Killed)");
  EXPECT_EQ(outcomes["leaves"].message, "the worker process ended with code 7");
  EXPECT_EQ(outcomes["throws"].message, "no space left");
  EXPECT_FALSE(outcomes["throws"].inputProblem);
  EXPECT_EQ(outcomes["misread"].message, "unknown label");
  EXPECT_TRUE(outcomes["misread"].inputProblem);
  EXPECT_TRUE(outcomes["lives"].done);
}

TEST(WorkerPool, FinishedPiecesMayAddFurtherOnes) {
  std::map<std::string, WorkOutcome> outcomes;
  WorkerPool pool(2, nullptr);
  WorkPiece first = piece("first", [](WorkerChannel&) {}, outcomes);
  first.finished = [&](const WorkOutcome&) { pool.add(piece("second", [](WorkerChannel&) {}, outcomes)); };
  pool.add(std::move(first));
  pool.run();
  EXPECT_TRUE(outcomes["second"].done);
}

TEST(WorkerPool, LongResultsArriveWhole) {
  std::map<std::string, WorkOutcome> outcomes;
  const std::string text(3'000'000, 'x');
  WorkerPool pool(1, nullptr);
  pool.add(piece("long", [&](WorkerChannel& channel) { channel.result(text); }, outcomes));
  pool.run();
  EXPECT_EQ(outcomes["long"].result, text);
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
  pool.add({"a", 3, [](WorkerChannel& channel) { channel.progress(0.5); }, nullptr});
  pool.expect(1);
  pool.run();
  EXPECT_EQ(recorder.finished, 1);
  EXPECT_EQ(recorder.lastDone, 3);
  EXPECT_EQ(recorder.lastTotal, 4);
}

TEST(WorkerPool, AnInterruptEndsTheWorkersAndThrows) {
  Scratch scratch;
  const InterruptGuard guard;
  WorkerPool pool(2, nullptr);
  const auto file = scratch.folder() / "late";
  pool.add({"sleeps", 1, [&](WorkerChannel&) { sleep(60); std::ofstream(file) << "x"; }, nullptr});
  pool.add({"interrupts", 1, [](WorkerChannel&) { kill(getppid(), SIGINT); sleep(60); }, nullptr});
  EXPECT_THROW(pool.run(), Interrupted);
  EXPECT_FALSE(std::filesystem::exists(file));
}

}  // namespace
}  // namespace study
