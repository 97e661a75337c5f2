// Where the voxels of a map that pass a threshold lie together.
#ifndef TAVMAP_RESULTS_CLUSTER_FINDINGS_H
#define TAVMAP_RESULTS_CLUSTER_FINDINGS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "prepare/grid.h"
#include "prepare/place_names.h"
#include "results/results.h"
#include "tav/clusters.h"

namespace study {

// One map on its grid. Borrows all of it. Values and codes in the order of the image.
struct PlacedMap {
  const float* values;
  const std::vector<std::uint8_t>& codes;  // StatusCode per voxel
  const Grid& grid;
  const PlaceNames* names;  // null: places have none
};

struct PlacedPeak {
  float value = 0;
  std::array<int, 3> voxel{};  // indices from 0
  std::array<double, 3> mm{};
  std::string label;  // empty without names of places
};

struct LabelShare {
  std::string label;
  double share = 0;  // of the cluster's voxels
};

struct PlacedCluster {
  std::size_t voxels = 0;
  double volumeMm3 = 0;
  std::vector<PlacedPeak> peaks;     // descending magnitude; one at least, see local_peaks.h
  std::array<double, 3> centreMm{};  // centre of gravity, voxels weighted by their magnitudes
  std::vector<LabelShare> labels;    // descending shares; empty without names of places
};

// Of the voxels that are findings (map_findings.h) and finite: those of one sign that touch, be it at a
// corner. By descending number of voxels, equal ones by the magnitude of their peak, then by its voxel. The
// finder is of the map's grid.
[[nodiscard]] std::vector<PlacedCluster> placedClusters(const PlacedMap& map, float threshold,
                                                        tav::ClusterFinder& finder);

// Per voxel how strict a level it passes: 0 for none, 1 for the last of the thresholds, one more for each
// before it. thresholds: of the map, ascending q; those without any voxel count without being passed.
[[nodiscard]] std::vector<std::uint8_t> passedLevels(const PlacedMap& map,
                                                     const std::vector<ThresholdResult>& thresholds);

// The threshold as the map's values compare with it; unset when no voxel passes.
[[nodiscard]] std::optional<float> usedThreshold(const ThresholdResult& result);

}  // namespace study

#endif
