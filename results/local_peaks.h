// The places of a cluster at which its map is highest.
#ifndef TAVMAP_RESULTS_LOCAL_PEAKS_H
#define TAVMAP_RESULTS_LOCAL_PEAKS_H

#include <cstddef>
#include <vector>

#include "prepare/grid.h"
#include "tav/clusters.h"

namespace study {

inline constexpr double kPeakDistanceMm = 8;     // between the peaks of a cluster, at least
inline constexpr std::size_t kFurtherPeaks = 3;  // of a cluster beside its largest

// Whether a point comes before another one: by descending magnitude, equal ones by their voxel.
[[nodiscard]] bool isHigher(const tav::MapPoint& a, const tav::MapPoint& b);

// The highest point of a cluster, then up to kFurtherPeaks others, descending, each higher than the up to 26
// points of the cluster that it touches and at least kPeakDistanceMm from all before it. Precondition: the
// cluster has a point.
[[nodiscard]] std::vector<tav::MapPoint> peaksOf(const tav::Cluster& cluster, const Grid& grid);

}  // namespace study

#endif
