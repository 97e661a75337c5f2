// In which unit a run's values are does not matter to its maps, but to the arithmetic: the engine computes in
// single precision, and tells the voxels of a mask from others by a constant that is added to their values.
// Next to it small values would be rounded away. Such runs are imported times a power of two, which rounds
// nothing.
#ifndef TAVMAP_PREPARE_VALUE_SIZE_H
#define TAVMAP_PREPARE_VALUE_SIZE_H

#include <cstddef>
#include <vector>

#include "prepare/run_plan.h"

namespace study {

// Over the first volume that is kept: voxels of the mask, or those above the threshold without a mask, with
// finite values.
struct ValueSize {
  bool isMasked = false;
  std::size_t voxels = 0;
  double least = 0, largest = 0;
  double magnitude = 0;  // mean
  double change = 0;     // to the next volume, mean magnitude
};

// Reads two volumes and the mask. Throws formats::FileError.
[[nodiscard]] ValueSize sizeOfValues(const RunPlan& run, int inclusionThreshold);

// The power of two that all runs of a request are multiplied with; their relative sizes count, so that it is
// one for all. 1 where nothing is gained: unless values change by too little for the constant that their mask
// needs, all of a mask lie above 0 and up to the threshold, or values are beyond 2^24. Otherwise mean
// magnitudes come to 8 to 16 times the threshold. Never more than 1, and no voxel less, without a mask.
[[nodiscard]] double commonScale(const std::vector<ValueSize>& runs, int inclusionThreshold);

// Scales the run and gives its import the name that says so. Power of two: by which all else stays.
void setScale(RunPlan& run, double powerOfTwo);

}  // namespace study

#endif
