// A grid of voxels and its place in the scanner.
#ifndef TAVMAP_PREPARE_GRID_H
#define TAVMAP_PREPARE_GRID_H

#include <array>

#include "formats/image.h"

namespace study {

// affine: voxel indices to millimetres, RAS+.
struct Grid {
  formats::GridSize size;
  formats::Affine affine;

  [[nodiscard]] std::array<double, 3> toMm(const std::array<int, 3>& voxel) const;
};

[[nodiscard]] Grid gridOf(const formats::ImageHeader& header);

// Equal dimensions, and corners that lie within toleranceMm of each other.
[[nodiscard]] bool sameGrid(const Grid& a, const Grid& b, double toleranceMm = 0.01);

}  // namespace study

#endif
