// What became of submitted tasks: their exit codes, what they said last, and what the scheduler knows of
// those that left none.
#ifndef TAVMAP_CLUSTER_OUTCOME_H
#define TAVMAP_CLUSTER_OUTCOME_H

#include <ostream>
#include <string>
#include <vector>

#include "cluster/submission.h"

namespace cluster {

enum class TaskState { kDone, kFailed, kRunning, kWaiting };  // in the order in which they are told

struct TaskOutcome {
  std::string stage, name;
  int number = 0;  // from 1
  TaskState state = TaskState::kWaiting;
  std::string why;   // of a failure: exit code or what the scheduler says; of waiting: the scheduler's reason
  std::string said;  // the last lines of its error stream
  std::string log;   // the file that has all of it
};

struct Outcome {
  std::vector<TaskOutcome> tasks;  // in the order of the chain
  std::string caution;             // in words: the queue could not be asked
  [[nodiscard]] std::size_t count(TaskState state) const;
  [[nodiscard]] bool isUnderWay() const;  // any task waits or runs
};

// Asks squeue once for all, and scontrol and sacct for each task that neither stands in the queue nor has
// left an exit code. When squeue cannot be asked, exit codes alone count, tasks without one are taken for
// waiting, and `caution` says so.
[[nodiscard]] Outcome outcomeOf(const Submission& submission);

// Counts by stage, then each failure with why and what it said.
void printOutcome(const Outcome& outcome, std::ostream& out);

}  // namespace cluster

#endif
