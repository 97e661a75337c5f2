// The series of one run that the checks look at.
#ifndef TAVMAP_SUITABILITY_COURSES_H
#define TAVMAP_SUITABILITY_COURSES_H

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace suitability {

// Values first ... first + length - 1 of a run's series, 0-based.
struct Interval {
  int first, length;
  [[nodiscard]] int end() const { return first + length; }
  [[nodiscard]] bool contains(int volume) const { return volume >= first && volume < end(); }
};

// The first of the longest ones; of length 0 when there is none.
[[nodiscard]] Interval longestOf(const std::vector<Interval>& intervals);

using Series = std::vector<double>;

// All series have one length and no mean.
struct Courses {
  Series reference;
  std::vector<Series> voxels;       // those that vary and are finite
  std::vector<Interval> intervals;  // that maps are made from
  double trSeconds = 0;

  [[nodiscard]] int length() const { return static_cast<int>(reference.size()); }
  [[nodiscard]] double seconds() const { return length() * trSeconds; }
  [[nodiscard]] Interval longestInterval() const { return longestOf(intervals); }
  [[nodiscard]] bool isUsed(int volume) const;  // whether an interval contains it
  // At least a share of the voxels, and at least one.
  [[nodiscard]] bool areMany(std::size_t count, double share) const;
};

// Nothing when the reference does not vary or is not finite, when no voxel is left, or when the repetition
// time is not positive. A voxel of another length than the reference's is left out.
[[nodiscard]] std::optional<Courses> makeCourses(std::span<const float> reference,
                                                 const std::vector<std::span<const float>>& voxels,
                                                 const std::vector<Interval>& intervals, double trSeconds);

}  // namespace suitability

#endif
