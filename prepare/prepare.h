// Preparation of a run for the engine: from an image to a VTC in the work folder, imported once and
// found again under the key of its inputs.
#ifndef TAVMAP_PREPARE_PREPARE_H
#define TAVMAP_PREPARE_PREPARE_H

#include <filesystem>
#include <functional>
#include <string>

#include "prepare/run_plan.h"

namespace study {

// True when the run's VTC lies in the folder, whole.
[[nodiscard]] bool isPrepared(const RunPlan& run, const std::filesystem::path& workFolder);

// Makes workFolder/run.vtcName: import with the exact mask, leading volumes dropped, confounds
// regressed out voxel by voxel, censored volumes bridged. Writes whole files only. Memory: what the
// import needs, plus one slice. progress receives 0 to 1. Throws formats::FileError, and InputError
// when no voxel is left to map.
void prepareRun(const RunPlan& run, const std::filesystem::path& workFolder, int inclusionThreshold,
                const std::function<void(double)>& progress);

}  // namespace study

#endif
