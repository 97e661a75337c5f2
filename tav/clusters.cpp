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

ClusterFinder::ClusterFinder(int nx, int ny, int nz)
    : nx_(nx),
      ny_(ny),
      nz_(nz),
      pointAt_(static_cast<std::size_t>(nx) * static_cast<std::size_t>(ny) * static_cast<std::size_t>(nz),
               kNone) {}

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
    const auto voxel = static_cast<int>(points[members[next]].voxel);
    const int x = voxel % nx_, y = voxel / nx_ % ny_, z = voxel / nx_ / ny_;
    for (int k = std::max(z - 1, 0); k <= std::min(z + 1, nz_ - 1); ++k) {
      for (int j = std::max(y - 1, 0); j <= std::min(y + 1, ny_ - 1); ++j) {
        for (int i = std::max(x - 1, 0); i <= std::min(x + 1, nx_ - 1); ++i) {
          std::int32_t& at = pointAt_[static_cast<std::size_t>((k * ny_ + j) * nx_ + i)];
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
