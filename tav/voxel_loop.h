// Streams a condition's VTCs slice by slice through a voxel path into raw results.
#ifndef TAVMAP_TAV_VOXEL_LOOP_H
#define TAVMAP_TAV_VOXEL_LOOP_H

#include <ostream>
#include <span>
#include <vector>

#include "tav/raw_result.h"
#include "tav/run_log.h"
#include "tav/run_options.h"
#include "tav/tav_pars.h"
#include "tav/voxel_path.h"
#include "tav/vtc_cache.h"

namespace tav {

// One reference of a pass: its time course in every interval set's source, and its random numbers.
struct PassReference {
  std::vector<const VoiTc*> courses;
  simo::RandomStream* random;
};

// A condition ready to be computed: a job per reference, and the open files behind their files.
struct ConditionJobs {
  std::vector<VoxelJob> jobs;
  std::vector<VtcFile*> files;
};

// At least one reference. Sets that share a target file share one entry, so that each file is read
// once per slice.
[[nodiscard]] ConditionJobs makeConditionJobs(const TAV_Cond_Pars& cond,
                                              const std::vector<PassReference>& references,
                                              const TAV_Pars& request, const RunOptions& options);

// Computes every voxel of the request's grid for every job; every value of the jobs' results is
// written. Returns a Status: 3 when a file ends before its last slice. Progress goes to `log` in
// steps of ten per cent.
[[nodiscard]] int runVoxelLoop(const ConditionJobs& condition, const TAV_Pars& request, VoxelPath& path,
                               const RunLog& log, std::span<RawResult* const> results, std::ostream& errors);

// Where the results of the voxels from this one on go.
[[nodiscard]] VoxelResults resultsFrom(std::size_t voxel, RawResult& result);
// Forgets what the result held.
void startResult(RawResult& result);

// Reports the progress of a loop that ran along with an earlier one.
void reportLoopDone(const TAV_Pars& request, const RunLog& log);

}  // namespace tav

#endif
