#include "formats/affine.h"

#include <cmath>

namespace formats {
namespace {

constexpr double kTalairachOrigin = 128;  // of the anatomical coordinates, on every axis

double cofactor(const Affine& a, int row, int column) {
  const int r0 = (row + 1) % 3, r1 = (row + 2) % 3, c0 = (column + 1) % 3, c1 = (column + 2) % 3;
  return a.at(r0, c0) * a.at(r1, c1) - a.at(r0, c1) * a.at(r1, c0);
}

}  // namespace

Point apply(const Affine& affine, const Point& point) {
  Point result{};
  for (int row = 0; row < 3; ++row) {
    result[static_cast<unsigned>(row)] = affine.at(row, 0) * point[0] + affine.at(row, 1) * point[1] +
                                         affine.at(row, 2) * point[2] + affine.at(row, 3);
  }
  return result;
}

Point voxelSize(const Affine& affine) {
  Point size{};
  for (int axis = 0; axis < 3; ++axis) {
    size[static_cast<unsigned>(axis)] =
        std::hypot(affine.at(0, axis), affine.at(1, axis), affine.at(2, axis));
  }
  return size;
}

double determinant(const Affine& affine) {
  return affine.at(0, 0) * cofactor(affine, 0, 0) + affine.at(0, 1) * cofactor(affine, 0, 1) +
         affine.at(0, 2) * cofactor(affine, 0, 2);
}

Affine inverse(const Affine& affine) {
  const double scale = 1 / determinant(affine);
  Affine result;
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) result.at(row, column) = cofactor(affine, column, row) * scale;
  }
  for (int row = 0; row < 3; ++row) {
    result.at(row, 3) = -(result.at(row, 0) * affine.at(0, 3) + result.at(row, 1) * affine.at(1, 3) +
                          result.at(row, 2) * affine.at(2, 3));
  }
  return result;
}

Affine talairachAffine(int xStart, int yStart, int zStart, int resolution) {
  const double step = resolution;
  return {{0, 0, -step, kTalairachOrigin - zStart,  //
           -step, 0, 0, kTalairachOrigin - xStart,  //
           0, -step, 0, kTalairachOrigin - yStart,  //
           0, 0, 0, 1}};
}

}  // namespace formats
