// The runs that pages have started: some at a time, others wait. They go on when pages are closed; a list of them in the
// work folder outlives the program. Any thread may call; one thread of the desk's own starts processes and listens to
// them.
#ifndef TAVMAP_WORKBENCH_RUN_DESK_H
#define TAVMAP_WORKBENCH_RUN_DESK_H

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "workbench/run_process.h"

namespace workbench {

class RunDesk {
 public:
  static constexpr std::size_t kMostAtATime = 2;
  static constexpr std::size_t kMostKept = 200;

  using Changed = std::function<void(const RunEntry&)>;
  // Reads the list of an earlier start, whose unfinished runs are interrupted ones. changed: called after every
  // change, from any thread, which must not call back. Throws formats::FileError for a list that cannot be read.
  RunDesk(std::filesystem::path workFolder, RunCommand command, Changed changed);
  ~RunDesk();
  RunDesk(const RunDesk&) = delete;
  RunDesk& operator=(const RunDesk&) = delete;

  [[nodiscard]] std::vector<RunEntry> runs() const;  // in the order of their start
  // Of an entry, request and output are taken; returns the whole. Throws Refusal 409 when the same request waits or
  // runs already, 429 when too many wait.
  RunEntry add(const RunEntry& wanted);
  // Throw Refusal 404 for an unknown run, 409 when its state does not allow it.
  void cancel(int id);
  void resume(int id);
  // Ends what runs, as interrupted. May be repeated.
  void stop();

 private:
  void work();
  void startWaiting();
  void listen();
  void hear(int id);
  void changedTo(const RunEntry& entry);  // with the lock held
  void save() const;
  RunEntry& entryOf(int id);

  std::filesystem::path folder_;
  RunCommand command_;
  Changed changed_;
  mutable std::mutex mutex_;
  std::vector<RunEntry> entries_;
  std::map<int, std::unique_ptr<RunProcess>> processes_;  // by id; the desk's thread makes and removes them
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace workbench

#endif
