// Some voxels of a map, where all would take too long to look at.
#ifndef TAVMAP_STUDY_VOXEL_SAMPLE_H
#define TAVMAP_STUDY_VOXEL_SAMPLE_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "results/results.h"

namespace study {

// Indices of at most 50 voxels whose code is one of the wanted, spread evenly over them, ascending. codes: a
// StatusCode per voxel.
[[nodiscard]] std::vector<std::size_t> sampleOf(const std::vector<std::uint8_t>& codes,
                                                std::initializer_list<StatusCode> wanted);

}  // namespace study

#endif
