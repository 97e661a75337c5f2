// A literal double-precision computation of the measures: the oracle of the kernel's accuracy.
// Written from the definitions, without a line of the code that it checks.
#ifndef TAVMAP_TESTS_KERNEL_ORACLE_H
#define TAVMAP_TESTS_KERNEL_ORACLE_H

#include <array>
#include <vector>

namespace oracle {

using Series = std::vector<double>;

// One interval: the reference and the voxel over the same volumes, as they are in the data.
struct Segment {
  Series x, y;
};

struct Answer {
  bool exists = false;            // false: a model is not positive definite
  std::array<double, 3> measures{};
  // Smallest pivot relative to its variable's moment, over all models: 0 is singular. Rounding
  // errors of a computation in single precision grow like its inverse.
  double conditioning = 0.0;
};

Series detrended(const Series& values);
Answer geweke(const std::vector<Segment>& segments, int order, bool consistentPairs);

}  // namespace oracle

#endif
