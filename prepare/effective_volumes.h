// How many samples a model really rests on.
#ifndef TAVMAP_PREPARE_EFFECTIVE_VOLUMES_H
#define TAVMAP_PREPARE_EFFECTIVE_VOLUMES_H

#include <vector>

#include "request/volume_ranges.h"

namespace study {

// The volumes of one run in a condition, less the order per range and less the degrees of freedom that
// regressing confounds has taken from them; at least 0. costPerVolume: rank of the confounds by the volumes
// of the run that the regression rests on. A condition over all of these loses the rank, one over a part of
// them its share, rounded up.
[[nodiscard]] int effectiveAfterRegression(const std::vector<VolumeRange>& ranges, int order,
                                           double costPerVolume);

}  // namespace study

#endif
