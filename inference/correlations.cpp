#include "inference/correlations.h"

#include <algorithm>

#include "inference/lanes.h"

namespace inference {

namespace {

constexpr std::size_t kStride = Correlations::kPiece * kLanes;

}  // namespace

Correlations::Correlations(const TestedPlaces& places, const ShuffleWeights& weights)
    : places_(places),
      weights_(weights),
      part_(weights.shuffles() * kStride),
      squares_(weights.shuffles() * kStride) {}

void Correlations::along(const LaneSpan& span, std::size_t direction, std::size_t begin, std::size_t end,
                         float* out, std::size_t stride) {
  const std::size_t rows = places_.rows();
  correlateLanes(places_.residuals.data() + begin * rows * kLanes, end - begin, rows,
                 weights_.of(span.split, direction), weights_.shuffles(), out, stride);
}

void Correlations::alongEffect(const LaneSpan& span, std::size_t begin, std::size_t end, float* out,
                               std::size_t stride) {
  along(span, 0, begin, end, out, stride);
}

void Correlations::alongNuisances(const LaneSpan& span, std::size_t begin, std::size_t end, float* squares,
                                  std::size_t stride) {
  const std::size_t length = (end - begin) * kLanes;
  for (std::size_t k = 1; k <= weights_.moving(span.split); ++k) {
    along(span, k, begin, end, part_.data(), kStride);
    for (std::size_t s = 0; s < weights_.shuffles(); ++s)
      addSquares(part_.data() + s * kStride, length, squares + s * stride);
  }
}

void Correlations::correlate(const LaneSpan& span, std::size_t begin, std::size_t end, float* out,
                             std::size_t stride) {
  alongEffect(span, begin, end, out, stride);
  if (weights_.moving(span.split) == 0) return;
  std::fill(squares_.begin(), squares_.end(), 0.0F);
  alongNuisances(span, begin, end, squares_.data(), kStride);
  for (std::size_t s = 0; s < weights_.shuffles(); ++s)
    divideByRest(out + s * stride, squares_.data() + s * kStride, (end - begin) * kLanes);
}

}  // namespace inference
