// What is known of the nodes beside their series, and in which order pictures show them.
#ifndef TAVMAP_CONNECTOME_NODES_H
#define TAVMAP_CONNECTOME_NODES_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "connectome/edge_shares.h"

namespace connectome {

struct Node {
  std::string name;
  std::string network;  // empty: none is known
  int voxels = 0;
  std::array<double, 3> centreMm{};  // centre of gravity, scanner coordinates (RAS+)
};

// "Vis" of "7Networks_LH_Vis_4"; empty for other names.
[[nodiscard]] std::string networkInName(std::string_view name);

[[nodiscard]] bool mostHaveNetworks(const std::vector<Node>& nodes);

// Nodes in the order of pictures. Where most have a network: networks in the order in which they first come,
// in each the nodes in theirs, those without one last. Otherwise by clusters with average linkage of
// `likeness` (NaN: none), so that related nodes lie together. O(nodes^3).
[[nodiscard]] std::vector<std::size_t> pictureOrder(const std::vector<Node>& nodes,
                                                    const EdgeMatrix& likeness);

}  // namespace connectome

#endif
