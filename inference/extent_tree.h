// How what lies above a height grows and merges while the height sinks.
#ifndef TAVMAP_INFERENCE_EXTENT_TREE_H
#define TAVMAP_INFERENCE_EXTENT_TREE_H

#include <cstdint>
#include <span>
#include <vector>

#include "inference/descending_order.h"
#include "inference/space.h"

namespace inference {

// Node i is the i-th place in descending order. Its component is all that is connected to it at its own
// height; its parent is the node whose coming makes that component larger.
class ExtentTree {
 public:
  // Keeps a reference to `space`, whose places touch at least one another.
  explicit ExtentTree(const Space& space);

  // By sets that are united as they meet (Najman & Couprie 2006, doi:10.1109/TIP.2006.877518).
  void grow(std::span<const DescendingOrder::Entry> order);

  [[nodiscard]] std::int32_t parent(std::size_t node) const { return parents_[node]; }  // -1: none
  [[nodiscard]] std::int32_t extent(std::size_t node) const { return extents_[node]; }  // places

 private:
  void fetchAhead(std::span<const DescendingOrder::Entry> order, std::size_t i) const;
  [[nodiscard]] std::int32_t rootOf(std::int32_t place);
  // Unites the set of `root`, which node `node` is in, with that of another place; returns the new root.
  std::int32_t unite(std::int32_t root, std::int32_t other, std::int32_t node);
  std::int32_t meetHubs(std::int32_t root, std::int32_t place, std::int32_t node);

  const Space& space_;
  std::vector<std::int32_t> above_;   // per place: the next one on the way to its root; -1: not there yet
  std::vector<std::int32_t> newest_;  // per root: the last node that joined
  std::vector<std::int32_t> sizes_;   // per root
  std::vector<std::int32_t> atHub_;   // per hub: a place there; -1: none yet
  std::vector<std::int32_t> parents_, extents_;
};

}  // namespace inference

#endif
