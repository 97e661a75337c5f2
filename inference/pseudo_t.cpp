#include "inference/pseudo_t.h"

#include "inference/lanes.h"

namespace inference {

PseudoT::PseudoT(const TestedPlaces& places, const Space& slots, double fwhmMm)
    : places_(places), smoother_(slots, fwhmMm), variances_(places.slots()) {}

void PseudoT::divide(float* along, const float* squares) {
  restVariances(places_.varianceFactors.data(), squares, along, places_.slots(), variances_.data());
  smoother_.smooth(variances_.data());
  divideByDeviation(along, places_.lengths.data(), variances_.data(), places_.slots());
}

}  // namespace inference
