// The files of a job chain, all plain bash:
//
//   STAGE.tasks   one task a line, as a shell runs it
//   STAGE.sh      runs the task of a number: the script of the array, of use elsewhere as well
//   submit.sh     what submits the chain by hand
//   STAGE/N.out, N.err, N.code    what task N wrote, and its exit code once it has ended
//   STAGE/N.slurm                 what the scheduler itself had to say
#ifndef TAVMAP_CLUSTER_JOB_FILES_H
#define TAVMAP_CLUSTER_JOB_FILES_H

#include <string>
#include <vector>

#include "cluster/job_chain.h"
#include "cluster/slurm_commands.h"

namespace cluster {

[[nodiscard]] std::string taskList(const Stage& stage);
[[nodiscard]] std::string stageScript(const JobChain& chain, const Stage& stage);
[[nodiscard]] std::string submitScript(const JobChain& chain, const SlurmOptions& options);

struct JobFile {
  std::string name, text;
};
// All of them, in the order of the chain, lists before scripts.
[[nodiscard]] std::vector<JobFile> jobFiles(const JobChain& chain, const SlurmOptions& options);

// Writes them, and makes the folders of the stages. Throws formats::FileError.
void writeJobFiles(const JobChain& chain, const SlurmOptions& options);

}  // namespace cluster

#endif
