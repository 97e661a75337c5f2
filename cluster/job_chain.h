// Work for a scheduler: stages of independent tasks, one job array each, where a stage may wait for others.
#ifndef TAVMAP_CLUSTER_JOB_CHAIN_H
#define TAVMAP_CLUSTER_JOB_CHAIN_H

#include <cstddef>
#include <string>
#include <vector>

#include "cluster/shell_words.h"

namespace cluster {

struct Task {
  std::string name;  // for people
  std::vector<Command>
      commands;  // one after the other, all of them; the last failure is the task's exit code
};

// What a task of a stage may take.
struct Needs {
  int minutes = 60;
  int megabytes = 1000;
  int processors = 1;
};

enum class Condition { kAllSucceeded, kAllEnded };
struct Dependency {
  std::string stage;
  Condition condition = Condition::kAllSucceeded;
};

struct Stage {
  std::string name;  // lower-case letters: names of files begin with it
  std::vector<Task> tasks;
  Needs needs;
  std::vector<Dependency> after = {};  // stages before this one
};

struct JobChain {
  std::string folder;         // absolute: scripts, lists of tasks and what comes of them
  std::string workingFolder;  // absolute: where commands run
  std::vector<Stage> stages;
};

// The longest array that a scheduler takes unless it is set up otherwise (MaxArraySize of Slurm, 1001).
inline constexpr std::size_t kMostTasks = 1000;

// Several tasks become one, in turn, so that each has `together` at most and there are no more than
// kMostTasks. A task that is killed costs less where few are together.
[[nodiscard]] std::vector<Task> bundled(const std::vector<Task>& tasks, std::size_t together);

}  // namespace cluster

#endif
