// Family-wise error: whole maps of surrogates, each against the brain at once.
#ifndef TAVMAP_TAV_FAMILY_WISE_H
#define TAVMAP_TAV_FAMILY_WISE_H

#include <functional>
#include <map>
#include <ostream>
#include <vector>

#include "tav/map_values.h"
#include "tav/null_maxima.h"
#include "tav/raw_result.h"
#include "tav/run_observer.h"
#include "tav/tav_pars.h"
#include "tav/voxel_loop.h"
#include "tav/voxel_path.h"

namespace tav {

// The share of null values at or above the level from which clusters form.
inline constexpr double kClusterFormingP = 0.001;

// The kind whose null maps a map of this kind is held against: its own, but DTAV's for DTAV_IT. That map has
// values where INST is large. A voxel may be related to the reference without delay; no surrogate is, so that
// their own maps are nearly empty and any value of the observed one would stand out.
[[nodiscard]] MapType nullKindOf(MapType type);

// The cluster-forming level of each kind: the magnitude that kClusterFormingP of the non-zero null values
// reach, from a sample of at most some hundred thousand of them.
[[nodiscard]] std::map<MapType, float> clusterFormingLevels(const std::vector<RawValues>& nulls,
                                                            const TAV_Pars& request);

// Computes the maps of surrogates 0 ... draws - 1 (at most those that there are) against all voxels but
// `leftOut`, ascending cells of the grid. condition: one job, in least squares. Returns a Status: 3 when a
// file ends before its last slice. progress: percent of the draws that are done. Memory: 12 bytes per voxel
// of a piece and draw of a chunk, and the points of the clusters. Time: about that of draws / 20 runs with 20
// null draws.
[[nodiscard]] int computeFamilyWise(const ConditionJobs& condition, const TAV_Pars& request, int draws,
                                    const std::map<MapType, float>& levels,
                                    const std::vector<std::size_t>& leftOut, VoxelPath& path,
                                    FamilyWise& familyWise, const std::function<void(int)>& progress,
                                    std::ostream& errors);

}  // namespace tav

#endif
