// What a map set shows, in a few lines a map.
#ifndef TAVMAP_HOST_MAP_SUMMARY_H
#define TAVMAP_HOST_MAP_SUMMARY_H

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "formats/affine.h"
#include "host/map_files.h"
#include "host/nr_map_set.h"
#include "host/workspace.h"

namespace host {

struct MapPeak {
  float value;              // of the largest magnitude
  std::array<int, 3> cell;  // x, y, z from 0
  formats::Point millimetres;
  std::string voi;  // the first VOI of the list that the cell belongs to; or empty
};

struct MapSummary {
  std::string name;
  std::vector<float> thresholds;   // as the map stores them
  std::vector<std::size_t> above;  // voxels of a magnitude above each threshold
  float lowerThreshold;
  std::size_t aboveLowerThreshold;
  std::optional<MapPeak> peak;  // none when every value is 0 or not finite
};

[[nodiscard]] std::vector<MapSummary> summaryOf(const MapSet& maps, const Workspace& workspace);

// One paragraph a map; says plainly when nothing is above a threshold.
[[nodiscard]] std::string summaryText(const MapSet& maps, const Workspace& workspace);

}  // namespace host

#endif
