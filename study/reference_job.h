// The work of one worker: the engine's run over one reference (or, with method "plugin", over all of
// them), and the files that come of it.
#ifndef TAVMAP_STUDY_REFERENCE_JOB_H
#define TAVMAP_STUDY_REFERENCE_JOB_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "results/record.h"
#include "study/study_plan.h"
#include "tav/run_options.h"

namespace study {

// Computes the regions with these indices and publishes their files in the output folder, each
// reference's record last. Runs on the caller's thread and changes nothing of the process. progress
// receives 0 to 1. Throws RunError, InputError and formats::FileError.
void computeReferences(const StudyPlan& plan, const std::vector<std::size_t>& regions,
                       const std::function<void(double)>& progress);

// What the engine is asked for these regions. With method "plugin" they share one sequence of random numbers;
// otherwise each has its own.
[[nodiscard]] tav::RunOptions referenceOptions(const StudyPlan& plan,
                                               const std::vector<std::size_t>& regions);

// What the log of a reference says beyond the engine's own text: method, preparation, warnings,
// thresholds in words.
[[nodiscard]] std::string logAppendix(const StudyPlan& plan, std::size_t region,
                                      const ReferenceResult& result);

// The record of a finished reference when it was made under this key, every condition has computed voxels and
// its files are there, each of its size; unset otherwise.
[[nodiscard]] std::optional<Record> finishedRecord(const StudyPlan& plan, std::size_t region);

}  // namespace study

#endif
