// An image seen upright: indices that run to the patient's right, front and top, whatever order
// the file stores its voxels in.
#ifndef TAVMAP_RENDER_UPRIGHT_H
#define TAVMAP_RENDER_UPRIGHT_H

#include <array>
#include <cstddef>

#include "io/grid_size.h"

namespace render {

// Row-major 4 x 4: voxel index (i, j, k, 1) to millimetres, x to the right, y to the front, z up.
using Affine = std::array<double, 16>;

class Upright {
 public:
  // `size`: of the grid as stored. Every stored axis is
  // assigned to the patient axis that it follows most closely; oblique images stay in their own
  // planes.
  Upright(const io::GridSize& size, const Affine& affine);

  // Extent and voxel edge in millimetres along right (0), front (1) and top (2).
  [[nodiscard]] int dim(std::size_t patientAxis) const { return dims_[patientAxis]; }
  [[nodiscard]] double voxelMm(std::size_t patientAxis) const { return voxelMm_[patientAxis]; }

  // Position in the stored data, first axis fastest, of the voxel at `right`, `front`, `top`
  // (each 0-based from the left, the back and the bottom).
  [[nodiscard]] std::size_t storedIndex(int right, int front, int top) const;
  // The other way round: right, front and top of a voxel by its stored indices.
  [[nodiscard]] std::array<int, 3> position(const std::array<int, 3>& stored) const;

  // Which stored axis a patient axis runs along, or against.
  [[nodiscard]] std::size_t storedAxis(std::size_t patientAxis) const { return storedAxis_[patientAxis]; }
  [[nodiscard]] bool isReversed(std::size_t patientAxis) const { return reversed_[patientAxis]; }

  // (right, front, top, 1) to millimetres.
  [[nodiscard]] Affine affine() const;

 private:
  std::array<int, 3> dims_{};
  std::array<double, 3> voxelMm_{};
  Affine storedAffine_;
  std::array<std::size_t, 3> storedAxis_{};
  std::array<std::size_t, 3> stride_{};
  std::array<bool, 3> reversed_{};
};

}  // namespace render

#endif
