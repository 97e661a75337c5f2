#include "prepare/resample.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace study {
namespace {

constexpr double kHalfVoxel = 0.5;

std::array<int, 3> extentOf(const formats::GridSize& size) {
  return {size.x, size.y, size.z};
}

// at: in voxels of the grid.
bool isInside(const formats::Point& at, const std::array<int, 3>& extent) {
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (!(at[axis] >= -kHalfVoxel && at[axis] <= extent[axis] - 1 + kHalfVoxel)) return false;
  return true;
}

// A place between two voxels along one axis.
struct Between {
  int first, second;
  double shareOfSecond;
  Between(double at, int extent) {
    const double within = std::clamp(at, 0.0, static_cast<double>(extent - 1));
    first = static_cast<int>(within);
    second = std::min(first + 1, extent - 1);
    shareOfSecond = within - first;
  }
  [[nodiscard]] double mix(double a, double b) const { return a + shareOfSecond * (b - a); }
};

double interpolated(const formats::Image3D& image, const formats::Point& at) {
  const auto extent = extentOf(image.header.size);
  const Between x(at[0], extent[0]), y(at[1], extent[1]), z(at[2], extent[2]);
  const auto value = [&image](int i, int j, int k) {
    const auto stored = static_cast<double>(image.at(i, j, k));
    return std::isfinite(stored) ? stored : 0.0;
  };
  const auto alongX = [&](int j, int k) { return x.mix(value(x.first, j, k), value(x.second, j, k)); };
  const auto alongY = [&](int k) { return y.mix(alongX(y.first, k), alongX(y.second, k)); };
  return z.mix(alongY(z.first), alongY(z.second));
}

}  // namespace

std::vector<float> valuesOnGrid(const formats::Image3D& image, const Grid& grid) {
  const formats::Affine toImage = formats::inverse(image.header.affine);
  const auto extent = extentOf(image.header.size);
  std::vector<float> values(grid.size.voxels(), 0);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const formats::Point at = formats::apply(toImage, grid.toMm(grid.size.voxelAt(i)));
    if (isInside(at, extent)) values[i] = static_cast<float>(interpolated(image, at));
  }
  return values;
}

bool overlaps(const Grid& image, const Grid& grid) {
  const formats::Affine toImage = formats::inverse(image.affine);
  for (std::size_t i = 0; i < grid.size.voxels(); ++i)
    if (isInside(formats::apply(toImage, grid.toMm(grid.size.voxelAt(i))), extentOf(image.size))) return true;
  return false;
}

}  // namespace study
