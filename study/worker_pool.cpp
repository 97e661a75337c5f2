#include "study/worker_pool.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "request/problem.h"
#include "study/child_process.h"
#include "study/interrupt.h"
#include "study/worker_channel.h"

namespace study {

namespace {

constexpr int kPatienceMs = 1000;  // between two looks at the clock of the progress bar

}  // namespace

struct WorkerPool::Worker {
  explicit Worker(WorkPiece work) : piece(std::move(work)), process(piece.command) {}

  WorkPiece piece;
  ChildProcess process;
  MessageReader messages;
  double fraction = 0;
  bool reported = false;  // it said itself how its work ended
  bool silent = false;    // nothing will come any more
  WorkOutcome outcome;

  void listen();
  void take(const WorkerMessage& message);
  void takeAll();
  void endWith(bool inputProblem, const std::string& message);
};

// Reads what is there.
void WorkerPool::Worker::listen() {
  char bytes[65536];
  const ssize_t count = read(process.reports(), bytes, sizeof bytes);
  if (count < 0 && errno == EINTR) return;
  silent = count <= 0;
  if (silent) return;
  messages.take({bytes, static_cast<std::size_t>(count)});
  takeAll();
}

void WorkerPool::Worker::takeAll() {
  try {
    while (const auto message = messages.next()) take(*message);
  } catch (const RunError& error) {
    process.kill();
    silent = true;
    endWith(false, error.what());
  }
}

void WorkerPool::Worker::take(const WorkerMessage& message) {
  switch (message.word) {
    case WorkerWord::kProgress:
      fraction = std::clamp(std::strtod(message.text.c_str(), nullptr), 0.0, 1.0);
      break;
    case WorkerWord::kResult:
      outcome.result = message.text;
      break;
    case WorkerWord::kWrongInput:
    case WorkerWord::kFailed:
      endWith(message.word == WorkerWord::kWrongInput, message.text);
      break;
    case WorkerWord::kDone:
      outcome.done = reported = true;
      break;
  }
}

void WorkerPool::Worker::endWith(bool inputProblem, const std::string& message) {
  outcome.done = false;
  outcome.inputProblem = inputProblem;
  outcome.message = message;
  reported = true;
}

WorkerPool::WorkerPool(int jobs, PoolWatcher* watcher) : jobs_(std::max(1, jobs)), watcher_(watcher) {}
WorkerPool::~WorkerPool() {
  endAll();
}

void WorkerPool::add(WorkPiece piece) {
  totalWeight_ += piece.weight;
  expectedWeight_ = std::max(0.0, expectedWeight_ - piece.weight);
  waiting_.push_back(std::move(piece));
}

void WorkerPool::start() {
  WorkPiece piece = std::move(waiting_.front());
  waiting_.pop_front();
  running_.push_back(std::make_unique<Worker>(std::move(piece)));
}

void WorkerPool::waitForNews() {
  std::vector<pollfd> descriptors;
  for (const auto& worker : running_) descriptors.push_back({worker->process.reports(), POLLIN, 0});
  if (poll(descriptors.data(), descriptors.size(), kPatienceMs) <= 0) return report();
  std::size_t i = 0;
  for (auto at = running_.begin(); at != running_.end(); ++i) {
    const auto here = at++;
    if (descriptors[i].revents == 0) continue;
    (*here)->listen();
    if (!(*here)->silent) continue;
    const std::unique_ptr<Worker> ended = std::move(*here);
    running_.erase(here);
    finish(*ended);
  }
  report();
}

void WorkerPool::finish(Worker& worker) {
  const std::string end = worker.process.wait();
  if (!worker.reported) worker.outcome.message = "the worker process " + end;
  doneWeight_ += worker.piece.weight;
  if (watcher_ != nullptr) watcher_->onFinished(worker.piece, worker.outcome);
  if (worker.piece.finished) worker.piece.finished(worker.outcome);
}

void WorkerPool::report() {
  if (watcher_ == nullptr) return;
  double done = doneWeight_;
  for (const auto& worker : running_) done += worker->piece.weight * worker->fraction;
  watcher_->onProgress(done, totalWeight_ + expectedWeight_);
}

// All at once, then one by one.
void WorkerPool::endAll() {
  for (const auto& worker : running_) worker->process.kill();
  running_.clear();
}

void WorkerPool::run() {
  while (!waiting_.empty() || !running_.empty()) {
    if (interruptRequested()) {
      endAll();
      throw Interrupted();
    }
    while (!waiting_.empty() && static_cast<int>(running_.size()) < jobs_) start();
    waitForNews();
  }
}

}  // namespace study
