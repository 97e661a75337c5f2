// How fast a machine is, from the times of two pieces of work that differ in size.
#ifndef TAVMAP_PLANNING_WORK_RATES_H
#define TAVMAP_PLANNING_WORK_RATES_H

#include <cstddef>

namespace planning {

// Seconds of one processor. The voxels of a rate are those of the whole grid: the miniature has as large a
// share of them inside its mask.
struct Rates {
  double importPerValue = 0;                         // a value: one voxel of one volume as stored
  double passFixed = 0, passPerVoxel = 0;            // once for up to kTogether references
  double referenceFixed = 0, referencePerVoxel = 0;  // for each of them
  double volumes = 0;  // of all conditions together, that the last four hold for
};

// Seconds that one piece of work took.
struct Times {
  std::size_t voxels = 0;
  double import = 0, one = 0, several = 0;  // of all runs; of one reference; of as many as are tried together
};

struct Volumes {
  double stored = 0, ofConditions = 0;  // of all runs, as stored; of all conditions together
};

// Straight lines through both: `several` is of so many references, no fewer than one. What noise makes
// negative is nothing. Precondition: small.voxels < large.voxels.
[[nodiscard]] Rates ratesFrom(const Times& small, const Times& large, std::size_t references,
                              const Volumes& volumes);

}  // namespace planning

#endif
