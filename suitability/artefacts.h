// What motion and the scanner's start leave in many voxels at once.
#ifndef TAVMAP_SUITABILITY_ARTEFACTS_H
#define TAVMAP_SUITABILITY_ARTEFACTS_H

#include <vector>

#include "suitability/courses.h"

namespace suitability {

// How many volumes at the start stand out because magnetisation was not yet steady: they begin more than
// three robust standard deviations off the level of the following volumes and jump towards it within three
// volumes, in the reference and in a fifth of the voxels; counted until the median of those is within one
// standard deviation. 0 when none do, or below 40 volumes. At most 20. Whether an interval holds them does
// not matter here.
[[nodiscard]] int countTransientVolumes(const Courses& courses);

// Volumes, 0-based, of intervals, after `transient` volumes, at which the reference and at least a fifth of
// the voxels jump at once: a difference from the volume before of more than five robust standard deviations
// of all differences. Jumps of neighbouring volumes, such as there and back, are one spike. (After the
// measure of Power et al. 2012, NeuroImage 59, 2142-2154, doi:10.1016/j.neuroimage.2011.10.018.)
[[nodiscard]] std::vector<int> findSpikes(const Courses& courses, int transient);

}  // namespace suitability

#endif
