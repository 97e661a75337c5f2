// Maps smoothed within the places that are tested.
#ifndef TAVMAP_INFERENCE_VARIANCE_SMOOTHER_H
#define TAVMAP_INFERENCE_VARIANCE_SMOOTHER_H

#include <array>
#include <cstddef>
#include <vector>

#include "inference/space.h"

namespace inference {

// A Gaussian of a full width at half maximum in mm along each axis of the grid, cut off at 3 standard
// deviations; places without a slot count for nothing: the weights of the others sum to 1. One thread at a
// time; keeps its memory.
class VarianceSmoother {
 public:
  // Of a space of voxels (renumbered to slots or not).
  VarianceSmoother(const Space& space, double fwhmMm);

  // Values per place of the space, in place; those of empty slots mean nothing.
  void smooth(float* values);

 private:
  struct Axis {
    std::size_t length, step;    // of the box, and to the next voxel along it
    std::vector<float> weights;  // of distances 0, 1, ...
  };

  void layOut(const Space& space);
  void convolve(const Axis& axis);

  std::array<Axis, 3> axes_;
  std::vector<std::size_t> cells_;  // per place: its voxel in the box around all places
  std::vector<float> box_, line_;   // the box has a last cell, for empty slots
  std::vector<float> shares_;       // per place: the weights that fall on places
};

}  // namespace inference

#endif
