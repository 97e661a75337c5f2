#include "prepare/grid.h"

#include <cmath>

namespace study {

std::array<double, 3> Grid::toMm(const std::array<int, 3>& voxel) const {
  return formats::apply(
      affine, {static_cast<double>(voxel[0]), static_cast<double>(voxel[1]), static_cast<double>(voxel[2])});
}

Grid gridOf(const formats::ImageHeader& header) {
  return {header.size, header.affine};
}

bool sameGrid(const Grid& a, const Grid& b, double toleranceMm) {
  if (a.size != b.size) return false;
  for (int corner = 0; corner < 8; ++corner) {
    const std::array<int, 3> voxel = {(corner & 1) != 0 ? a.size.x - 1 : 0,
                                      (corner & 2) != 0 ? a.size.y - 1 : 0,
                                      (corner & 4) != 0 ? a.size.z - 1 : 0};
    const auto p = a.toMm(voxel), q = b.toMm(voxel);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (!(std::abs(p[axis] - q[axis]) <= toleranceMm)) return false;
    }
  }
  return true;
}

}  // namespace study
