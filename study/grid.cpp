#include "study/grid.h"

#include <cmath>

#include "study/problem.h"

namespace study {

std::array<int, 3> Grid::voxelAt(std::size_t index) const {
  const std::size_t nx = static_cast<std::size_t>(dims[0]), ny = static_cast<std::size_t>(dims[1]);
  return {static_cast<int>(index % nx), static_cast<int>(index / nx % ny), static_cast<int>(index / (nx * ny))};
}

bool Grid::contains(const std::array<int, 3>& voxel) const {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (voxel[axis] < 0 || voxel[axis] >= dims[axis]) return false;
  }
  return true;
}

std::array<double, 3> mapPoint(const std::array<std::array<double, 4>, 4>& affine, const std::array<double, 3>& point) {
  std::array<double, 3> result{};
  for (std::size_t r = 0; r < 3; ++r) {
    result[r] = affine[r][0] * point[0] + affine[r][1] * point[1] + affine[r][2] * point[2] + affine[r][3];
  }
  return result;
}

std::array<double, 3> Grid::toMm(const std::array<double, 3>& voxel) const { return mapPoint(affine, voxel); }

std::array<double, 3> Grid::toMm(const std::array<int, 3>& voxel) const {
  return mapPoint(affine, {static_cast<double>(voxel[0]), static_cast<double>(voxel[1]), static_cast<double>(voxel[2])});
}

// Cofactors of the linear part, then the translation.
std::array<std::array<double, 4>, 4> inverseAffine(const Grid& grid) {
  const auto& a = grid.affine;
  const auto cofactor = [&](std::size_t r, std::size_t c) {
    const std::size_t r1 = (r + 1) % 3, r2 = (r + 2) % 3, c1 = (c + 1) % 3, c2 = (c + 2) % 3;
    return a[r1][c1] * a[r2][c2] - a[r1][c2] * a[r2][c1];
  };
  const double determinant = a[0][0] * cofactor(0, 0) + a[0][1] * cofactor(0, 1) + a[0][2] * cofactor(0, 2);
  if (!(std::abs(determinant) > 1e-12)) {
    throw InputError("an image's affine cannot be inverted; its header is damaged");
  }
  std::array<std::array<double, 4>, 4> inverse{};
  for (std::size_t r = 0; r < 3; ++r) {
    for (std::size_t c = 0; c < 3; ++c) inverse[r][c] = cofactor(c, r) / determinant;
  }
  for (std::size_t r = 0; r < 3; ++r) {
    inverse[r][3] = -(inverse[r][0] * a[0][3] + inverse[r][1] * a[1][3] + inverse[r][2] * a[2][3]);
  }
  inverse[3][3] = 1;
  return inverse;
}

bool sameGrid(const Grid& a, const Grid& b, double toleranceMm) {
  if (a.dims != b.dims) return false;
  for (int corner = 0; corner < 8; ++corner) {
    const std::array<int, 3> voxel = {(corner & 1) != 0 ? a.dims[0] - 1 : 0, (corner & 2) != 0 ? a.dims[1] - 1 : 0,
                                      (corner & 4) != 0 ? a.dims[2] - 1 : 0};
    const auto p = a.toMm(voxel), q = b.toMm(voxel);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (!(std::abs(p[axis] - q[axis]) <= toleranceMm)) return false;
    }
  }
  return true;
}

}  // namespace study
