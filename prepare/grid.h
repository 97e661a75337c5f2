// A grid of voxels and its place in the scanner.
#ifndef TAVMAP_PREPARE_GRID_H
#define TAVMAP_PREPARE_GRID_H

#include <array>
#include <cstddef>

#include "formats/image.h"

namespace study {

// Voxel (i, j, k) from 0, index (k * ny + j) * nx + i; affine: voxel indices to millimetres, RAS+.
struct Grid {
  std::array<int, 3> dims{};
  formats::Affine affine;

  std::size_t voxels() const {
    return static_cast<std::size_t>(dims[0]) * static_cast<std::size_t>(dims[1]) *
           static_cast<std::size_t>(dims[2]);
  }
  std::size_t index(const std::array<int, 3>& voxel) const {
    return (static_cast<std::size_t>(voxel[2]) * static_cast<std::size_t>(dims[1]) +
            static_cast<std::size_t>(voxel[1])) *
               static_cast<std::size_t>(dims[0]) +
           static_cast<std::size_t>(voxel[0]);
  }
  std::array<int, 3> voxelAt(std::size_t index) const;
  bool contains(const std::array<int, 3>& voxel) const;
  std::array<double, 3> toMm(const std::array<int, 3>& voxel) const;
};

Grid gridOf(const formats::ImageHeader& header);

// Equal dimensions, and corners that lie within toleranceMm of each other.
bool sameGrid(const Grid& a, const Grid& b, double toleranceMm = 0.01);

}  // namespace study

#endif
