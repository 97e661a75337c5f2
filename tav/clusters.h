// Connected places of a map.
#ifndef TAVMAP_TAV_CLUSTERS_H
#define TAVMAP_TAV_CLUSTERS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "io/grid_size.h"

namespace tav {

// One value of a map that reaches a level.
struct MapPoint {
  std::uint32_t voxel;  // position in the grid, x fastest
  float value;
};

// Points of one sign that touch each other, be it at a corner.
struct Cluster {
  std::vector<MapPoint> points;  // ascending by voxel
  double mass = 0;               // sum over the points of what their magnitude exceeds the level by
};

// Finds clusters of 26 neighbours. Memory: 4 bytes per voxel of the grid; the time of a call grows
// with its points alone.
class ClusterFinder {
 public:
  explicit ClusterFinder(const io::GridSize& grid);

  // Points with magnitudes of at least `level`, each voxel at most once; positive and negative ones form
  // clusters of their own. By descending mass, equal ones by their first voxel. Not finite values take
  // no part.
  [[nodiscard]] std::vector<Cluster> find(std::span<const MapPoint> points, float level);
  // The largest mass alone, 0 without points.
  [[nodiscard]] double largestMass(std::span<const MapPoint> points, float level);

 private:
  template <class Use>
  void forEachCluster(std::span<const MapPoint> points, Use use);
  void collect(std::span<const MapPoint> points, std::size_t start, std::vector<std::size_t>& members);

  io::GridSize grid_;
  std::vector<std::int32_t> pointAt_;  // [voxel]: index of the point there, or -1
};

}  // namespace tav

#endif
