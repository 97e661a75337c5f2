// Made groups of maps.
#ifndef TAVMAP_TESTS_CALIBRATION_GROUP_DATA_H
#define TAVMAP_TESTS_CALIBRATION_GROUP_DATA_H

#include <cstddef>
#include <vector>

#include "inference/model.h"
#include "inference/space.h"
#include "tests/calibration/calibrated_groups.h"

namespace calibration {

inline constexpr int kGroupEdge = 20;  // voxels along each axis
inline constexpr std::size_t kGroupVoxels = std::size_t{kGroupEdge} * kGroupEdge * kGroupEdge;

struct MadeMaps {
  inference::Model model;
  std::vector<int> blocks;  // empty: none
  std::vector<float> maps;  // [row][voxel]

  [[nodiscard]] inference::Values values() const { return {model.rows(), kGroupVoxels, maps.data()}; }
};

// No effect is in them. The same for the same cell and seed.
[[nodiscard]] MadeMaps makeNullMaps(const GroupCell& cell, unsigned seed);

// Where effects are planted: a ball of 3 and one of 5 voxels' radius; the smaller one is stronger.
[[nodiscard]] const std::vector<float>& plantedEffect();  // per voxel, in deviations of the noise; else 0

[[nodiscard]] const inference::Space& groupSpace();

}  // namespace calibration

#endif
