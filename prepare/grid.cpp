#include "prepare/grid.h"

#include <cmath>

namespace study {

std::array<int, 3> Grid::voxelAt(std::size_t index) const {
  const std::size_t nx = static_cast<std::size_t>(dims[0]), ny = static_cast<std::size_t>(dims[1]);
  return {static_cast<int>(index % nx), static_cast<int>(index / nx % ny),
          static_cast<int>(index / (nx * ny))};
}

bool Grid::contains(const std::array<int, 3>& voxel) const {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (voxel[axis] < 0 || voxel[axis] >= dims[axis]) return false;
  }
  return true;
}

std::array<double, 3> Grid::toMm(const std::array<int, 3>& voxel) const {
  return formats::apply(
      affine, {static_cast<double>(voxel[0]), static_cast<double>(voxel[1]), static_cast<double>(voxel[2])});
}

Grid gridOf(const formats::ImageHeader& header) {
  return {{header.size.x, header.size.y, header.size.z}, header.affine};
}

bool sameGrid(const Grid& a, const Grid& b, double toleranceMm) {
  if (a.dims != b.dims) return false;
  for (int corner = 0; corner < 8; ++corner) {
    const std::array<int, 3> voxel = {(corner & 1) != 0 ? a.dims[0] - 1 : 0,
                                      (corner & 2) != 0 ? a.dims[1] - 1 : 0,
                                      (corner & 4) != 0 ? a.dims[2] - 1 : 0};
    const auto p = a.toMm(voxel), q = b.toMm(voxel);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (!(std::abs(p[axis] - q[axis]) <= toleranceMm)) return false;
    }
  }
  return true;
}

}  // namespace study
