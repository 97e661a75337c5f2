#include "tav/clusters.h"

#include <algorithm>
#include <cmath>

namespace tav {
namespace {

constexpr std::int32_t kNone = -1;

double excess(const MapPoint& point, float level) {
  return std::abs(static_cast<double>(point.value)) - static_cast<double>(level);
}

}  // namespace

ClusterFinder::ClusterFinder(const io::GridSize& grid) : grid_(grid), pointAt_(grid.voxels(), kNone) {}

// Calls use(members), indices of the points of one cluster. A point that is taken leaves the grid.
template <class Use>
void ClusterFinder::forEachCluster(std::span<const MapPoint> points, Use use) {
  for (std::size_t i = 0; i < points.size(); ++i)
    if (std::isfinite(points[i].value)) pointAt_[points[i].voxel] = static_cast<std::int32_t>(i);
  std::vector<std::size_t> members;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (pointAt_[points[i].voxel] != static_cast<std::int32_t>(i)) continue;
    collect(points, i, members);
    use(members);
  }
}

void ClusterFinder::collect(std::span<const MapPoint> points, std::size_t start,
                            std::vector<std::size_t>& members) {
  members.assign(1, start);
  pointAt_[points[start].voxel] = kNone;
  const bool negative = std::signbit(points[start].value);
  for (std::size_t next = 0; next < members.size(); ++next) {
    const auto [x, y, z] = grid_.voxelAt(points[members[next]].voxel);
    for (int k = std::max(z - 1, 0); k <= std::min(z + 1, grid_.z - 1); ++k) {
      for (int j = std::max(y - 1, 0); j <= std::min(y + 1, grid_.y - 1); ++j) {
        for (int i = std::max(x - 1, 0); i <= std::min(x + 1, grid_.x - 1); ++i) {
          std::int32_t& at = pointAt_[grid_.index(i, j, k)];
          if (at == kNone || std::signbit(points[static_cast<std::size_t>(at)].value) != negative) continue;
          members.push_back(static_cast<std::size_t>(at));
          at = kNone;
        }
      }
    }
  }
}

std::vector<Cluster> ClusterFinder::find(std::span<const MapPoint> points, float level) {
  std::vector<Cluster> clusters;
  forEachCluster(points, [&](const std::vector<std::size_t>& members) {
    Cluster& cluster = clusters.emplace_back();
    for (const std::size_t i : members) {
      cluster.points.push_back(points[i]);
      cluster.mass += excess(points[i], level);
    }
    std::sort(cluster.points.begin(), cluster.points.end(),
              [](const MapPoint& a, const MapPoint& b) { return a.voxel < b.voxel; });
  });
  std::stable_sort(clusters.begin(), clusters.end(), [](const Cluster& a, const Cluster& b) {
    return a.mass != b.mass ? a.mass > b.mass : a.points[0].voxel < b.points[0].voxel;
  });
  return clusters;
}

double ClusterFinder::largestMass(std::span<const MapPoint> points, float level) {
  double largest = 0;
  forEachCluster(points, [&](const std::vector<std::size_t>& members) {
    double mass = 0;
    for (const std::size_t i : members) mass += excess(points[i], level);
    largest = std::max(largest, mass);
  });
  return largest;
}

}  // namespace tav
