// A second, literal computation of one reference's raw measures, for comparison: plain loops in
// double precision, the C library's own srand and rand, and models solved from their normal
// equations instead of an orthogonal search. Slow, and meant to be.
#ifndef TAVMAP_TESTS_TAV_LITERAL_RUN_H
#define TAVMAP_TESTS_TAV_LITERAL_RUN_H

#include <array>
#include <vector>

#include "tav/run_options.h"

namespace literal {

using Series = std::vector<double>;

struct Interval {
  int first, last;  // from 1, inclusive
};

// One file with its intervals. voxels[v] is a time course; reference is that of the region.
struct Set {
  std::vector<Series> voxels;
  Series reference;
  std::vector<Interval> intervals;
};

struct Settings {
  int order;
  int nrOfSurrogates;
  int nrOfDiscarded;
  double inclusionThreshold;
  unsigned timeBase;
  tav::RunOptions options;
};

struct Measures {
  std::array<double, 3> values{};
};

struct Result {
  std::vector<Measures> observed;           // per voxel
  std::vector<std::vector<Measures>> null;  // per voxel and draw
};

// One condition of one reference whose courses all come up once, in the order of the sets.
[[nodiscard]] Result run(const std::vector<Set>& sets, const Settings& settings);

}  // namespace literal

#endif
