// Threshold-free cluster enhancement.
#ifndef TAVMAP_INFERENCE_ENHANCER_H
#define TAVMAP_INFERENCE_ENHANCER_H

#include <span>
#include <vector>

#include "inference/descending_order.h"
#include "inference/extent_tree.h"
#include "inference/space.h"
#include "inference/test_options.h"

namespace inference {

// As Enhancement in test_options.h says. One thread at a time; keeps its memory and a reference to the space.
class Enhancer {
 public:
  Enhancer(const Space& space, const Enhancement& enhancement);

  // Each place's value, with its sign; negative ones stay 0 unless `isTwoSided`.
  [[nodiscard]] std::vector<float> enhance(std::span<const float> z, bool isTwoSided);
  // The largest magnitude of those.
  [[nodiscard]] float largest(std::span<const float> z, bool isTwoSided);

 private:
  void enhanceSide(std::span<const float> z, int sign);
  // The integral, or the sum, of height^heightPower up to a height.
  [[nodiscard]] float upTo(float height) const;
  [[nodiscard]] float ofExtent(std::int32_t extent) const {
    return extents_[static_cast<std::size_t>(extent)];
  }

  Enhancement enhancement_;
  std::vector<float> extents_;  // to their power, by extent
  std::vector<float> sums_;     // by steps
  DescendingOrder sorter_;
  ExtentTree tree_;
  std::span<const DescendingOrder::Entry> order_;
  std::vector<float> heights_, values_;  // of nodes
};

}  // namespace inference

#endif
