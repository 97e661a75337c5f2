// Made data of a group, for tests.
#ifndef TAVMAP_TESTS_INFERENCE_MADE_DATA_H
#define TAVMAP_TESTS_INFERENCE_MADE_DATA_H

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "inference/model.h"
#include "inference/space.h"
#include "inference/test_options.h"

namespace made {

inline constexpr float kNothing = std::numeric_limits<float>::quiet_NaN();

struct Data {
  std::size_t rows, places;
  std::vector<float> at;

  [[nodiscard]] inference::Values values() const { return {rows, places, at.data()}; }
  float& of(std::size_t row, std::size_t place) { return at[row * places + place]; }
  [[nodiscard]] double value(std::size_t row, std::size_t place) const {
    return static_cast<double>(at[row * places + place]);
  }
};

inline Data noise(std::size_t rows, std::size_t places, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<float> normal;
  Data data{rows, places, std::vector<float>(rows * places)};
  for (float& value : data.at) value = normal(random);
  return data;
}

inline inference::Model oneSample(std::size_t rows) {
  return {{"mean"}, std::vector<double>(rows, 1.0), {1.0}};
}

// The first half of the rows less the second.
inline inference::Model twoSamples(std::size_t rows) {
  inference::Model model{{"first", "second"}, {}, {1, -1}};
  for (std::size_t row = 0; row < rows; ++row) {
    model.design.push_back(row < rows / 2 ? 1 : 0);
    model.design.push_back(row < rows / 2 ? 0 : 1);
  }
  return model;
}

// All voxels of a cube.
inline inference::Space cube(int edge, int connectivity = 6) {
  const io::GridSize grid{edge, edge, edge};
  std::vector<std::size_t> voxels(grid.voxels());
  for (std::size_t i = 0; i < voxels.size(); ++i) voxels[i] = i;
  return inference::spaceOfVoxels(grid, voxels, connectivity);
}

// The largest t alone, counted.
inline inference::TestOptions plain(int shuffles) {
  inference::TestOptions options;
  options.shuffles = shuffles;
  options.enhance = false;
  options.clusterFormingZ = 0;
  options.tail = inference::Tail::kCounted;
  return options;
}

inline inference::TestOptions permuted(int shuffles) {
  inference::TestOptions options = plain(shuffles);
  options.exchange = inference::Exchange::kPermutations;
  return options;
}

}  // namespace made

#endif
