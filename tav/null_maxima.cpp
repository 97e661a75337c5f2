#include "tav/null_maxima.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tav {

NullMaxima::NullMaxima(std::size_t draws, float level)
    : level_(level), magnitudes_(draws, 0.0F), masses_(draws, 0.0), points_(draws) {}

void NullMaxima::take(std::size_t draw, std::span<const std::uint32_t> voxels, const float* values) {
  float largest = magnitudes_[draw];
  for (std::size_t i = 0; i < voxels.size(); ++i) {
    const float magnitude = std::abs(values[i]);
    if (!(magnitude <= std::numeric_limits<float>::max())) continue;
    largest = std::max(largest, magnitude);
    if (magnitude >= level_ && magnitude > 0) points_[draw].push_back({voxels[i], values[i]});
  }
  magnitudes_[draw] = largest;
}

void NullMaxima::findClusters(ClusterFinder& finder) {
  for (std::size_t draw = 0; draw < points_.size(); ++draw) {
    masses_[draw] = finder.largestMass(points_[draw], level_);
    points_[draw] = {};
  }
  std::sort(magnitudes_.begin(), magnitudes_.end());
  std::sort(masses_.begin(), masses_.end());
}

template <class T>
double correctedP(const std::vector<T>& ascending, T value) {
  const auto reached = ascending.end() - std::lower_bound(ascending.begin(), ascending.end(), value);
  return static_cast<double>(1 + reached) / static_cast<double>(1 + ascending.size());
}

template double correctedP<float>(const std::vector<float>&, float);
template double correctedP<double>(const std::vector<double>&, double);

float familyWiseThreshold(const std::vector<float>& ascending, double alpha) {
  const double draws = static_cast<double>(ascending.size());
  // At most this many draws may reach the threshold.
  const double allowed = std::floor(alpha * (draws + 1) * (1 + 1e-12)) - 1;
  if (allowed < 0) return std::numeric_limits<float>::infinity();
  if (allowed >= draws) return 0;
  const auto above = ascending.size() - 1 - static_cast<std::size_t>(allowed);
  return std::nextafter(ascending[above], std::numeric_limits<float>::infinity());
}

}  // namespace tav
