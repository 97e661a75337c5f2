// What was submitted, kept in the folder of the chain as submission.json, and what became of it.
#ifndef TAVMAP_CLUSTER_SUBMISSION_H
#define TAVMAP_CLUSTER_SUBMISSION_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cluster/job_chain.h"
#include "cluster/slurm_commands.h"

namespace cluster {

struct SubmittedStage {
  std::string name, job;           // the number of its array
  std::vector<std::string> tasks;  // names, of task 1 on
};

struct Submission {
  std::filesystem::path folder;
  std::vector<SubmittedStage> stages;
};

inline constexpr const char* kSubmissionFile = "submission.json";

// Submits the stages in turn and keeps their numbers after each, so that what was submitted is known also
// when the next is refused. Throws std::runtime_error with what sbatch said; formats::FileError.
[[nodiscard]] Submission submit(const JobChain& chain, const SlurmOptions& options);

// The folder that comes next below `parent`: "001", "002", ...
[[nodiscard]] std::filesystem::path nextFolder(const std::filesystem::path& parent);
// The last that was submitted below `parent`. Throws formats::FileError for one that cannot be read.
[[nodiscard]] std::optional<Submission> lastSubmission(const std::filesystem::path& parent);

}  // namespace cluster

#endif
