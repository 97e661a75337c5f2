// A map held against the maxima of whole maps of surrogates. Maps, codes and p-values in the order of the
// image, index (k * ny + j) * nx + i. Only computed voxels outside the reference take part.
#ifndef TAVMAP_RESULTS_FAMILY_WISE_FINDINGS_H
#define TAVMAP_RESULTS_FAMILY_WISE_FINDINGS_H

#include <cstdint>
#include <vector>

#include "prepare/grid.h"
#include "results/family_wise_result.h"
#include "tav/clusters.h"
#include "tav/null_maxima.h"

namespace study {

// One map and what it is held against. Borrows all of it.
struct JudgedMap {
  const float* values;
  const std::vector<std::uint8_t>& codes;  // StatusCode per voxel
  const tav::NullMaxima& nulls;            // of the same kind of map, in the same units
};

// Family-wise p of each voxel: (1 + draws whose largest magnitude reaches the voxel's) / (1 + draws). NaN
// where there is none to give.
[[nodiscard]] std::vector<float> voxelP(const JudgedMap& map);

// Clusters above the cluster-forming level, by descending mass.
[[nodiscard]] std::vector<tav::Cluster> clustersOf(const JudgedMap& map, const Grid& grid);
// Family-wise p of each voxel's cluster, by its mass; 1 outside any cluster, NaN where voxelP() is.
[[nodiscard]] std::vector<float> clusterP(const JudgedMap& map, const std::vector<tav::Cluster>& clusters);

// Everything but the names of files. qValues: levels beside kFamilyWiseAlpha.
[[nodiscard]] FamilyWiseResult familyWiseResult(const JudgedMap& map,
                                                const std::vector<tav::Cluster>& clusters, const Grid& grid,
                                                const std::vector<double>& qValues);

}  // namespace study

#endif
