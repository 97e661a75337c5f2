#include "tav/voxel_path.h"

#include "tav/reference_path.h"

namespace tav {

std::unique_ptr<VoxelPath> makeVoxelPath() { return std::make_unique<ReferencePath>(); }

}  // namespace tav
