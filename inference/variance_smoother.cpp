#include "inference/variance_smoother.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "inference/lanes.h"

namespace inference {

namespace {

constexpr double kFwhmPerDeviation = 2.3548200450309493;  // 2 sqrt(2 ln 2)
constexpr double kReach = 3;                              // standard deviations

std::vector<float> gaussian(double deviation) {
  std::vector<float> weights;
  for (int i = 0; i <= kReach * deviation; ++i)
    weights.push_back(static_cast<float>(std::exp(-i * i / (2 * deviation * deviation))));
  return weights;
}

struct Box {
  std::array<int, 3> from, to;  // both within
};

Box boxAround(const Space& space) {
  constexpr int kMost = std::numeric_limits<int>::max();
  Box box{{kMost, kMost, kMost}, {-1, -1, -1}};
  for (const std::size_t voxel : space.voxels) {
    if (voxel >= space.grid.voxels()) continue;
    const auto at = space.grid.voxelAt(voxel);
    for (std::size_t i = 0; i < 3; ++i) {
      box.from[i] = std::min(box.from[i], at[i]);
      box.to[i] = std::max(box.to[i], at[i]);
    }
  }
  return box;
}

}  // namespace

VarianceSmoother::VarianceSmoother(const Space& space, double fwhmMm) {
  for (std::size_t i = 0; i < 3; ++i)
    axes_[i].weights = gaussian(fwhmMm / kFwhmPerDeviation / space.voxelMm[i]);
  layOut(space);
  shares_.assign(cells_.size(), 1.0F);
  std::vector<float> ones = shares_;
  smooth(ones.data());
  shares_ = ones;
}

void VarianceSmoother::layOut(const Space& space) {
  const Box box = boxAround(space);
  std::size_t step = 1;
  for (std::size_t i = 0; i < 3; ++i) {
    axes_[i].length = static_cast<std::size_t>(box.to[i] - box.from[i]) + 1;
    axes_[i].step = step;
    step *= axes_[i].length;
  }
  box_.assign(step + 1, 0.0F);
  line_.resize(step);
  for (const std::size_t voxel : space.voxels) {
    std::size_t cell = step;
    if (voxel < space.grid.voxels()) {
      const auto at = space.grid.voxelAt(voxel);
      cell = 0;
      for (std::size_t i = 0; i < 3; ++i)
        cell += static_cast<std::size_t>(at[i] - box.from[i]) * axes_[i].step;
    }
    cells_.push_back(cell);
  }
}

void VarianceSmoother::smooth(float* values) {
  for (std::size_t i = 0; i < cells_.size(); ++i) box_[cells_[i]] = values[i];
  for (const Axis& axis : axes_) convolve(axis);
  for (std::size_t i = 0; i < cells_.size(); ++i) values[i] = box_[cells_[i]] / shares_[i];
  std::fill(box_.begin(), box_.end(), 0.0F);
}

// Whole layers are shifted at once: runs of values that lie behind one another in memory.
void VarianceSmoother::convolve(const Axis& axis) {
  const std::size_t all = line_.size(), layer = axis.step * axis.length;
  std::fill(line_.begin(), line_.end(), 0.0F);
  addScaled(box_.data(), axis.weights[0], all, line_.data());
  for (std::size_t d = 1; d < std::min(axis.weights.size(), axis.length); ++d) {
    const std::size_t shift = d * axis.step;
    for (std::size_t begin = 0; begin < all; begin += layer) {
      addScaled(box_.data() + begin + shift, axis.weights[d], layer - shift, line_.data() + begin);
      addScaled(box_.data() + begin, axis.weights[d], layer - shift, line_.data() + begin + shift);
    }
  }
  std::copy(line_.begin(), line_.end(), box_.begin());
}

}  // namespace inference
