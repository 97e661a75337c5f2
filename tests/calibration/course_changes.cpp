#include "tests/calibration/course_changes.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace calibration {
namespace {

constexpr double kSpike = 10, kRaise = 4, kWeightWidth = 0.3;
constexpr int kReach = 2;  // of the kernel, in voxels

double standardDeviation(const Course& course) {
  const auto n = static_cast<double>(course.size());
  const double mean = std::accumulate(course.begin(), course.end(), 0.0) / n;
  double squares = 0;
  for (const double value : course) squares += (value - mean) * (value - mean);
  return std::sqrt(squares / n);
}

// Along one axis: courses `step` apart, in rows of `length`.
void smoothAlong(std::size_t step, int length, std::vector<Course>& courses) {
  const std::vector<Course> before = courses;
  for (std::size_t i = 0; i < courses.size(); ++i) {
    const int at = static_cast<int>(i / step) % length;
    std::fill(courses[i].begin(), courses[i].end(), 0.0);
    for (int k = std::max(-kReach, -at); k <= std::min(kReach, length - 1 - at); ++k) {
      const double weight = std::exp(-0.5 * k * k);
      const Course& from = before[i + static_cast<std::size_t>(static_cast<std::ptrdiff_t>(step) * k)];
      for (std::size_t t = 0; t < from.size(); ++t) courses[i][t] += weight * from[t];
    }
  }
}

}  // namespace

std::vector<std::size_t> drawVolumes(std::size_t count, std::size_t volumes, Generator& generator) {
  std::vector<std::size_t> all(volumes);
  std::iota(all.begin(), all.end(), std::size_t{0});
  std::shuffle(all.begin(), all.end(), generator);
  all.resize(count);
  return all;
}

void addSpikes(const std::vector<std::size_t>& at, const SpikeShape& shape, Course& course,
               Generator& generator) {
  constexpr double kNothing = 1e-3;
  const double height = kSpike * standardDeviation(course);
  std::bernoulli_distribution coin;
  for (std::size_t volume : at) {
    double left = shape.oneSign || coin(generator) ? height : -height;
    for (; volume < course.size() && std::abs(left) > kNothing * height; left *= shape.memory)
      course[volume++] += left;
  }
}

void raiseMiddle(Course& course) {
  for (std::size_t t = course.size() / 3; t < 2 * course.size() / 3; ++t) course[t] *= kRaise;
}

void smoothInSpace(int across, std::vector<Course>& courses) {
  const auto row = static_cast<std::size_t>(across);
  smoothAlong(1, across, courses);
  smoothAlong(row, across, courses);
  smoothAlong(row * row, static_cast<int>(courses.size() / (row * row)), courses);
  for (Course& course : courses) standardise(course);
}

void addShared(const Course& signal, std::vector<Course>& courses, Generator& generator) {
  std::normal_distribution<double> weights(1, kWeightWidth);
  for (Course& course : courses) {
    const double weight = weights(generator);
    for (std::size_t t = 0; t < signal.size(); ++t) course[t] += weight * signal[t];
  }
}

}  // namespace calibration
