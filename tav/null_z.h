// How far each voxel's measure exceeds its own null values, on the scale of a standard normal value.
#ifndef TAVMAP_TAV_NULL_Z_H
#define TAVMAP_TAV_NULL_Z_H

#include <optional>
#include <vector>

#include "tav/map_values.h"
#include "tav/run_observer.h"

namespace tav {

// Null measures as a run keeps them: first[m] of the whole grid, then in each piece, for the voxels that were
// not skipped, in the order of the grid, draw after draw.
struct NullDraws {
  const std::vector<RawValues>& pieces;    // of the first draw, then of all further ones
  const std::vector<VoxelStatus>& status;  // of every voxel of the grid
  int drawsPerVoxel = 1;
};

// The measure that is a map of this kind by itself, whose sign says nothing: 0 REF2VOX, 1 VOX2REF, 2 INST.
[[nodiscard]] std::optional<int> measureOf(MapType type);

// For groups: a measure is never negative, so that its mean over participants says nothing; its excess over
// what this very voxel has without a relation does. A voxel's measure is divided by the mean of its own null
// values, which takes out what its autocorrelation and the amount of data do. Its place among the same ratio
// of all null values, each over the mean of the others of its voxel, is a probability of at most this ratio,
// (M - b + 1/2) / (1 + M) with b of M null ratios reaching it (half of those that are 0 for a measure of 0),
// and z its quantile of the normal distribution. Without a relation z is standard normal whatever the
// distribution of the measure, symmetric about 0.
// NaN for what was not computed, for values that are not finite, and where all null values of a voxel, or all
// but one, are 0; empty with fewer than two draws per voxel. Memory: two floats per voxel and one per draw.
[[nodiscard]] std::vector<float> nullZ(int measure, const RawValues& observed, const NullDraws& nulls);

}  // namespace tav

#endif
