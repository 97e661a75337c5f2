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
  bool exists = false;  // false: a model is not positive definite
  std::array<double, 3> measures{};
  // About the smallest eigenvalue of all moments, lagged and current, scaled to a unit diagonal.
  // An error of relative size e in the moments or in their factorisation changes an error
  // variance by at most e / conditioning of itself, to first order. 0 when nothing exists.
  double conditioning = 0.0;
};

Series detrended(const Series& values);
Answer geweke(const std::vector<Segment>& segments, int order, bool leastSquares);

}  // namespace oracle

#endif
