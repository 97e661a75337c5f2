// The map of what reversed time does to the difference of the two directions, of every voxel.
#ifndef TAVMAP_STUDY_REVERSED_MAP_H
#define TAVMAP_STUDY_REVERSED_MAP_H

#include <cstdint>
#include <vector>

#include "study/condition_runs.h"

namespace study {

// D (direction/reversed_difference.h) times `scale` of each computed voxel outside the reference; NaN
// elsewhere and where a model is degenerate. codes: StatusCode per voxel of the grid. Reads one voxel at a
// time, about 6 us each for 300 volumes and order 1. Throws formats::FileError.
[[nodiscard]] std::vector<float> reversedMap(std::vector<ConditionRun>& runs, int order, double scale,
                                             const std::vector<std::uint8_t>& codes);

}  // namespace study

#endif
