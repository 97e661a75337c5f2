// How often values of a map, and of its surrogates, are how large.
#ifndef TAVMAP_RESULTS_MAP_HISTOGRAM_H
#define TAVMAP_RESULTS_MAP_HISTOGRAM_H

#include <cstdint>
#include <vector>

#include "results/evidence.h"
#include "tav/map_source.h"

namespace study {

inline constexpr std::size_t kHistogramBins = 64;

// Of the computed voxels outside the reference, and of the null values but zeros, which stand for what could
// not be computed. From the smallest to the largest of all finite observed values and of the central 99.9 %
// of the finite null ones (some more where values are alike to 8 bits). codes: StatusCode per voxel. Cost:
// two passes over the null values.
[[nodiscard]] MapHistogram mapHistogram(const float* values, const std::vector<std::uint8_t>& codes,
                                        const tav::MapSource& null);

}  // namespace study

#endif
