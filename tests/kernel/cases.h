// Made-up conditions for the kernel's tests: references, surrogates and voxels with the intervals
// over which they are compared, run through one kernel or through the oracle.
#ifndef TAVMAP_TESTS_KERNEL_CASES_H
#define TAVMAP_TESTS_KERNEL_CASES_H

#include <cstdint>
#include <random>
#include <vector>

#include "tav/kernel/plan.h"
#include "tests/kernel/oracle.h"

namespace cases {

struct Set {
  tav::kernel::Element element = tav::kernel::Element::kFloat;
  int nrOfVolumes = 0;
  std::vector<tav::kernel::Interval> intervals;
  std::vector<float> reference;                // [volume]
  std::vector<std::vector<float>> surrogates;  // [surrogate][volume]
  std::vector<std::vector<float>> voxels;      // [voxel][volume]; whole numbers for 16-bit data
};

struct Condition {
  int order = 1;
  int draws = 1;
  bool leastSquares = false;
  std::vector<Set> sets;
  std::vector<std::uint32_t> drawn;  // [voxel][interval][draw]

  [[nodiscard]] std::size_t nrOfVoxels() const { return sets.front().voxels.size(); }
  [[nodiscard]] std::size_t nrOfIntervals() const;
  [[nodiscard]] std::size_t drawsPerVoxel() const;
};

struct Shape {
  int order = 1;
  int draws = 1;
  bool leastSquares = false;
  std::size_t nrOfVoxels = 40;
  int nrOfSurrogates = 12;
  std::vector<std::vector<int>> lengths = {{120}};  // per set, per interval
  tav::kernel::Element element = tav::kernel::Element::kFloat;
};

// Autoregressive courses with drift around a large mean; a third of the voxels follow the
// reference by one volume, a third lead it.
Condition makeCondition(const Shape& shape, std::uint32_t seed);

struct Results {
  std::vector<float> measures[3];
  std::vector<float> nulls[3];  // [draw][voxel], nullStride apart
  std::vector<tav::kernel::Verdict> verdicts, nullVerdicts;
  std::size_t nullStride = 0;
};

// Voxels in batches of `batchSize`.
Results run(const tav::kernel::Kernel& kernel, const Condition& condition, std::size_t batchSize = 1000);

// Draw -1: the reference itself.
oracle::Answer expected(const Condition& condition, std::size_t voxel, int draw);

}  // namespace cases

#endif
