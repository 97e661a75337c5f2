// t by smoothed variances.
#ifndef TAVMAP_INFERENCE_PSEUDO_T_H
#define TAVMAP_INFERENCE_PSEUDO_T_H

#include "inference/lane_vector.h"
#include "inference/space.h"
#include "inference/tested_places.h"
#include "inference/variance_smoother.h"

namespace inference {

// The effect by the standard error that the smoothed residual variance gives (Nichols & Holmes 2002, Human
// Brain Mapping 15, doi:10.1002/hbm.1058). Has no distribution of its own; where the smoothing is wide it is
// nearly a Z. One thread at a time; keeps its memory and a reference to the places.
class PseudoT {
 public:
  PseudoT(const TestedPlaces& places, const Space& slots, double fwhmMm);

  // Per slot: the parts of unit residuals along the effect become pseudo-t; `squares` as Correlations gives
  // them.
  void divide(float* along, const float* squares);

 private:
  const TestedPlaces& places_;
  VarianceSmoother smoother_;
  LaneFloats variances_;
};

}  // namespace inference

#endif
