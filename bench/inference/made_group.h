// Maps of a made group, as large as a brain in voxels of 2 mm.
#ifndef TAVMAP_BENCH_INFERENCE_MADE_GROUP_H
#define TAVMAP_BENCH_INFERENCE_MADE_GROUP_H

#include <cstddef>
#include <vector>

#include "io/grid_size.h"

namespace bench {

struct MadeGroup {
  io::GridSize grid;
  std::vector<std::size_t> voxels;  // of an ellipsoid
  std::vector<float> maps;          // [row][voxel]: smooth noise, and an effect in a ball
  std::size_t rows = 0;
};

[[nodiscard]] MadeGroup makeGroup(std::size_t rows, unsigned seed);

}  // namespace bench

#endif
