// Traces of a filter in time.
#ifndef TAVMAP_SUITABILITY_SPECTRUM_H
#define TAVMAP_SUITABILITY_SPECTRUM_H

#include <optional>
#include <vector>

#include "suitability/courses.h"

namespace suitability {

struct EmptyBands {
  std::optional<double> belowHz, aboveHz;
};

// Frequencies that hold nearly nothing, on average over the reference and the voxels: a mean density below
// 1e-3 of the upper quartile in the neighbouring band that is not empty. Blood vessels are a low-pass filter
// too, so that above a frequency the density must also be below a fiftieth of what a haemodynamic response
// alone leaves there. Finds ideal filters and Butterworth filters from third order on, applied in both
// directions; a low edge needs two empty frequencies, 1 / duration apart. Nothing for fewer than 40 volumes.
[[nodiscard]] EmptyBands findEmptyBands(const Courses& courses);

}  // namespace suitability

#endif
