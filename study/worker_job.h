// One piece of a study's work, written down so that another process can do it, here or elsewhere:
//   {"Tavmap": "1.5.0", "Work": "references", "Items": [0, 2], "Order": 1, "Expected": ["5f0c...", ...]}
//   title = "study.toml"
//   ...
// a line of JSON, then the request (request_text.h) with absolute paths and the seed in use.
#ifndef TAVMAP_STUDY_WORKER_JOB_H
#define TAVMAP_STUDY_WORKER_JOB_H

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "study/study_plan.h"

namespace study {

enum class Work { kImport, kOrder, kReferences };

struct WorkerJob {
  Work work = Work::kImport;
  std::string version;                // of the program that planned it
  std::vector<std::size_t> items;     // the run to import; the references; from 0
  int order = 0;                      // of the model, for references
  double scale = 1;                   // of the run to import, a power of two
  std::vector<std::string> expected;  // the import's name, or keys of the results
  Request request;
};

[[nodiscard]] WorkerJob importJob(const StudyPlan& plan, std::size_t run);
[[nodiscard]] WorkerJob orderJob(const StudyPlan& plan);
[[nodiscard]] WorkerJob referencesJob(const StudyPlan& plan, const std::vector<std::size_t>& regions);

[[nodiscard]] std::string jobText(const WorkerJob& job);
// Throws InputError when the file is no job or names files that are gone, and formats::FileError.
[[nodiscard]] WorkerJob readJob(const std::filesystem::path& file);
[[nodiscard]] WorkerJob parseJob(const std::string& text, const std::filesystem::path& file);

// Plans again from the request, makes sure that this is what was planned before, and does the work.
// Returns what the order evidence found, as JSON; otherwise nothing. progress receives 0 to 1. Throws
// InputError, also when another version wrote the job; RunError, also when inputs have changed since;
// formats::FileError.
[[nodiscard]] std::string carryOut(const WorkerJob& job, const std::string& version,
                                   const std::function<void(double)>& progress);

}  // namespace study

#endif
