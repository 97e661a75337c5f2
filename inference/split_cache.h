// Splits of a model by the rows that count, each made once.
#ifndef TAVMAP_INFERENCE_SPLIT_CACHE_H
#define TAVMAP_INFERENCE_SPLIT_CACHE_H

#include <map>
#include <optional>
#include <vector>

#include "inference/contrast_split.h"

namespace inference {

// Keeps a reference to the model. One thread at a time.
class SplitCache {
 public:
  // fixedBlocks: as splitContrast takes them.
  explicit SplitCache(const Model& model, std::vector<int> fixedBlocks = {})
      : model_(model), fixedBlocks_(std::move(fixedBlocks)) {}

  // Of ascending rows. Valid until forgetMany().
  [[nodiscard]] const std::optional<ContrastSplit>& of(const std::vector<int>& rows) {
    const auto [at, isNew] = splits_.try_emplace(rows);
    if (isNew) at->second = splitContrast(model_, rows, fixedBlocks_);
    return at->second;
  }
  // Begins anew when there are more than memory should hold.
  void forgetMany() {
    if (splits_.size() > kMost) splits_.clear();
  }

 private:
  static constexpr std::size_t kMost = 20000;

  const Model& model_;
  std::vector<int> fixedBlocks_;
  std::map<std::vector<int>, std::optional<ContrastSplit>> splits_;
};

}  // namespace inference

#endif
