#include "inference/extent_tree.h"

#include <algorithm>

namespace inference {

ExtentTree::ExtentTree(const Space& space)
    : space_(space),
      above_(space.places + 1),  // with one for "no neighbour", which is never there
      newest_(space.places),
      sizes_(space.places),
      atHub_(space.nrOfHubs + 1),
      parents_(space.places),
      extents_(space.places) {}

void ExtentTree::grow(std::span<const DescendingOrder::Entry> order) {
  std::fill(above_.begin(), above_.end(), -1);
  std::fill(atHub_.begin(), atHub_.end(), -1);
  for (std::size_t i = 0; i < order.size(); ++i) {
    fetchAhead(order, i);
    const std::int32_t place = order[i].place, node = static_cast<std::int32_t>(i);
    const auto at = static_cast<std::size_t>(place);
    std::int32_t root = place;
    above_[at] = place;
    sizes_[at] = 1;
    newest_[at] = node;
    parents_[i] = -1;
    const std::int32_t* neighbour = space_.neighbours.data() + at * space_.width;
    for (std::size_t k = 0; k < space_.width; ++k)
      if (above_[static_cast<std::size_t>(neighbour[k])] >= 0) root = unite(root, neighbour[k], node);
    root = meetHubs(root, place, node);
    extents_[i] = sizes_[static_cast<std::size_t>(root)];
  }
}

// The order jumps about in memory, and is known: what the next ones need is on its way when they come.
void ExtentTree::fetchAhead(std::span<const DescendingOrder::Entry> order, std::size_t i) const {
  constexpr std::size_t kTables = 16, kPlaces = 8;
  const auto row = [&](std::size_t node) {
    return space_.neighbours.data() + static_cast<std::size_t>(order[node].place) * space_.width;
  };
  if (i + kTables < order.size()) __builtin_prefetch(row(i + kTables));
  if (i + kPlaces >= order.size()) return;
  const std::int32_t* neighbours = row(i + kPlaces);
  for (std::size_t k = 0; k < space_.width; ++k)
    __builtin_prefetch(above_.data() + static_cast<std::size_t>(neighbours[k]));
}

// Halves the way for those who come later.
std::int32_t ExtentTree::rootOf(std::int32_t place) {
  for (;;) {
    std::int32_t& above = above_[static_cast<std::size_t>(place)];
    if (above == place) return place;
    above = above_[static_cast<std::size_t>(above)];
    place = above;
  }
}

std::int32_t ExtentTree::unite(std::int32_t root, std::int32_t other, std::int32_t node) {
  other = rootOf(other);
  if (other == root) return root;
  parents_[static_cast<std::size_t>(newest_[static_cast<std::size_t>(other)])] = node;
  if (sizes_[static_cast<std::size_t>(other)] > sizes_[static_cast<std::size_t>(root)])
    std::swap(root, other);
  above_[static_cast<std::size_t>(other)] = root;
  sizes_[static_cast<std::size_t>(root)] += sizes_[static_cast<std::size_t>(other)];
  newest_[static_cast<std::size_t>(root)] = node;
  return root;
}

std::int32_t ExtentTree::meetHubs(std::int32_t root, std::int32_t place, std::int32_t node) {
  const std::int32_t* hubs = space_.hubs.data() + static_cast<std::size_t>(place) * space_.hubWidth;
  for (std::size_t k = 0; k < space_.hubWidth; ++k) {
    std::int32_t& there = atHub_[static_cast<std::size_t>(hubs[k])];
    if (there >= 0) root = unite(root, there, node);
    there = place;
  }
  return root;
}

}  // namespace inference
