// Motion censoring as interval splitting: volumes with too much motion are left out of every
// interval, and what remains between them must be long enough to hold a model.
#ifndef TAVMAP_STUDY_CENSOR_H
#define TAVMAP_STUDY_CENSOR_H

#include <vector>

#include "study/volume_ranges.h"

namespace study {

struct CensorSettings {
  double fdThresholdMm = 0;  // frame-wise displacement above it censors a volume; 0: no censoring
  int minimumSegment = 5;    // shorter stretches between censored volumes are left out too, volumes
  int alsoBefore = 0;        // volumes censored before each one above the threshold
  int alsoAfter = 0;         // and after it
};

// One flag per volume: true is kept. NaN counts as no motion (the first volume has no displacement).
std::vector<bool> volumesBelowThreshold(const std::vector<double>& fdMm, const CensorSettings& settings);

// The stretches of kept volumes of at least minimumSegment volumes.
std::vector<VolumeRange> keptSegments(const std::vector<bool>& kept, int minimumSegment);

}  // namespace study

#endif
