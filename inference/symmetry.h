// Whether the errors of a group are symmetric, which is all that sign flips ask of them.
#ifndef TAVMAP_INFERENCE_SYMMETRY_H
#define TAVMAP_INFERENCE_SYMMETRY_H

#include <cstdint>

#include "inference/model.h"

namespace inference {

// Skewness of the residuals over rows, averaged over the whole map and over regions of it.
struct Symmetry {
  double meanSkewness = 0;  // over all places; 0 is symmetric
  double regionalSkewness =
      0;                // root mean square of the regions' means: large where sides differ between them
  double expected = 0;  // the same, as sign flips of the residuals give it
  double p = 1;         // of regionalSkewness, by these flips
  [[nodiscard]] bool isDoubtful() const { return p <= 0.02; }
};

// Compares regional skewness with that of sign flips of whole rows of residuals, so that places keep what
// they share. Averages come first because the skewness of single places is no fair witness: least squares
// leave an outlier and its flip unlike traces in the other residuals, which changes squares, not means.
// Regions are ten runs of places of equal number, in their order (slabs of a brain). Looks at
// the places of completeSample() that vary. Random numbers follow from the seed
// alone.
[[nodiscard]] Symmetry checkSymmetry(const Model& model, const Values& values, std::uint32_t seed);

}  // namespace inference

#endif
