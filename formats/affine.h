// 4x4 affine transforms from voxel indices to millimetres (RAS+: x to the right, y to the front,
// z up), as NIfTI headers give them.
#ifndef TAVMAP_FORMATS_AFFINE_H
#define TAVMAP_FORMATS_AFFINE_H

#include <array>

namespace formats {

using Point = std::array<double, 3>;

struct Affine {
  std::array<double, 16> m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};  // row-major

  [[nodiscard]] double at(int row, int column) const { return m[static_cast<unsigned>(4 * row + column)]; }
  [[nodiscard]] double& at(int row, int column) { return m[static_cast<unsigned>(4 * row + column)]; }
  friend bool operator==(const Affine&, const Affine&) = default;
};

[[nodiscard]] Point apply(const Affine& affine, const Point& point);

// The length of a step of one voxel along each axis.
[[nodiscard]] Point voxelSize(const Affine& affine);

// Determinant of the 3x3 part: 0 for a transform that cannot be inverted.
[[nodiscard]] double determinant(const Affine& affine);

// Precondition: determinant(affine) != 0.
[[nodiscard]] Affine inverse(const Affine& affine);

// Of a VTC in Talairach space with the given box start and resolution:
// X = 128 - (zStart + res z), Y = 128 - (xStart + res x), Z = 128 - (yStart + res y).
[[nodiscard]] Affine talairachAffine(int xStart, int yStart, int zStart, int resolution);

}  // namespace formats

#endif
