// The readable voxel path.
#ifndef TAVMAP_TAV_REFERENCE_PATH_H
#define TAVMAP_TAV_REFERENCE_PATH_H

#include <memory>
#include <vector>

#include "tav/voxel_fits.h"
#include "tav/voxel_path.h"

namespace tav {

// Reference after reference, voxel after voxel.
class ReferencePath : public VoxelPath {
 public:
  [[nodiscard]] const char* name() const override { return "reference"; }
  void begin(std::span<const VoxelJob> jobs) override;
  [[nodiscard]] std::unique_ptr<VoxelPath> beside(
      std::span<simo::RandomStream* const> streams) const override;
  void compute(std::size_t nrOfVoxels, std::span<const VoxelData> data,
               std::span<const VoxelResults> results) override;

 private:
  std::vector<VoxelJob> jobs_;
  std::vector<std::unique_ptr<VoxelFits>> fits_;  // per job
};

}  // namespace tav

#endif
