#include "suitability/courses.h"

#include <algorithm>
#include <cmath>

namespace suitability {
namespace {

// Empty when the values do not vary or are not finite.
Series withoutMean(std::span<const float> values) {
  Series series(values.begin(), values.end());
  double mean = 0;
  for (const double value : series) mean += value / static_cast<double>(series.size());
  double squares = 0;
  for (double& value : series) {
    value -= mean;
    squares += value * value;
  }
  const bool varies = squares > 1e-12 * mean * mean * static_cast<double>(series.size());
  if (!varies || !std::isfinite(squares)) series.clear();
  return series;
}

}  // namespace

Interval longestOf(const std::vector<Interval>& intervals) {
  Interval longest{0, 0};
  for (const Interval& interval : intervals)
    if (interval.length > longest.length) longest = interval;
  return longest;
}

bool Courses::isUsed(int volume) const {
  return std::any_of(intervals.begin(), intervals.end(),
                     [&](const Interval& interval) { return interval.contains(volume); });
}

bool Courses::areMany(std::size_t count, double share) const {
  return count > 0 && static_cast<double>(count) >= share * static_cast<double>(voxels.size());
}

std::optional<Courses> makeCourses(std::span<const float> reference,
                                   const std::vector<std::span<const float>>& voxels,
                                   const std::vector<Interval>& intervals, double trSeconds) {
  Courses courses{withoutMean(reference), {}, intervals, trSeconds};
  for (const std::span<const float>& voxel : voxels) {
    if (voxel.size() != reference.size()) continue;
    Series series = withoutMean(voxel);
    if (!series.empty()) courses.voxels.push_back(std::move(series));
  }
  if (courses.reference.empty() || courses.voxels.empty() || !(trSeconds > 0)) return std::nullopt;
  return courses;
}

}  // namespace suitability
