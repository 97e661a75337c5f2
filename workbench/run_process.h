// `tavmap run REQUEST` in a process of its own, whose progress is read from a pipe.
#ifndef TAVMAP_WORKBENCH_RUN_PROCESS_H
#define TAVMAP_WORKBENCH_RUN_PROCESS_H

#include <chrono>
#include <optional>
#include <string>

#include "study/child_process.h"
#include "study/worker_channel.h"
#include "workbench/run_entry.h"

namespace workbench {

struct RunCommand {
  std::string program;  // the path of `tavmap`
  int jobs = 1;         // worker processes
};

class RunProcess {
 public:
  // Starts it; what it says goes into the entry's log. Throws study::RunError. See ChildProcess for the
  // thread.
  RunProcess(const RunCommand& command, const RunEntry& entry);

  [[nodiscard]] int reports() const { return process_.reports(); }
  // Precondition: reports() can be read. Takes what is there into the entry. False when the process has
  // ended: the entry then has its last state.
  [[nodiscard]] bool listen(RunEntry& entry);
  // What is finished stays. becomes: the entry's state in the end.
  void end(RunState becomes);

 private:
  void takeMessages(RunEntry& entry);
  void finish(RunEntry& entry);
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  study::MessageReader messages_;
  std::optional<RunState> ended_;
  study::ChildProcess process_;
};

}  // namespace workbench

#endif
