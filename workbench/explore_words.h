// A loaded study as the page needs to know it.
#ifndef TAVMAP_WORKBENCH_EXPLORE_WORDS_H
#define TAVMAP_WORKBENCH_EXPLORE_WORDS_H

#include <nlohmann/json_fwd.hpp>

#include "live/live_maps.h"
#include "live/loaded_study.h"
#include "live/voxel_look.h"

namespace workbench {

// Grid, runs, conditions, labels, maps with their words, settings.
[[nodiscard]] nlohmann::ordered_json studyJson(const live::LoadedStudy& study);

// What the panels show of one voxel.
struct VoxelToSend {
  const live::LoadedStudy& study;
  const live::LiveMaps& maps;
  std::size_t index;  // of the cell
  live::VoxelLook look;
  std::map<tav::MapType, std::vector<float>> nulls;  // draws of maps; empty: none are known
};
[[nodiscard]] nlohmann::ordered_json voxelJson(const VoxelToSend& sent);
// Of a place where there is nothing to show. voxel: indices in the runs' grid.
[[nodiscard]] nlohmann::ordered_json emptyVoxelJson(const std::array<int, 3>& voxel,
                                                    const std::array<double, 3>& mm, const char* status);

// The voxel of a grid in which a point lies, from 0; it may lie outside.
[[nodiscard]] std::array<int, 3> voxelAt(const study::Grid& grid, const std::array<double, 3>& mm);

}  // namespace workbench

#endif
