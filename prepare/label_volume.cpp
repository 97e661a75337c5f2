#include "prepare/label_volume.h"

#include <algorithm>
#include <cmath>

#include "request/problem.h"

namespace study {
namespace {

using Voxel = std::array<int, 3>;

constexpr double kFarAway = 1e6, kLargeRadius = 300;  // voxels

Voxel nearestVoxel(const formats::Point& at) {
  return {static_cast<int>(std::floor(at[0] + 0.5)), static_cast<int>(std::floor(at[1] + 0.5)),
          static_cast<int>(std::floor(at[2] + 0.5))};
}

// The voxels, counted on beyond the grid, that a sphere can reach.
struct Box {
  Voxel low{}, high{};
  bool isSensible = false;
};

// A row of the inverse affine says how many voxels a millimetre spans along an axis.
Box boxAround(const formats::Point& centreMm, double radiusMm, const Grid& grid) {
  const formats::Affine toGrid = formats::inverse(grid.affine);
  const formats::Point centre = formats::apply(toGrid, centreMm);
  Box box;
  for (int axis = 0; axis < 3; ++axis) {
    const auto a = static_cast<std::size_t>(axis);
    const double radius = radiusMm * std::hypot(toGrid.at(axis, 0), toGrid.at(axis, 1), toGrid.at(axis, 2));
    if (!(std::abs(centre[a]) < kFarAway && radius < kLargeRadius)) return box;
    box.low[a] = static_cast<int>(std::floor(centre[a] - radius));
    box.high[a] = static_cast<int>(std::ceil(centre[a] + radius));
  }
  box.isSensible = true;
  return box;
}

template <typename Action>
void forEachVoxel(const Box& box, Action&& action) {
  for (int k = box.low[2]; k <= box.high[2]; ++k) {
    for (int j = box.low[1]; j <= box.high[1]; ++j) {
      for (int i = box.low[0]; i <= box.high[0]; ++i) action(Voxel{i, j, k});
    }
  }
}

// What of the grid a sphere can reach, with a voxel to spare on each side; all of it for a sphere that nobody
// counts.
Box boxInGrid(const formats::Point& centreMm, double radiusMm, const Grid& grid) {
  const Voxel last = {grid.size.x - 1, grid.size.y - 1, grid.size.z - 1};
  Box box;
  if (formats::determinant(grid.affine) != 0) box = boxAround(centreMm, radiusMm, grid);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    box.low[axis] = box.isSensible ? std::max(box.low[axis] - 1, 0) : 0;
    box.high[axis] = box.isSensible ? std::min(box.high[axis] + 1, last[axis]) : last[axis];
  }
  return box;
}

void count(bool isInside, Reach& reach) {
  ++reach.voxels;
  if (!isInside) ++reach.beyond;
}

}  // namespace

double Reach::shareInside() const {
  return voxels == 0 ? 1 : static_cast<double>(voxels - beyond) / static_cast<double>(voxels);
}

std::string labelName(const LabelVolume& image, std::int32_t value) {
  const auto found = image.names.find(value);
  return found == image.names.end() ? "label" + std::to_string(value) : found->second;
}

std::vector<std::int32_t> labelsOnGrid(const LabelVolume& image, const Grid& grid) {
  if (sameGrid(image.grid, grid)) return image.labels;
  std::vector<std::int32_t> labels(grid.size.voxels(), 0);
  if (formats::determinant(image.grid.affine) == 0) {
    throw InputError(image.file + ": its affine cannot be inverted; the header is damaged");
  }
  const formats::Affine toImage = formats::inverse(image.grid.affine);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const Voxel voxel = nearestVoxel(formats::apply(toImage, grid.toMm(grid.size.voxelAt(i))));
    if (image.grid.size.contains(voxel)) labels[i] = image.labels[image.grid.size.index(voxel)];
  }
  return labels;
}

std::map<std::int32_t, Reach> reachOfLabels(const LabelVolume& image, const Grid& grid) {
  std::map<std::int32_t, Reach> reaches;
  if (sameGrid(image.grid, grid) || formats::determinant(grid.affine) == 0) return reaches;
  const formats::Affine toGrid = formats::inverse(grid.affine);
  for (std::size_t i = 0; i < image.labels.size(); ++i) {
    if (image.labels[i] == 0) continue;
    const Voxel at = nearestVoxel(formats::apply(toGrid, image.grid.toMm(image.grid.size.voxelAt(i))));
    count(grid.size.contains(at), reaches[image.labels[i]]);
  }
  return reaches;
}

bool isInSphere(const formats::Point& centreMm, double radiusMm, const Grid& grid, const Voxel& voxel) {
  const auto mm = grid.toMm(voxel);
  double squares = 0;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    squares += (mm[axis] - centreMm[axis]) * (mm[axis] - centreMm[axis]);
  }
  return squares <= radiusMm * radiusMm;
}

std::vector<std::size_t> voxelsInSphere(const formats::Point& centreMm, double radiusMm, const Grid& grid) {
  std::vector<std::size_t> voxels;
  forEachVoxel(boxInGrid(centreMm, radiusMm, grid), [&](const Voxel& voxel) {
    if (isInSphere(centreMm, radiusMm, grid, voxel)) voxels.push_back(grid.size.index(voxel));
  });
  return voxels;
}

Reach reachOfSphere(const formats::Point& centreMm, double radiusMm, const Grid& grid) {
  Reach reach;
  if (formats::determinant(grid.affine) == 0) return reach;
  const Box box = boxAround(centreMm, radiusMm, grid);
  if (!box.isSensible) return reach;
  forEachVoxel(box, [&](const Voxel& voxel) {
    if (isInSphere(centreMm, radiusMm, grid, voxel)) count(grid.size.contains(voxel), reach);
  });
  return reach;
}

}  // namespace study
