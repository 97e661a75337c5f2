#include "inference/space.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace inference {

namespace {

// Steps to the neighbours: differing along at most so many axes.
std::vector<std::array<int, 3>> stepsOf(int connectivity) {
  const int axes = connectivity == 6 ? 1 : connectivity == 18 ? 2 : connectivity == 26 ? 3 : 0;
  if (axes == 0)
    throw std::invalid_argument(fmt::format("Voxels have 6, 18 or 26 neighbours, not {}.", connectivity));
  std::vector<std::array<int, 3>> steps;
  for (int i = -1; i <= 1; ++i)
    for (int j = -1; j <= 1; ++j)
      for (int k = -1; k <= 1; ++k)
        if (const int moved = std::abs(i) + std::abs(j) + std::abs(k); moved > 0 && moved <= axes)
          steps.push_back({i, j, k});
  return steps;
}

void checkVoxels(const io::GridSize& grid, const std::vector<std::size_t>& voxels,
                 const std::array<double, 3>& voxelMm) {
  if (std::adjacent_find(voxels.begin(), voxels.end(), std::greater_equal<>()) != voxels.end() ||
      (!voxels.empty() && voxels.back() >= grid.voxels()))
    throw std::invalid_argument("Voxels are named once each, in ascending order, within their grid.");
  for (const double edge : voxelMm)
    if (!(edge > 0)) throw std::invalid_argument(fmt::format("An edge of {} mm is none.", edge));
}

// The number of each voxel of the grid among `voxels`; their count where it is not one of them.
std::vector<std::int32_t> numbersOf(const io::GridSize& grid, const std::vector<std::size_t>& voxels) {
  std::vector<std::int32_t> numbers(grid.voxels(), static_cast<std::int32_t>(voxels.size()));
  for (std::size_t i = 0; i < voxels.size(); ++i) numbers[voxels[i]] = static_cast<std::int32_t>(i);
  return numbers;
}

// A table of `width` per slot: its place's row with each entry mapped; rows of `nothing` where a slot is
// empty.
template <typename Map>
std::vector<std::int32_t> remapped(const std::vector<std::int32_t>& table, std::size_t width,
                                   const std::vector<std::int32_t>& placeOfSlot, std::int32_t nothing,
                                   Map map) {
  std::vector<std::int32_t> result(placeOfSlot.size() * width, nothing);
  for (std::size_t slot = 0; slot < placeOfSlot.size(); ++slot)
    for (std::size_t i = 0; placeOfSlot[slot] >= 0 && i < width; ++i)
      result[slot * width + i] = map(table[static_cast<std::size_t>(placeOfSlot[slot]) * width + i]);
  return result;
}

}  // namespace

Space spaceOfVoxels(const io::GridSize& grid, const std::vector<std::size_t>& voxels, int connectivity,
                    const std::array<double, 3>& voxelMm) {
  checkVoxels(grid, voxels, voxelMm);
  const auto steps = stepsOf(connectivity);
  const auto numbers = numbersOf(grid, voxels);
  Space space = spaceOfPlaces(voxels.size());
  space.width = steps.size();
  space.grid = grid;
  space.voxels = voxels;
  space.voxelMm = voxelMm;
  for (const std::size_t voxel : voxels) {
    const auto at = grid.voxelAt(voxel);
    for (const auto& [i, j, k] : steps) {
      const std::array<int, 3> to = {at[0] + i, at[1] + j, at[2] + k};
      space.neighbours.push_back(grid.contains(to) ? numbers[grid.index(to)]
                                                   : static_cast<std::int32_t>(voxels.size()));
    }
  }
  return space;
}

Space spaceOfEdges(std::size_t nodes, const std::vector<std::pair<int, int>>& edges) {
  Space space = spaceOfPlaces(edges.size());
  space.hubWidth = 2;
  space.nrOfHubs = nodes;
  for (const auto& [from, to] : edges) {
    if (from < 0 || to < 0 || std::max(from, to) >= static_cast<int>(nodes))
      throw std::invalid_argument(
          fmt::format("There is no edge from node {} to node {}: nodes are 0 to {}.", from, to, nodes - 1));
    space.hubs.insert(space.hubs.end(), {from, to});
  }
  return space;
}

Space spaceOfPlaces(std::size_t places) {
  Space space;
  space.places = places;
  return space;
}

Space renumbered(const Space& space, const std::vector<std::int32_t>& placeOfSlot) {
  const auto slots = static_cast<std::int32_t>(placeOfSlot.size());
  std::vector<std::int32_t> slotOf(space.places + 1, slots);
  for (std::int32_t slot = 0; slot < slots; ++slot)
    if (placeOfSlot[static_cast<std::size_t>(slot)] >= 0)
      slotOf[static_cast<std::size_t>(placeOfSlot[static_cast<std::size_t>(slot)])] = slot;
  Space result = space;
  result.places = placeOfSlot.size();
  result.neighbours = remapped(space.neighbours, space.width, placeOfSlot, slots,
                               [&](std::int32_t place) { return slotOf[static_cast<std::size_t>(place)]; });
  result.hubs = remapped(space.hubs, space.hubWidth, placeOfSlot, static_cast<std::int32_t>(space.nrOfHubs),
                         [](std::int32_t hub) { return hub; });
  result.voxels.clear();
  for (const std::int32_t place : placeOfSlot)
    if (space.isOfVoxels())
      result.voxels.push_back(place < 0 ? space.grid.voxels()
                                        : space.voxels[static_cast<std::size_t>(place)]);
  return result;
}

}  // namespace inference
