#include "connectome/node_series.h"

#include <algorithm>

namespace connectome {

std::vector<const float*> NodeSeries::courseOf(std::size_t node) const {
  std::vector<const float*> course;
  for (const SeriesRun& run : runs)
    course.push_back(run.nodes.data() + node * static_cast<std::size_t>(run.volumes));
  return course;
}

std::vector<const float*> NodeSeries::givenCourse(std::size_t series) const {
  std::vector<const float*> course;
  for (const SeriesRun& run : runs)
    course.push_back(run.given.data() + series * static_cast<std::size_t>(run.volumes));
  return course;
}

std::size_t NodeSeries::samples(int order) const {
  std::size_t sum = 0;
  for (const SeriesRun& run : runs)
    for (const Interval& interval : run.intervals)
      sum += static_cast<std::size_t>(std::max(0, interval.length - order));
  return sum;
}

}  // namespace connectome
