#include "inference/shuffle_weights.h"

namespace inference {

namespace {

void append(const std::vector<double>& direction, const std::vector<int>& rows, const std::vector<int>& from,
            const std::vector<int>& sign, std::vector<float>& weights) {
  const std::size_t begin = weights.size();
  weights.resize(begin + direction.size(), 0.0F);
  for (const int row : rows) {
    const auto i = static_cast<std::size_t>(row);
    weights[begin + static_cast<std::size_t>(from[i])] = static_cast<float>(sign[i] * direction[i]);
  }
}

std::vector<std::vector<int>> sourcesOf(const ContrastSplit& split, const std::vector<Shuffle>& shuffles) {
  std::vector<bool> isThere(split.effect.size(), false);
  for (const int row : split.rows) isThere[static_cast<std::size_t>(row)] = true;
  std::vector<std::vector<int>> sources;
  for (const Shuffle& shuffle : shuffles) sources.push_back(amongRows(shuffle.from, isThere));
  return sources;
}

std::vector<float> weightsOf(const ContrastSplit& split, const std::vector<Shuffle>& shuffles) {
  const auto sources = sourcesOf(split, shuffles);
  std::vector<float> weights;
  for (std::size_t direction = 0; direction <= split.moving; ++direction)
    for (std::size_t s = 0; s < shuffles.size(); ++s)
      append(direction == 0 ? split.effect : split.nuisances[direction - 1], split.rows, sources[s],
             shuffles[s].sign, weights);
  return weights;
}

}  // namespace

ShuffleWeights::ShuffleWeights(const std::vector<ContrastSplit>& splits, const std::vector<Shuffle>& shuffles)
    : shuffles_(shuffles.size()) {
  for (const ContrastSplit& split : splits) {
    rows_ = split.effect.size();
    weights_.push_back(weightsOf(split, shuffles));
  }
}

}  // namespace inference
