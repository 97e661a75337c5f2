// Motion censoring as interval splitting: volumes with too much motion are left out of every
// interval, and what remains between them must be long enough to hold a model.
#ifndef TAVMAP_PREPARE_CENSOR_H
#define TAVMAP_PREPARE_CENSOR_H

#include <vector>

#include "request/request.h"
#include "request/volume_ranges.h"

namespace study {

// One flag per volume: true is kept. NaN counts as no motion (the first volume has no displacement).
[[nodiscard]] std::vector<bool> volumesBelowThreshold(const std::vector<double>& fdMm,
                                                      const CensorSettings& settings);

// The stretches of kept volumes of at least minimumSegment volumes.
[[nodiscard]] std::vector<VolumeRange> keptSegments(const std::vector<bool>& kept, int minimumSegment);

}  // namespace study

#endif
