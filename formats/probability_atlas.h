// Probability atlases: an image with one volume per label, of how likely each voxel belongs to it.
#ifndef TAVMAP_FORMATS_PROBABILITY_ATLAS_H
#define TAVMAP_FORMATS_PROBABILITY_ATLAS_H

#include <string>

#include "formats/image.h"

namespace formats {

struct MostProbableLabels {
  LabelImage image;        // volumes counted from 1; 0 where no volume is probable enough
  int volumes = 0;         // of the atlas
  bool inPercent = false;  // its values reach beyond 1, so that 100 is certain
};

// Each voxel's label is the volume with the largest probability there, the first of equal ones, when that is
// at least `least` (above 0, at most 1). Values that are not finite count as 0. Memory: three volumes. Throws
// FileError, also for values below 0 or above 100.
[[nodiscard]] MostProbableLabels readMostProbableLabels(const std::string& path, double least);

}  // namespace formats

#endif
