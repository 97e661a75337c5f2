#include "inference/shuffle_weights.h"

#include <algorithm>

namespace inference {

namespace {

// The rows where the values of `rows` arrive, ascending.
std::vector<int> arrivals(const std::vector<int>& rows, const Shuffle& shuffle) {
  std::vector<int> arrived;
  for (std::size_t i = 0; i < shuffle.from.size(); ++i)
    if (std::binary_search(rows.begin(), rows.end(), shuffle.from[i])) arrived.push_back(static_cast<int>(i));
  return arrived;
}

// The split that holds after each shuffle; null where there is none.
std::vector<const ContrastSplit*> splitsAfter(const ContrastSplit& split,
                                              const std::vector<Shuffle>& shuffles, SplitCache& models) {
  std::vector<const ContrastSplit*> after;
  for (const Shuffle& shuffle : shuffles) {
    after.push_back(&split);
    if (split.rows.size() == shuffle.from.size()) continue;
    const std::vector<int> rows = arrivals(split.rows, shuffle);
    if (rows == split.rows) continue;
    const auto& other = models.of(rows);
    after.back() = other ? &*other : nullptr;
  }
  return after;
}

void shuffleBack(const std::vector<double>& direction, const std::vector<int>& rows, const Shuffle& shuffle,
                 float* weights) {
  for (const int row : rows) {
    const auto i = static_cast<std::size_t>(row);
    weights[shuffle.from[i]] = static_cast<float>(shuffle.sign[i] * direction[i]);
  }
}

}  // namespace

ShuffleWeights::OfSplit ShuffleWeights::weightsOf(const ContrastSplit& split,
                                                  const std::vector<Shuffle>& shuffles,
                                                  SplitCache& models) const {
  const auto after = splitsAfter(split, shuffles, models);
  OfSplit weights;
  for (const ContrastSplit* own : after) weights.moving = std::max(weights.moving, own ? own->moving : 0);
  weights.values.assign((weights.moving + 1) * shuffles_ * rows_, 0.0F);
  for (std::size_t s = 0; s < shuffles_; ++s)
    for (std::size_t k = 0; after[s] && k <= after[s]->moving; ++k)
      shuffleBack(k == 0 ? after[s]->effect : after[s]->nuisances[k - 1], after[s]->rows, shuffles[s],
                  weights.values.data() + (k * shuffles_ + s) * rows_);
  return weights;
}

ShuffleWeights::ShuffleWeights(const std::vector<ContrastSplit>& splits, const std::vector<Shuffle>& shuffles,
                               SplitCache& models)
    : shuffles_(shuffles.size()) {
  models.forgetMany();
  for (const ContrastSplit& split : splits) {
    rows_ = split.effect.size();
    weights_.push_back(weightsOf(split, shuffles, models));
  }
}

}  // namespace inference
