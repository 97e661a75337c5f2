// Streams a condition's VTCs slice by slice through a voxel path into the raw map stores.
#ifndef TAVMAP_TAV_VOXEL_LOOP_H
#define TAVMAP_TAV_VOXEL_LOOP_H

#include <ostream>
#include <vector>

#include "tav/raw_maps.h"
#include "tav/run_observer.h"
#include "tav/run_options.h"
#include "tav/tav_pars.h"
#include "tav/voxel_path.h"
#include "tav/vtc_cache.h"

namespace tav {

// A condition ready to be computed: the job, and the open files behind job.files.
struct ConditionJob {
  VoxelJob job;
  std::vector<VtcFile*> files;
};

// Sets that share a target file share one entry, so that each file is read once per slice.
[[nodiscard]] ConditionJob makeConditionJob(const TAV_Cond_Pars& cond,
                                            const std::vector<const VoiTc*>& references,
                                            const TAV_Pars& request, const RunOptions& options);

struct RawStores {
  rawTAVMaps& observed;
  rawTAVMaps& null;            // of the first draw
  FurtherNulls* furtherNulls;  // null when one surrogate is drawn per voxel
};

// Computes every voxel of the request's grid; every value of both stores and of `status` is
// written. Returns a Status: 3 when a file ends before its last slice. Progress goes to the host's
// log pane in steps of ten per cent.
[[nodiscard]] int runVoxelLoop(const ConditionJob& condition, const TAV_Pars& request, VoxelPath& path,
                               const RawStores& stores, std::vector<VoxelStatus>& status, VoxelCounts& counts,
                               std::ostream& errors);

}  // namespace tav

#endif
