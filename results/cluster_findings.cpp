#include "results/cluster_findings.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "results/local_peaks.h"
#include "results/map_findings.h"

namespace study {
namespace {

std::vector<tav::MapPoint> findings(const PlacedMap& map, float threshold) {
  std::vector<tav::MapPoint> points;
  for (std::size_t i = 0; i < map.codes.size(); ++i) {
    if (isFinding(map.values[i], threshold, map.codes[i]))
      points.push_back({static_cast<std::uint32_t>(i), map.values[i]});
  }
  return points;
}

PlacedPeak placed(const tav::MapPoint& point, const PlacedMap& map) {
  const auto voxel = map.grid.size.voxelAt(point.voxel);
  return {point.value, voxel, map.grid.toMm(voxel),
          map.names == nullptr ? "" : map.names->nameAt(point.voxel)};
}

std::array<double, 3> centreOf(const tav::Cluster& cluster, const Grid& grid) {
  std::array<double, 3> sum{};
  double weights = 0;
  for (const tav::MapPoint& point : cluster.points) {
    const auto mm = grid.toMm(grid.size.voxelAt(point.voxel));
    const double weight = std::abs(static_cast<double>(point.value));
    for (std::size_t axis = 0; axis < 3; ++axis) sum[axis] += weight * mm[axis];
    weights += weight;
  }
  for (double& axis : sum) axis /= weights;
  return sum;
}

std::vector<LabelShare> sharesOf(const tav::Cluster& cluster, const PlaceNames& names) {
  std::map<std::int32_t, std::size_t> counts;
  for (const tav::MapPoint& point : cluster.points) ++counts[names.labelAt(point.voxel)];
  std::vector<LabelShare> shares;
  for (const auto& [label, count] : counts)
    shares.push_back(
        {names.nameOf(label), static_cast<double>(count) / static_cast<double>(cluster.points.size())});
  std::stable_sort(shares.begin(), shares.end(),
                   [](const LabelShare& a, const LabelShare& b) { return a.share > b.share; });
  return shares;
}

PlacedCluster placed(const tav::Cluster& cluster, const PlacedMap& map) {
  PlacedCluster found;
  found.voxels = cluster.points.size();
  found.volumeMm3 = static_cast<double>(found.voxels) * std::abs(formats::determinant(map.grid.affine));
  for (const tav::MapPoint& peak : peaksOf(cluster, map.grid)) found.peaks.push_back(placed(peak, map));
  found.centreMm = centreOf(cluster, map.grid);
  if (map.names != nullptr) found.labels = sharesOf(cluster, *map.names);
  return found;
}

bool isBefore(const PlacedCluster& a, const PlacedCluster& b, const io::GridSize& size) {
  if (a.voxels != b.voxels) return a.voxels > b.voxels;
  const auto point = [&](const PlacedPeak& peak) {
    return tav::MapPoint{static_cast<std::uint32_t>(size.index(peak.voxel)), peak.value};
  };
  return isHigher(point(a.peaks[0]), point(b.peaks[0]));
}

}  // namespace

std::vector<PlacedCluster> placedClusters(const PlacedMap& map, float threshold, tav::ClusterFinder& finder) {
  std::vector<PlacedCluster> clusters;
  for (const tav::Cluster& cluster : finder.find(findings(map, threshold), threshold))
    clusters.push_back(placed(cluster, map));
  std::sort(clusters.begin(), clusters.end(),
            [&](const PlacedCluster& a, const PlacedCluster& b) { return isBefore(a, b, map.grid.size); });
  return clusters;
}

std::vector<std::uint8_t> passedLevels(const PlacedMap& map, const std::vector<ThresholdResult>& thresholds) {
  std::vector<std::uint8_t> levels(map.codes.size(), 0);
  for (std::size_t i = 0; i < thresholds.size(); ++i) {
    const std::optional<float> threshold = usedThreshold(thresholds[thresholds.size() - 1 - i]);
    if (!threshold) continue;
    for (std::size_t voxel = 0; voxel < levels.size(); ++voxel) {
      if (isFinding(map.values[voxel], *threshold, map.codes[voxel]))
        levels[voxel] = static_cast<std::uint8_t>(std::min<std::size_t>(i + 1, 255));
    }
  }
  return levels;
}

std::optional<float> usedThreshold(const ThresholdResult& result) {
  if (result.voxelsPassing == 0 || !result.threshold) return std::nullopt;
  return static_cast<float>(*result.threshold);
}

}  // namespace study
