// Images of the head on the grid of the runs, for pictures to draw maps on. No result is made from them.
#ifndef TAVMAP_PREPARE_ANATOMY_H
#define TAVMAP_PREPARE_ANATOMY_H

#include <filesystem>
#include <vector>

#include "prepare/run_plan.h"
#include "request/volume_ranges.h"

namespace study {

// Looks at the header alone; an empty path is fine. Throws InputError for a file that cannot be read, a
// series, an image whose affine cannot be inverted, and one that lies nowhere in the run's grid.
void requireUsableAnatomy(const std::filesystem::path& anatomy, const RunPlan& run);

// The anatomy at the voxels of the grid (resample.h). Throws InputError for a file that is damaged.
[[nodiscard]] std::vector<float> anatomyOnGrid(const std::filesystem::path& anatomy, const Grid& grid);

// The first volumes of the stored image, from 1, that are not dropped; at most 20.
[[nodiscard]] VolumeRange firstVolumes(const RunPlan& run);
// Their mean per voxel, in the image's unit, over values that are finite; 0 where none is. Throws
// formats::FileError.
[[nodiscard]] std::vector<float> meanOfFirstVolumes(const RunPlan& run);

}  // namespace study

#endif
