#include "inference/cluster_finder.h"

#include <algorithm>

namespace inference {

namespace {

double massOf(std::span<const std::int32_t> places, std::span<const float> z, int sign, float formingZ) {
  double mass = 0;
  for (const std::int32_t place : places)
    mass += static_cast<double>(static_cast<float>(sign) * z[static_cast<std::size_t>(place)] - formingZ);
  return mass;
}

Cluster clusterOf(std::span<const std::int32_t> places, std::span<const float> z, int sign, float formingZ) {
  Cluster cluster{
      .places = {places.begin(), places.end()}, .mass = massOf(places, z, sign, formingZ), .sign = sign};
  std::sort(cluster.places.begin(), cluster.places.end());
  const auto peak = std::max_element(cluster.places.begin(), cluster.places.end(), [&](auto a, auto b) {
    return static_cast<float>(sign) * z[static_cast<std::size_t>(a)] <
           static_cast<float>(sign) * z[static_cast<std::size_t>(b)];
  });
  cluster.peak = static_cast<std::size_t>(*peak);
  return cluster;
}

}  // namespace

ClusterFinder::ClusterFinder(const Space& space, double formingZ)
    : space_(space),
      formingZ_(static_cast<float>(formingZ)),
      isTaken_(space.places + 1, 0),
      isHubDone_(space.nrOfHubs + 1, 0),
      placesOfHub_(space.nrOfHubs + 1) {
  for (std::size_t i = 0; i < space.hubs.size(); ++i)
    placesOfHub_[static_cast<std::size_t>(space.hubs[i])].push_back(
        static_cast<std::int32_t>(i / space.hubWidth));
  placesOfHub_.back().clear();  // of empty slots
}

void ClusterFinder::visit(std::int32_t place, std::span<const float> z, int sign) {
  const auto at = static_cast<std::size_t>(place);
  if (at >= z.size() || isTaken_[at] || !(static_cast<float>(sign) * z[at] >= formingZ_)) return;
  isTaken_[at] = 1;
  found_.push_back(place);
}

void ClusterFinder::visitHubs(std::int32_t place, std::span<const float> z, int sign) {
  for (std::size_t k = 0; k < space_.hubWidth; ++k) {
    const auto hub =
        static_cast<std::size_t>(space_.hubs[static_cast<std::size_t>(place) * space_.hubWidth + k]);
    if (isHubDone_[hub]) continue;
    isHubDone_[hub] = 1;
    for (const std::int32_t other : placesOfHub_[hub]) visit(other, z, sign);
  }
}

// Breadth first: found_ is the queue.
void ClusterFinder::fill(std::int32_t seed, std::span<const float> z, int sign) {
  std::size_t next = found_.size();
  visit(seed, z, sign);
  if (found_.size() == next) return;
  begins_.push_back(static_cast<std::int32_t>(next));
  for (; next < found_.size(); ++next) {
    const std::int32_t place = found_[next];
    const std::size_t row = static_cast<std::size_t>(place) * space_.width;
    for (std::size_t k = 0; k < space_.width; ++k) visit(space_.neighbours[row + k], z, sign);
    visitHubs(place, z, sign);
  }
}

void ClusterFinder::findSide(std::span<const float> z, int sign) {
  found_.clear();
  begins_.clear();
  std::fill(isHubDone_.begin(), isHubDone_.end(), 0);
  const auto side = static_cast<float>(sign);
  for (std::size_t place = 0; place < z.size(); ++place)
    if (side * z[place] >= formingZ_) fill(static_cast<std::int32_t>(place), z, sign);
  begins_.push_back(static_cast<std::int32_t>(found_.size()));
  for (const std::int32_t place : found_) isTaken_[static_cast<std::size_t>(place)] = 0;
}

std::vector<Cluster> ClusterFinder::find(std::span<const float> z, bool isTwoSided) {
  std::vector<Cluster> clusters;
  for (int sign = 1; sign >= (isTwoSided ? -1 : 1); sign -= 2) {
    findSide(z, sign);
    for (std::size_t i = 0; i + 1 < begins_.size(); ++i)
      clusters.push_back(
          clusterOf({found_.begin() + begins_[i], found_.begin() + begins_[i + 1]}, z, sign, formingZ_));
  }
  std::stable_sort(clusters.begin(), clusters.end(),
                   [](const auto& a, const auto& b) { return a.mass > b.mass; });
  return clusters;
}

float ClusterFinder::largestMass(std::span<const float> z, bool isTwoSided) {
  double most = 0;
  for (int sign = 1; sign >= (isTwoSided ? -1 : 1); sign -= 2) {
    findSide(z, sign);
    for (std::size_t i = 0; i + 1 < begins_.size(); ++i)
      most = std::max(
          most, massOf({found_.begin() + begins_[i], found_.begin() + begins_[i + 1]}, z, sign, formingZ_));
  }
  return static_cast<float>(most);
}

}  // namespace inference
