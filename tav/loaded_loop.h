// A condition's voxels when all of its data are in memory: on several threads, and ready to be called off.
#ifndef TAVMAP_TAV_LOADED_LOOP_H
#define TAVMAP_TAV_LOADED_LOOP_H

#include <atomic>
#include <span>

#include "tav/raw_result.h"
#include "tav/voxel_loop.h"
#include "tav/voxel_path.h"

namespace tav {

// Whether all files of the condition are in memory.
[[nodiscard]] bool isLoaded(const ConditionJobs& condition);

struct LoopThreads {
  int threads = 1;
  const std::atomic<bool>* cancel = nullptr;  // throws Cancelled when it is set, after a millisecond or so
};

// As runVoxelLoop(), without progress: the same results whatever the number of threads. Each thread takes a
// stretch of the grid with as many voxels to compute, and the numbers of the streams from where that stretch
// would find them. When it throws, results and streams are in no particular state.
void runLoadedLoop(const ConditionJobs& condition, VoxelPath& path, std::span<RawResult* const> results,
                   const LoopThreads& threads);

}  // namespace tav

#endif
