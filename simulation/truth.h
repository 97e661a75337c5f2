// truth.json: what was planted, beside the data it was planted in.
#ifndef TAVMAP_SIMULATION_TRUTH_H
#define TAVMAP_SIMULATION_TRUTH_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "simulation/influence_model.h"

namespace simulation {

struct TruthRegion {
  std::int32_t label = 0;  // in the label image
  RegionModel model;
  std::size_t voxels = 0;
  Measures expected;  // for one voxel and endless data; 0 for the reference itself
};

struct Truth {
  std::uint64_t seed = 0;
  double strength = 1;
  std::vector<TruthRegion> regions;  // the reference first
};

[[nodiscard]] Truth truthOf(const InfluenceModel& model, const std::vector<std::size_t>& regionVoxels,
                            std::uint64_t seed, double strength);

void writeTruth(const std::string& path, const Truth& truth);

// Throws FileError for a file that is no such truth, naming the place in it.
[[nodiscard]] Truth readTruth(const std::string& path);
[[nodiscard]] Truth parseTruth(const std::string& text, const std::string& path);

}  // namespace simulation

#endif
