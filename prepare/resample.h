// Images between the voxels of another grid.
#ifndef TAVMAP_PREPARE_RESAMPLE_H
#define TAVMAP_PREPARE_RESAMPLE_H

#include <vector>

#include "formats/image.h"
#include "prepare/grid.h"

namespace study {

// The image at the centres of the grid's voxels, in their order: between the centres of its own by trilinear
// interpolation along its axes; up to half a voxel beyond the outer centres as at these; 0 outside. Values
// that are not finite count as 0. Precondition: the image's affine can be inverted.
[[nodiscard]] std::vector<float> valuesOnGrid(const formats::Image3D& image, const Grid& grid);

// Whether the centre of any voxel of the grid lies in the image. The same precondition.
[[nodiscard]] bool overlaps(const Grid& image, const Grid& grid);

}  // namespace study

#endif
