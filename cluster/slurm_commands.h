// The commands of Slurm that are used, and what they answer (Slurm 22.05 and later).
#ifndef TAVMAP_CLUSTER_SLURM_COMMANDS_H
#define TAVMAP_CLUSTER_SLURM_COMMANDS_H

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cluster/job_chain.h"

namespace cluster {

struct SlurmOptions {
  std::string partition;           // empty: the scheduler's own
  std::string time;                // instead of what tasks need, in any form that Slurm takes
  std::string memory;              // likewise, of a task
  int mostAtOnce = 0;              // tasks of an array; 0: as many as the scheduler lets run
  std::vector<std::string> extra;  // further arguments of sbatch, as they are
};

// "afterok:12,afterany:14"; empty without dependencies. jobOf: the number of a stage's job.
[[nodiscard]] std::string dependencyText(const Stage& stage,
                                         const std::function<std::string(const std::string&)>& jobOf);

// sbatch, which prints the number of the job; the script is the last word. `jobs`: numbers of the stages that
// were submitted before, by name; a stage that is missing there is not waited for.
[[nodiscard]] Command submitCommand(const JobChain& chain, const Stage& stage,
                                    const std::map<std::string, std::string>& jobs,
                                    const SlurmOptions& options);
// The number in "123" or "123;cluster"; unset for any other answer.
[[nodiscard]] std::optional<std::string> submittedJob(const std::string& answer);

// squeue over the tasks of jobs, one a line.
[[nodiscard]] Command queueCommand(const std::vector<std::string>& jobs);
struct QueuedTask {
  std::string job;
  int number = 0;
  std::string state, reason;
};
[[nodiscard]] std::vector<QueuedTask> queuedTasks(const std::string& answer);
// Whether squeue failed because it has forgotten the jobs, which then have ended.
[[nodiscard]] bool areForgotten(const std::string& errors);

// What is remembered of a task that has ended: scontrol for some minutes, sacct where there is accounting.
[[nodiscard]] Command memoryCommand(const std::string& job, int number);
[[nodiscard]] Command accountCommand(const std::string& job, int number);
// "TIMEOUT", "NODE_FAIL", ... from the answer of either; empty when there is none.
[[nodiscard]] std::string rememberedState(const std::string& answer);
[[nodiscard]] std::string accountedState(const std::string& answer);

}  // namespace cluster

#endif
