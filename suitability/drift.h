// Slow drift that detrending leaves.
#ifndef TAVMAP_SUITABILITY_DRIFT_H
#define TAVMAP_SUITABILITY_DRIFT_H

#include <optional>

#include "suitability/courses.h"

namespace suitability {

// Slower than a period of 128 s, where scanner drift lives (Smith et al. 1999, NeuroImage 9, 526-533,
// doi:10.1006/nimg.1999.0435; Holmes et al. 1997, NeuroImage 5, S480).
inline constexpr double kDriftHz = 0.008;

// The share of the median voxel's variance below kDriftHz in the longest interval, detrended: when it is more
// than a half and more than six times what the octave above holds, since the spectra of autocorrelated noise
// rise towards low frequencies too, but not so steeply. Nothing otherwise, nor in intervals of less than
// three periods of that frequency, which detrending flattens.
[[nodiscard]] std::optional<double> findDrift(const Courses& courses);

// The same with trends left in, from two periods of that frequency on: what a run shows that nobody has
// touched. A line alone holds seven times what the octave above holds.
[[nodiscard]] std::optional<double> findRawDrift(const Courses& courses);

}  // namespace suitability

#endif
