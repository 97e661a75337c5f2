// What the residuals are multiplied with in a batch of shuffles.
#ifndef TAVMAP_INFERENCE_SHUFFLE_WEIGHTS_H
#define TAVMAP_INFERENCE_SHUFFLE_WEIGHTS_H

#include <cstddef>
#include <vector>

#include "inference/contrast_split.h"
#include "inference/shuffles.h"

namespace inference {

// Shuffling a place's residuals and multiplying them with a direction of the model is to multiply them with
// the direction shuffled back.
class ShuffleWeights {
 public:
  // Of some shuffles in their order, for each split.
  ShuffleWeights(const std::vector<ContrastSplit>& splits, const std::vector<Shuffle>& shuffles);

  [[nodiscard]] std::size_t shuffles() const { return shuffles_; }
  // [shuffle][row] of a split's effect (direction 0) and of its nuisances that move (1, 2, ...).
  [[nodiscard]] const float* of(std::size_t split, std::size_t direction) const {
    return weights_[split].data() + direction * shuffles_ * rows_;
  }

 private:
  std::size_t shuffles_, rows_ = 0;
  std::vector<std::vector<float>> weights_;  // per split
};

}  // namespace inference

#endif
