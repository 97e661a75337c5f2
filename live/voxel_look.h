// Everything that is known of one voxel and the reference, for panels.
#ifndef TAVMAP_LIVE_VOXEL_LOOK_H
#define TAVMAP_LIVE_VOXEL_LOOK_H

#include <optional>
#include <string>
#include <vector>

#include "live/live_maps.h"
#include "live/loaded_study.h"

namespace live {

// One run of the condition. Series have a value per prepared volume, as the models see them but for the line
// that is taken off each interval.
struct RunLook {
  std::string run;
  double trSeconds = 0;
  std::vector<float> reference, voxel;
  std::vector<std::pair<int, int>> intervals;  // first volume and length, from 0
  int dropped = 0;                             // volumes of the stored image before the first value
};

// Correlation of the reference with the voxel `lag` volumes later, over all intervals.
struct LaggedCorrelation {
  int lag;
  double r;
};

// Least squares of one series on the past of both, pooled over intervals: coefficients by lag, from 1.
struct FittedModel {
  std::vector<double> onReference, onVoxel;
  double errorVariance = 0;  // sum of squares per sample
};

struct VoxelLook {
  std::vector<RunLook> runs;
  std::vector<LaggedCorrelation> lagged;  // of -kMostLags ... kMostLags volumes
  int samples = 0;
  // Alone: on a series' own past. Nothing where a model is degenerate.
  std::optional<FittedModel> referenceAlone, voxelAlone, reference, voxel;
};
inline constexpr int kMostLags = 8;

// cell: of the grid. Throws study::InputError as planFor(), and std::out_of_range when the maps have no
// course of a run.
[[nodiscard]] VoxelLook lookAt(const LoadedStudy& study, const LiveMaps& maps, std::size_t cell);

}  // namespace live

#endif
