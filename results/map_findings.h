// What a computed map shows: why each voxel has its value, where the map peaks, how many voxels pass.
// Maps and codes in the order of the image, index (k * ny + j) * nx + i.
#ifndef TAVMAP_RESULTS_MAP_FINDINGS_H
#define TAVMAP_RESULTS_MAP_FINDINGS_H

#include <cstdint>
#include <vector>

#include "formats/image.h"
#include "results/results.h"
#include "tav/run_observer.h"

namespace study {

// The engine's verdict on a voxel, told apart by the mask and the reference region.
[[nodiscard]] StatusCode statusOf(tav::VoxelStatus status, bool inMask, bool inReference);

// Whether a voxel is not zero, reaches the threshold and is not the reference's own. code: its StatusCode.
[[nodiscard]] bool isFinding(float value, float threshold, std::uint8_t code);
// How many voxels are. codes: StatusCode per voxel.
[[nodiscard]] std::size_t passingOutside(const float* values, float threshold,
                                         const std::vector<std::uint8_t>& codes);

// One entry per threshold of the map; qValues: the q of each. An infinite threshold is left unset.
[[nodiscard]] std::vector<ThresholdResult> thresholdsOf(const tav::MapOutcome& map,
                                                        const std::vector<double>& qValues,
                                                        const std::vector<std::uint8_t>& codes);

// Index of the largest magnitude among computed voxels outside the reference, the first of equals; 0
// when there is none. A voxel of the reference against its own mean is a degenerate case, not a finding.
[[nodiscard]] std::size_t peakOf(const float* values, const std::vector<std::uint8_t>& codes);

// The map where `levels`, one per voxel, are above 0; 0 elsewhere.
[[nodiscard]] std::vector<float> thresholdedMap(const float* values, const std::vector<std::uint8_t>& levels);

// -log10 of the p of each computed voxel outside the reference (0 for a value that is 0, which nothing
// falls short of); NaN elsewhere.
[[nodiscard]] std::vector<float> minusLogP(const tav::MapOutcome& map,
                                           const std::vector<std::uint8_t>& codes);
// z of each computed voxel outside the reference against its own null values; NaN elsewhere.
[[nodiscard]] std::vector<float> zImage(const tav::MapOutcome& map, const std::vector<std::uint8_t>& codes);

// Header of a map, and of the status map (labels of 8 bits), on the grid of a run's image: nothing of
// the run's intensities or times.
formats::ImageHeader mapHeader(formats::ImageHeader run);
formats::ImageHeader statusHeader(formats::ImageHeader run);

// The double with the digits of the float: 0.1F as 0.1, not as 0.10000000149.
[[nodiscard]] double withDigitsOf(float value);

}  // namespace study

#endif
