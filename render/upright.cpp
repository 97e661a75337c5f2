#include "render/upright.h"

#include <algorithm>
#include <cmath>

namespace render {
namespace {

double element(const Affine& affine, std::size_t patientAxis, std::size_t storedAxis) {
  return affine[4 * patientAxis + storedAxis];
}

double edgeMm(const Affine& affine, std::size_t storedAxis) {
  return std::hypot(element(affine, 0, storedAxis), element(affine, 1, storedAxis),
                    element(affine, 2, storedAxis));
}

// How closely an assignment of stored axes to patient axes follows the affine: the sum of the
// direction cosines. Three axes have six assignments, so all of them are tried.
double closeness(const Affine& affine, const std::array<std::size_t, 3>& storedAxisOf) {
  double sum = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double edge = edgeMm(affine, storedAxisOf[axis]);
    if (edge > 0) sum += std::abs(element(affine, axis, storedAxisOf[axis])) / edge;
  }
  return sum;
}

std::array<std::size_t, 3> closestAssignment(const Affine& affine) {
  std::array<std::size_t, 3> candidate = {0, 1, 2};
  std::array<std::size_t, 3> best = candidate;
  while (std::next_permutation(candidate.begin(), candidate.end())) {
    if (closeness(affine, candidate) > closeness(affine, best)) best = candidate;
  }
  return best;
}

}  // namespace

Upright::Upright(const io::GridSize& size, const Affine& affine) : storedAffine_(affine) {
  const std::array<int, 3> dims = {size.x, size.y, size.z};
  const std::array<std::size_t, 3> storedStride = {1, static_cast<std::size_t>(size.x), size.slice()};
  storedAxis_ = closestAssignment(affine);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::size_t stored = storedAxis_[axis];
    dims_[axis] = dims[stored];
    voxelMm_[axis] = edgeMm(affine, stored);
    stride_[axis] = storedStride[stored];
    reversed_[axis] = element(affine, axis, stored) < 0;
  }
}

std::size_t Upright::storedIndex(int right, int front, int top) const {
  const std::array<int, 3> position = {right, front, top};
  std::size_t index = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const int along = reversed_[axis] ? dims_[axis] - 1 - position[axis] : position[axis];
    index += static_cast<std::size_t>(along) * stride_[axis];
  }
  return index;
}

std::array<int, 3> Upright::position(const std::array<int, 3>& stored) const {
  std::array<int, 3> position{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const int along = stored[storedAxis_[axis]];
    position[axis] = reversed_[axis] ? dims_[axis] - 1 - along : along;
  }
  return position;
}

Affine Upright::affine() const {
  Affine upright = storedAffine_;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double step = element(storedAffine_, row, storedAxis_[axis]);
      upright[4 * row + axis] = reversed_[axis] ? -step : step;
      if (reversed_[axis]) upright[4 * row + 3] += step * (dims_[axis] - 1);
    }
  }
  return upright;
}

}  // namespace render
