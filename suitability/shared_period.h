// A period that the reference and the brain share, as a block design makes it.
#ifndef TAVMAP_SUITABILITY_SHARED_PERIOD_H
#define TAVMAP_SUITABILITY_SHARED_PERIOD_H

#include <cstddef>
#include <optional>

#include "suitability/courses.h"

namespace suitability {

struct SharedPeriod {
  double seconds = 0;
  std::size_t voxels = 0;  // of those sampled, that have it too
};

// The strongest line of the reference's spectrum, when it stands further above its neighbourhood than noise
// would anywhere in one run of a hundred (17 times the median of either side in a run of 100 volumes, 25
// times in one of 1200), and half as far in a third of the voxels. Sides are the 3rd to 12th frequency away
// from it, so that slopes of the spectrum are no lines; the run must hold five periods, and the longest
// interval two: shorter intervals see no period.
[[nodiscard]] std::optional<SharedPeriod> findSharedPeriod(const Courses& courses);

}  // namespace suitability

#endif
