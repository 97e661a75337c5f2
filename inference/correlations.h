// The correlations of shuffled residuals with what a contrast asks for.
#ifndef TAVMAP_INFERENCE_CORRELATIONS_H
#define TAVMAP_INFERENCE_CORRELATIONS_H

#include <cstddef>

#include "inference/lane_vector.h"
#include "inference/shuffle_weights.h"
#include "inference/tested_places.h"

namespace inference {

// Of a batch of shuffles, piece by piece. One thread at a time.
class Correlations {
 public:
  static constexpr std::size_t kPiece =
      8;  // vectors, so that the residuals of 20 rows stay in the nearest cache

  Correlations(const TestedPlaces& places, const ShuffleWeights& weights);

  // Of vectors begin ... end - 1 of the span, at most kPiece: along[shuffle * stride + lane] is the part of
  // the residuals along the effect.
  void alongEffect(const LaneSpan& span, std::size_t begin, std::size_t end, float* along,
                   std::size_t stride);
  // squares[...], which hold 0, become the squared part along the nuisances that move.
  void alongNuisances(const LaneSpan& span, std::size_t begin, std::size_t end, float* squares,
                      std::size_t stride);
  // The correlation after the nuisances were fitted anew: t is tOfCorrelation of it.
  void correlate(const LaneSpan& span, std::size_t begin, std::size_t end, float* out, std::size_t stride);

 private:
  void along(const LaneSpan& span, std::size_t direction, std::size_t begin, std::size_t end, float* out,
             std::size_t stride);

  const TestedPlaces& places_;
  const ShuffleWeights& weights_;
  LaneFloats part_, squares_;
};

}  // namespace inference

#endif
