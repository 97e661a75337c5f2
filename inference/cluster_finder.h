// Places that touch and are beyond a height.
#ifndef TAVMAP_INFERENCE_CLUSTER_FINDER_H
#define TAVMAP_INFERENCE_CLUSTER_FINDER_H

#include <cstdint>
#include <span>
#include <vector>

#include "inference/space.h"
#include "inference/test_result.h"

namespace inference {

// Clusters of each side: places with sign * z at or above the forming height, and what touches them and is so
// too. One thread at a time; keeps its memory and a reference to the space.
class ClusterFinder {
 public:
  ClusterFinder(const Space& space, double formingZ);

  // By descending mass; their p is not set. Negative ones only if isTwoSided.
  [[nodiscard]] std::vector<Cluster> find(std::span<const float> z, bool isTwoSided);
  // 0 when there is none.
  [[nodiscard]] float largestMass(std::span<const float> z, bool isTwoSided);

 private:
  void findSide(std::span<const float> z, int sign);
  void fill(std::int32_t seed, std::span<const float> z, int sign);
  void visit(std::int32_t place, std::span<const float> z, int sign);
  void visitHubs(std::int32_t place, std::span<const float> z, int sign);

  const Space& space_;
  float formingZ_;
  std::vector<std::int32_t> found_, begins_;  // places of one cluster after the other
  std::vector<char> isTaken_, isHubDone_;
  std::vector<std::vector<std::int32_t>> placesOfHub_;
};

}  // namespace inference

#endif
