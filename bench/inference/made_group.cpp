#include "bench/inference/made_group.h"

#include <cmath>
#include <random>

namespace bench {

namespace {

constexpr io::GridSize kGrid{91, 109, 91};
constexpr int kSmoothings = 4;  // of weights 1/4 1/2 1/4 along each axis: about 8 mm

double squaredDistance(const std::array<int, 3>& voxel, const std::array<double, 3>& centre,
                       const std::array<double, 3>& radii) {
  double sum = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const double part = (voxel[i] - centre[i]) / radii[i];
    sum += part * part;
  }
  return sum;
}

void smooth(std::vector<float>& image) {
  for (const std::size_t step : {std::size_t{1}, static_cast<std::size_t>(kGrid.x), kGrid.slice()})
    for (int i = 0; i < kSmoothings; ++i) {
      const std::vector<float> before = image;
      for (std::size_t at = step; at + step < image.size(); ++at)
        image[at] = before[at] / 2 + (before[at - step] + before[at + step]) / 4;
    }
}

}  // namespace

MadeGroup makeGroup(std::size_t rows, unsigned seed) {
  MadeGroup group{kGrid, {}, {}, rows};
  for (std::size_t i = 0; i < kGrid.voxels(); ++i)
    if (squaredDistance(kGrid.voxelAt(i), {45, 54, 45}, {34.5, 44, 36.2}) <= 1) group.voxels.push_back(i);
  std::mt19937 random(seed);
  std::normal_distribution<float> normal;
  std::vector<float> image(kGrid.voxels());
  for (std::size_t row = 0; row < rows; ++row) {
    for (float& value : image) value = normal(random);
    smooth(image);
    for (const std::size_t voxel : group.voxels) {
      const bool isEffect = squaredDistance(kGrid.voxelAt(voxel), {30, 60, 50}, {5, 5, 5}) <= 1;
      group.maps.push_back(image[voxel] + (isEffect ? 0.15F : 0));
    }
  }
  return group;
}

}  // namespace bench
