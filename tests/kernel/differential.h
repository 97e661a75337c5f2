// Random jobs for the voxel paths, and the comparison of a kernel's path with the reference path.
#ifndef TAVMAP_TESTS_KERNEL_DIFFERENTIAL_H
#define TAVMAP_TESTS_KERNEL_DIFFERENTIAL_H

#include <cstdint>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include "tav/kernel/dispatch.h"
#include "tav/voxel_path.h"
#include "tests/kernel/course_kinds.h"

namespace differential {

// A job with everything that it points at.
struct Case {
  tav::VoxelJob job;
  std::size_t nrOfVoxels = 0;
  std::deque<simo::Matrix<float>> matrices;
  std::deque<std::vector<tav::TAV_intv>> intervals;
  std::deque<std::vector<float>> floats;  // one of the two per file
  std::deque<std::vector<std::uint16_t>> shorts;
  std::vector<tav::VoxelData> data;
  std::vector<CourseKind> kinds;  // [file][voxel]: which kind of course was made, for reports
};

// Random order, form, draws, files, sets and intervals; voxels and references of all kinds. The same seed
// gives the same case.
void makeCase(std::uint32_t seed, Case& made);

struct Outcome {
  std::vector<float> measures[tav::kNrOfMeasures], nulls[tav::kNrOfMeasures];
  std::vector<float> further[tav::kNrOfMeasures];
  std::vector<tav::VoxelStatus> status;
  tav::VoxelCounts counts;
  int nextDraw = 0;  // the random number that follows
};

// `voxelsPerCall`: how the voxels are cut into calls.
Outcome run(tav::VoxelPath& path, const Case& made, std::size_t voxelsPerCall);
// Several jobs over the case's data in one pass, each with a stream that starts anew.
std::vector<Outcome> run(tav::VoxelPath& path, const Case& made, std::vector<tav::VoxelJob> jobs,
                         std::size_t voxelsPerCall);

// Empty when they agree: the same status, counts and following random number, and measures equal
// within rounding; else what differs first. Measures of one voxel may differ by
//     2 eps (20 + 4 order) / conditioning
// each side being allowed the oracle's tolerance of single precision; see oracle.h.
std::string difference(const Case& made, const Outcome& kernel, const Outcome& reference);

// Runs one case through a kernel and the reference.
std::string check(const tav::kernel::Kernel& kernel, std::uint32_t seed);

}  // namespace differential

#endif
