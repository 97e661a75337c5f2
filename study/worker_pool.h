// Work in child processes: independent commands, a limited number at a time, so that a crash takes one
// piece of work with it and not the others.
#ifndef TAVMAP_STUDY_WORKER_POOL_H
#define TAVMAP_STUDY_WORKER_POOL_H

#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace study {

struct WorkOutcome {
  bool done = false;
  bool inputProblem = false;  // the request is at fault
  std::string message;        // of a failure: what the worker said, or how it died
  std::string result;
};

struct WorkPiece {
  std::string name;                  // for progress and for reports of a dead worker
  double weight = 1;                 // expected share of the time
  std::vector<std::string> command;  // reports as worker_channel.h says, on kReportDescriptor
  // Runs in the parent, in order of completion; may add pieces to the pool.
  std::function<void(const WorkOutcome&)> finished;
  bool isTriedInParts = false;  // when it fails, its parts are tried one by one: no failure yet
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
  void finish(Worker& worker);
  void report();
  void endAll();

  int jobs_;
  PoolWatcher* watcher_;
  std::list<WorkPiece> waiting_;
  std::list<std::unique_ptr<Worker>> running_;
  double doneWeight_ = 0, totalWeight_ = 0, expectedWeight_ = 0;
};

}  // namespace study

#endif
