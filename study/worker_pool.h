// Work in child processes: independent pieces, a limited number at a time, each in a process of
// its own, so that a crash takes one piece with it and not the others.
#ifndef TAVMAP_STUDY_WORKER_POOL_H
#define TAVMAP_STUDY_WORKER_POOL_H

#include <sys/types.h>

#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace study {

// A worker's line to the pool.
class WorkerChannel {
 public:
  explicit WorkerChannel(int fd) : fd_(fd) {}
  void progress(double fraction);           // 0 to 1
  void result(const std::string& text);     // what `finished` receives; the last one counts
 private:
  friend class WorkerPool;
  void send(char kind, const std::string& text);
  int fd_;
};

struct WorkOutcome {
  bool done = false;
  bool inputProblem = false;  // an InputError: the request is at fault
  std::string message;        // of a failure: what the worker threw, or how it died
  std::string result;
};

struct WorkPiece {
  std::string name;  // for progress and for reports of a dead worker
  double weight = 1; // expected share of the time
  // Runs in the child. May throw.
  std::function<void(WorkerChannel&)> work;
  // Runs in the parent, in order of completion; may add pieces to the pool.
  std::function<void(const WorkOutcome&)> finished;
};

// What the pool reports while it works. All calls come from the parent.
class PoolWatcher {
 public:
  virtual ~PoolWatcher() = default;
  virtual void onProgress(double doneWeight, double totalWeight) = 0;
  virtual void onFinished(const WorkPiece& piece, const WorkOutcome& outcome) = 0;
};

class WorkerPool {
 public:
  // watcher may be null and must outlive the pool.
  WorkerPool(int jobs, PoolWatcher* watcher);
  ~WorkerPool();  // ends what still runs
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  void add(WorkPiece piece);
  // Weight of pieces that are known to come but not yet added, for the estimate.
  void expect(double weight) { expectedWeight_ += weight; }
  // Drops pieces that have not started.
  void cancelWaiting() { waiting_.clear(); }
  // Works until nothing is left. Throws Interrupted when interruptRequested(), after ending the
  // workers; RunError when no process can be started.
  void run();

 private:
  struct Worker;
  void start();
  void waitForNews();
  void readFrom(Worker& worker);
  void finish(Worker& worker);
  void report();
  void endAll();

  int jobs_;
  PoolWatcher* watcher_;
  std::list<WorkPiece> waiting_;
  std::list<std::unique_ptr<Worker>> running_;
  double doneWeight_ = 0, totalWeight_ = 0, expectedWeight_ = 0;
};

// Turns SIGINT and SIGTERM into a flag for the life of the object. One at a time.
class InterruptGuard {
 public:
  InterruptGuard();
  ~InterruptGuard();
  InterruptGuard(const InterruptGuard&) = delete;
  InterruptGuard& operator=(const InterruptGuard&) = delete;
};
bool interruptRequested();

}  // namespace study

#endif
