// What a pass over the voxels leaves of one reference and one condition.
#ifndef TAVMAP_TAV_RAW_RESULT_H
#define TAVMAP_TAV_RAW_RESULT_H

#include <cstddef>
#include <memory>
#include <vector>

#include "simo/random_stream.h"
#include "tav/raw_maps.h"
#include "tav/run_observer.h"

namespace tav {

struct RawResult {
  RawResult() = default;
  // Stores for a grid, without values. nullDraws: surrogates per voxel.
  RawResult(unsigned nx, unsigned ny, unsigned nz, int nullDraws)
      : observed(std::make_unique<rawTAVMaps>(nx, ny, nz)), null(std::make_unique<rawTAVMaps>(nx, ny, nz)) {
    if (nullDraws > 1) furtherNulls = std::make_unique<FurtherNulls>(nullDraws - 1);
  }

  // Whether these are stores for such a grid and so many draws.
  [[nodiscard]] bool fits(std::size_t voxels, int nullDraws) const {
    const std::size_t further = furtherNulls == nullptr ? 0 : furtherNulls->drawsPerVoxel();
    return observed != nullptr && observed->nrOfVoxels() == voxels &&
           further + 1 == static_cast<std::size_t>(nullDraws);
  }

  std::unique_ptr<rawTAVMaps> observed;
  std::unique_ptr<rawTAVMaps> null;            // of the first draw
  std::unique_ptr<FurtherNulls> furtherNulls;  // null when one surrogate is drawn per voxel
  std::vector<VoxelStatus> status;
  VoxelCounts counts;
  simo::RandomStream after;  // the reference's stream behind its draws
};

}  // namespace tav

#endif
