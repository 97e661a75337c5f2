// One voxel after the other: the readable computation that every faster path is held to.
#ifndef TAVMAP_TAV_VOXEL_FITS_H
#define TAVMAP_TAV_VOXEL_FITS_H

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "tav/voxel_path.h"

namespace tav {

// The measures of one included voxel.
struct VoxelMeasures {
  bool isDefined;  // false: all values are 0 and no null was fitted
  std::array<float, kNrOfMeasures> truth;
  std::vector<std::array<float, kNrOfMeasures>> nulls;  // per draw; 0 where the fit failed
  int nullsIllDefined;
};

class VoxelFits {
 public:
  virtual ~VoxelFits() = default;
  // One voxel, with surrogates from the job's stream. The result holds until the next call.
  virtual const VoxelMeasures& compute(std::size_t voxel, std::span<const VoxelData> data) = 0;
  // One voxel whose drawsPerVoxel() surrogates are drawn already: [interval][draw] in the written form,
  // [draw] in least squares. The result holds until the next call.
  virtual const VoxelMeasures& computeDrawn(std::size_t voxel, std::span<const VoxelData> data,
                                            const std::uint32_t* drawn) = 0;
};

// In the job's form. What the job points at outlives them.
[[nodiscard]] std::unique_ptr<VoxelFits> makeVoxelFits(const VoxelJob& job);

}  // namespace tav

#endif
