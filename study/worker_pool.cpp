#include "study/worker_pool.h"

#include <fcntl.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "formats/file_error.h"
#include "study/problem.h"

namespace study {

namespace {

// Messages of a worker: one byte for the kind, four for the length, the text.
constexpr char kProgress = 'p', kResult = 'r', kInputError = 'i', kFailure = 'f', kDone = 'd';
constexpr std::size_t kHeadBytes = 5;

volatile std::sig_atomic_t interrupted = 0;
void noteInterrupt(int) { interrupted = 1; }

void writeAll(int fd, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = write(fd, bytes, count);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;  // the parent is gone
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
}

std::string deathOf(int status) {
  if (WIFSIGNALED(status)) {
    return std::string("the worker process was ended by signal ") + std::to_string(WTERMSIG(status)) + " (" +
           strsignal(WTERMSIG(status)) + ")";
  }
  return "the worker process ended with code " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

void WorkerChannel::send(char kind, const std::string& text) {
  std::string message(kHeadBytes, kind);
  const std::uint32_t length = static_cast<std::uint32_t>(text.size());
  std::memcpy(message.data() + 1, &length, sizeof length);
  message += text;
  writeAll(fd_, message.data(), message.size());
}

void WorkerChannel::progress(double fraction) { send(kProgress, std::to_string(fraction)); }
void WorkerChannel::result(const std::string& text) { send(kResult, text); }

struct WorkerPool::Worker {
  WorkPiece piece;
  pid_t pid = -1;
  int fd = -1;
  std::string inbox;
  double fraction = 0;
  bool reported = false;  // it said itself how it ended
  WorkOutcome outcome;

  // Takes one whole message out of the inbox. False when there is none.
  bool takeMessage() {
    std::uint32_t length = 0;
    if (inbox.size() < kHeadBytes) return false;
    std::memcpy(&length, inbox.data() + 1, sizeof length);
    if (inbox.size() < kHeadBytes + length) return false;
    const char kind = inbox[0];
    apply(kind, inbox.substr(kHeadBytes, length));
    inbox.erase(0, kHeadBytes + length);
    return true;
  }

  void apply(char kind, const std::string& text) {
    if (kind == kProgress) fraction = std::clamp(std::strtod(text.c_str(), nullptr), 0.0, 1.0);
    if (kind == kResult) outcome.result = text;
    if (kind == kInputError || kind == kFailure) outcome.message = text;
    if (kind == kInputError) outcome.inputProblem = true;
    if (kind == kDone) outcome.done = true;
    if (kind != kProgress && kind != kResult) reported = true;
  }
};

WorkerPool::WorkerPool(int jobs, PoolWatcher* watcher) : jobs_(std::max(1, jobs)), watcher_(watcher) {}
WorkerPool::~WorkerPool() { endAll(); }

void WorkerPool::add(WorkPiece piece) {
  totalWeight_ += piece.weight;
  expectedWeight_ = std::max(0.0, expectedWeight_ - piece.weight);
  waiting_.push_back(std::move(piece));
}

namespace {

// Says how the work ended. Kept apart from the exit so that everything of the work is destroyed.
std::pair<char, std::string> doWork(const WorkPiece& piece, WorkerChannel& channel) {
  try {
    piece.work(channel);
    return {kDone, ""};
  } catch (const InputError& error) {
    return {kInputError, error.what()};
  } catch (const formats::FileError& error) {
    return {error.fault() == formats::Fault::kInput ? kInputError : kFailure, error.what()};
  } catch (const std::exception& error) {
    return {kFailure, error.what()};
  }
}

// References take blocks of the same sizes again and again; given back to the system in between, their
// pages would have to be cleared each time.
void keepFreedMemory() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 32 << 20);  // the most that the library takes
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

void prepareChild(pid_t parent) {
  keepFreedMemory();
  std::signal(SIGINT, SIG_IGN);  // Ctrl-C reaches the whole group; the parent ends its workers itself
  std::signal(SIGTERM, SIG_DFL);
  prctl(PR_SET_PDEATHSIG, SIGKILL);  // a killed parent must not leave writers behind
  if (getppid() != parent) _exit(1);
}

}  // namespace

void WorkerPool::start() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw RunError(std::string("cannot make a pipe to a worker: ") + std::strerror(errno));
  auto worker = std::make_unique<Worker>();
  worker->piece = std::move(waiting_.front());
  waiting_.pop_front();
  const pid_t parent = getpid();
  worker->pid = fork();
  if (worker->pid < 0) throw RunError(std::string("cannot start a worker process: ") + std::strerror(errno));
  if (worker->pid == 0) {
    prepareChild(parent);
    close(ends[0]);
    WorkerChannel channel(ends[1]);
    const auto [kind, text] = doWork(worker->piece, channel);
    channel.send(kind, text);
    _exit(0);  // not exit(): the parent's streams and temporaries are the parent's
  }
  close(ends[1]);
  worker->fd = ends[0];
  running_.push_back(std::move(worker));
}

void WorkerPool::waitForNews() {
  std::vector<pollfd> descriptors;
  for (const auto& worker : running_) descriptors.push_back({worker->fd, POLLIN, 0});
  if (poll(descriptors.data(), descriptors.size(), 1000) <= 0) return report();
  std::size_t i = 0;
  for (auto at = running_.begin(); at != running_.end(); ++i) {
    const auto here = at++;
    if (descriptors[i].revents == 0) continue;
    readFrom(**here);
    if ((*here)->fd >= 0) continue;
    const std::unique_ptr<Worker> ended = std::move(*here);
    running_.erase(here);
    finish(*ended);
  }
  report();
}

// Reads what is there; at the end of the line closes it.
void WorkerPool::readFrom(Worker& worker) {
  char bytes[65536];
  const ssize_t count = read(worker.fd, bytes, sizeof bytes);
  if (count < 0 && errno == EINTR) return;
  if (count > 0) {
    worker.inbox.append(bytes, static_cast<std::size_t>(count));
    while (worker.takeMessage()) {
    }
    return;
  }
  close(worker.fd);
  worker.fd = -1;
}

void WorkerPool::finish(Worker& worker) {
  int status = 0;
  while (waitpid(worker.pid, &status, 0) < 0 && errno == EINTR) {
  }
  worker.pid = -1;
  if (!worker.reported) worker.outcome.message = deathOf(status);
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

void WorkerPool::endAll() {
  for (const auto& worker : running_) {
    if (worker->pid > 0) kill(worker->pid, SIGKILL);
  }
  for (const auto& worker : running_) {
    int status = 0;
    while (worker->pid > 0 && waitpid(worker->pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (worker->fd >= 0) close(worker->fd);
  }
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

InterruptGuard::InterruptGuard() {
  interrupted = 0;
  std::signal(SIGINT, noteInterrupt);
  std::signal(SIGTERM, noteInterrupt);
}

InterruptGuard::~InterruptGuard() {
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
}

bool interruptRequested() { return interrupted != 0; }

}  // namespace study
