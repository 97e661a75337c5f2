// What single participants do to an effect.
#ifndef TAVMAP_INFERENCE_INFLUENCE_H
#define TAVMAP_INFERENCE_INFLUENCE_H

#include <cstddef>
#include <span>
#include <vector>

#include "inference/model.h"

namespace inference {

// NaN where the rest cannot be tested.
struct WithoutOne {
  double effect, t;
};

// Per unit, per place of `places`: the contrast's estimate and t without that unit's rows. units: per row of
// the model, whose it is, any numbers; empty: rows are units. Units in ascending order. Fits each anew: for
// some places, not for maps. Throws std::invalid_argument when sizes differ.
[[nodiscard]] std::vector<std::vector<WithoutOne>> leaveOneOut(const Model& model, const Values& values,
                                                               std::span<const std::size_t> places,
                                                               const std::vector<int>& units = {});

}  // namespace inference

#endif
