// Whether the errors of a group are symmetric, which is all that sign flips ask of them.
#ifndef TAVMAP_INFERENCE_SYMMETRY_H
#define TAVMAP_INFERENCE_SYMMETRY_H

#include <cstdint>

#include "inference/model.h"

namespace inference {

// Skewness of the residuals over rows, at all places taken together.
struct Symmetry {
  double meanSkewness = 0;    // over places; 0 is symmetric
  double meanSquare = 0;      // of the places' skewness: large where sides differ between regions
  double nullMeanSquare = 0;  // what sign flips of the residuals give, on average
  double p = 1;               // of the more striking of the two, counted twice
  [[nodiscard]] bool isDoubtful() const { return p <= 0.01; }
};

// Compares both means with those of sign flips of whole rows of residuals, so that places keep what they
// share. Uses at most 5,000 places, evenly taken, of those where all rows have a value and vary. Random
// numbers follow from the seed alone.
[[nodiscard]] Symmetry checkSymmetry(const Model& model, const Values& values, std::uint32_t seed);

}  // namespace inference

#endif
