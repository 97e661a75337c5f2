#include "results/family_wise_findings.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "results/map_findings.h"
#include "tav/family_wise.h"

namespace study {
namespace {

bool takesPart(const JudgedMap& map, std::size_t voxel) {
  return map.codes[voxel] == static_cast<std::uint8_t>(StatusCode::kComputed);
}

// A p-value per voxel that takes part: value(voxel).
template <typename Value>
std::vector<float> pImage(const JudgedMap& map, Value value) {
  std::vector<float> image(map.codes.size(), std::numeric_limits<float>::quiet_NaN());
  for (std::size_t i = 0; i < image.size(); ++i) {
    if (takesPart(map, i)) image[i] = static_cast<float>(value(i));
  }
  return image;
}

double pOf(const tav::Cluster& cluster, const JudgedMap& map) {
  return tav::correctedP(map.nulls.masses(), cluster.mass);
}

const tav::MapPoint& peakOf(const tav::Cluster& cluster) {
  return *std::max_element(
      cluster.points.begin(), cluster.points.end(),
      [](const tav::MapPoint& a, const tav::MapPoint& b) { return std::abs(a.value) < std::abs(b.value); });
}

ClusterResult clusterResult(const tav::Cluster& cluster, const JudgedMap& map, const Grid& grid) {
  const tav::MapPoint& peak = peakOf(cluster);
  const auto voxel = grid.size.voxelAt(peak.voxel);
  return {withDigitsOf(peak.value), voxel,        grid.toMm(voxel),
          cluster.points.size(),    cluster.mass, pOf(cluster, map)};
}

std::size_t voxelsReaching(const JudgedMap& map, float threshold) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < map.codes.size(); ++i) {
    if (takesPart(map, i) && std::abs(map.values[i]) >= threshold) ++count;
  }
  return count;
}

FamilyWiseLevel levelOf(double alpha, const JudgedMap& map, const std::vector<tav::Cluster>& clusters) {
  const float threshold = tav::familyWiseThreshold(map.nulls.magnitudes(), alpha);
  FamilyWiseLevel level;
  level.alpha = alpha;
  if (std::isfinite(threshold)) {
    level.threshold = withDigitsOf(threshold);
    level.voxelsPassing = voxelsReaching(map, threshold);
  }
  for (const tav::Cluster& cluster : clusters) {
    if (pOf(cluster, map) > alpha * (1 + 1e-12)) continue;  // as the threshold's bound is met
    ++level.clustersPassing;
    level.voxelsInClusters += cluster.points.size();
  }
  return level;
}

}  // namespace

std::vector<float> voxelP(const JudgedMap& map) {
  return pImage(
      map, [&](std::size_t i) { return tav::correctedP(map.nulls.magnitudes(), std::abs(map.values[i])); });
}

std::vector<tav::Cluster> clustersOf(const JudgedMap& map, const Grid& grid) {
  const float level = map.nulls.level();
  std::vector<tav::MapPoint> points;
  for (std::size_t i = 0; i < map.codes.size(); ++i) {
    const float value = map.values[i];
    if (takesPart(map, i) && value != 0 && std::abs(value) >= level)
      points.push_back({static_cast<std::uint32_t>(i), value});
  }
  return tav::ClusterFinder(grid.size).find(points, level);
}

std::vector<float> clusterP(const JudgedMap& map, const std::vector<tav::Cluster>& clusters) {
  std::vector<float> image = pImage(map, [](std::size_t) { return 1.0; });
  for (const tav::Cluster& cluster : clusters) {
    const auto p = static_cast<float>(pOf(cluster, map));
    for (const tav::MapPoint& point : cluster.points) image[point.voxel] = p;
  }
  return image;
}

FamilyWiseResult familyWiseResult(const JudgedMap& map, const std::vector<tav::Cluster>& clusters,
                                  const Grid& grid, const std::vector<double>& qValues) {
  FamilyWiseResult result;
  result.draws = static_cast<int>(map.nulls.magnitudes().size());
  result.clusterFormingP = tav::kClusterFormingP;
  result.clusterFormingLevel = withDigitsOf(map.nulls.level());
  std::set<double> alphas(qValues.begin(), qValues.end());
  alphas.insert(kFamilyWiseAlpha);
  for (const double alpha : alphas) result.levels.push_back(levelOf(alpha, map, clusters));
  result.clusters = clusters.size();
  for (std::size_t i = 0; i < std::min(clusters.size(), kMostClusters); ++i)
    result.largest.push_back(clusterResult(clusters[i], map, grid));
  return result;
}

}  // namespace study
