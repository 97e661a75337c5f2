// What befalls the courses of a data set beyond their own noise.
#ifndef TAVMAP_TESTS_CALIBRATION_COURSE_CHANGES_H
#define TAVMAP_TESTS_CALIBRATION_COURSE_CHANGES_H

#include <cstddef>
#include <vector>

#include "tests/calibration/noise_kinds.h"

namespace calibration {

// Different volumes, drawn at random.
[[nodiscard]] std::vector<std::size_t> drawVolumes(std::size_t count, std::size_t volumes,
                                                   Generator& generator);
struct SpikeShape {
  bool oneSign;   // else random signs
  double memory;  // what is left of a spike one volume later, as a share
};
// Adds ten standard deviations at each of the volumes.
void addSpikes(const std::vector<std::size_t>& at, const SpikeShape& shape, Course& course,
               Generator& generator);
// Multiplies the middle third by four.
void raiseMiddle(Course& course);
// The courses of a grid with so many voxels along x and y, through a Gaussian kernel of a voxel's width, with
// standard deviation 1 again.
void smoothInSpace(int across, std::vector<Course>& courses);
// Adds the course, times a weight for each that is drawn from a normal distribution about 1 with width 0.3.
void addShared(const Course& signal, std::vector<Course>& courses, Generator& generator);

}  // namespace calibration

#endif
