// What whole maps of surrogates say about one map: plain values for records, sidecars and summaries.
#ifndef TAVMAP_RESULTS_FAMILY_WISE_RESULT_H
#define TAVMAP_RESULTS_FAMILY_WISE_RESULT_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace study {

inline constexpr double kFamilyWiseAlpha = 0.05;  // reported whatever the q-values are
inline constexpr std::size_t kMostClusters = 50;  // listed of one map

struct ClusterResult {
  double peak = 0;  // largest magnitude with its sign
  std::array<int, 3> peakVoxel{};
  std::array<double, 3> peakMm{};
  std::size_t voxels = 0;
  double mass = 0;  // sum over the voxels of what their magnitude exceeds the cluster-forming level by
  double p = 1;     // family-wise: against the largest cluster of every draw
  bool operator==(const ClusterResult&) const = default;
};

// What passes at a family-wise error rate of at most `alpha` over the voxels of this one map.
struct FamilyWiseLevel {
  double alpha = 0;
  std::optional<double> threshold;  // magnitude of single voxels; unset: there are too few draws for alpha
  std::size_t voxelsPassing = 0;    // one by one
  std::size_t clustersPassing = 0;  // as wholes: of a single voxel of them nothing is said
  std::size_t voxelsInClusters = 0;
  bool operator==(const FamilyWiseLevel&) const = default;
};

struct FamilyWiseResult {
  int draws = 0;  // 0: nothing was computed, and the other members say nothing
  double clusterFormingP = 0, clusterFormingLevel = 0;  // share of null values; magnitude that it reaches
  std::string voxelFile, clusterFile;                   // images of p, relative to the output folder
  std::vector<FamilyWiseLevel> levels;                  // ascending alpha
  std::size_t clusters = 0;
  std::vector<ClusterResult> largest;  // at most kMostClusters, by descending mass
  [[nodiscard]] bool empty() const { return draws == 0; }
  bool operator==(const FamilyWiseResult&) const = default;
};

}  // namespace study

#endif
