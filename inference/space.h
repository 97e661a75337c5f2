// Which places touch one another, and where voxels lie.
#ifndef TAVMAP_INFERENCE_SPACE_H
#define TAVMAP_INFERENCE_SPACE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "io/grid_size.h"

namespace inference {

// Places 0 ... places - 1. Two touch when one is in the other's list of neighbours, or when they share a hub
// (an edge of a network touches all edges at its two nodes: listing them would take a table of millions).
struct Space {
  std::size_t places = 0;
  std::size_t width = 0;                 // entries per place in `neighbours`
  std::vector<std::int32_t> neighbours;  // places x width; where there is none: `places`
  std::size_t hubWidth = 0, nrOfHubs = 0;
  std::vector<std::int32_t> hubs;  // places x hubWidth; where there is none: nrOfHubs
  io::GridSize grid;               // of voxels; else empty
  // Per place: its index in the grid (in a renumbered space grid.voxels() for empty slots); empty: no voxels.
  std::vector<std::size_t> voxels;
  std::array<double, 3> voxelMm = {0, 0, 0};

  [[nodiscard]] bool isOfVoxels() const { return !voxels.empty(); }
};

// `voxels`: indices of the grid, ascending. Connectivity 6 (faces), 18 (and edges), 26 (and corners);
// voxelMm: edges of a voxel, for smoothing. Throws std::invalid_argument on anything else.
[[nodiscard]] Space spaceOfVoxels(const io::GridSize& grid, const std::vector<std::size_t>& voxels,
                                  int connectivity, const std::array<double, 3>& voxelMm = {1, 1, 1});
// Edges between `nodes` nodes, numbered from 0; edges that share a node touch, whatever their directions.
[[nodiscard]] Space spaceOfEdges(std::size_t nodes, const std::vector<std::pair<int, int>>& edges);
// Places that do not touch.
[[nodiscard]] Space spaceOfPlaces(std::size_t places);

// The space of slots: slot i holds place placeOfSlot[i], or nothing where that is negative. Places without a
// slot are left out.
[[nodiscard]] Space renumbered(const Space& space, const std::vector<std::int32_t>& placeOfSlot);

}  // namespace inference

#endif
