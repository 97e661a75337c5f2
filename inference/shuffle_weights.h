// What the residuals are multiplied with in a batch of shuffles.
#ifndef TAVMAP_INFERENCE_SHUFFLE_WEIGHTS_H
#define TAVMAP_INFERENCE_SHUFFLE_WEIGHTS_H

#include <cstddef>
#include <vector>

#include "inference/contrast_split.h"
#include "inference/shuffles.h"
#include "inference/split_cache.h"

namespace inference {

// Shuffling a place's residuals and multiplying them with a direction of the model is to multiply them with
// the direction shuffled back. Where rows lack a value, the lack is permuted with the residuals: the model of
// a shuffle is that of the rows where values arrive, so that places keep what they share and complete and
// incomplete neighbours are shuffled alike. Where these rows do not tell the contrast, the shuffle counts as
// no effect.
class ShuffleWeights {
 public:
  // Of some shuffles in their order, for each split; `models`: of the splits' model.
  ShuffleWeights(const std::vector<ContrastSplit>& splits, const std::vector<Shuffle>& shuffles,
                 SplitCache& models);

  [[nodiscard]] std::size_t shuffles() const { return shuffles_; }
  // Nuisances of a split that move in any of the shuffles.
  [[nodiscard]] std::size_t moving(std::size_t split) const { return weights_[split].moving; }
  // [shuffle][row] of a split's effect (direction 0) and of its nuisances that move (1, 2, ...).
  [[nodiscard]] const float* of(std::size_t split, std::size_t direction) const {
    return weights_[split].values.data() + direction * shuffles_ * rows_;
  }

 private:
  struct OfSplit {
    std::size_t moving = 0;
    std::vector<float> values;  // [direction][shuffle][row]
  };

  [[nodiscard]] OfSplit weightsOf(const ContrastSplit& split, const std::vector<Shuffle>& shuffles,
                                  SplitCache& models) const;

  std::size_t shuffles_, rows_ = 0;
  std::vector<OfSplit> weights_;
};

}  // namespace inference

#endif
