// Reference regions as lists of voxels of the runs' grid: from label images, masks, spheres and
// typed voxels.
#ifndef TAVMAP_PREPARE_REGIONS_H
#define TAVMAP_PREPARE_REGIONS_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "prepare/grid.h"
#include "request/request.h"

namespace study {

struct Region {
  std::string name;
  std::vector<std::int32_t> coordinates;  // 3 per voxel, indices from 0, in storage order
  std::vector<std::string> notes;         // what was left out, in words
  [[nodiscard]] int voxels() const { return static_cast<int>(coordinates.size() / 3); }
};

// An image of whole numbers on a grid of its own, with the names of its labels (may be empty; label
// 0 is background).
struct LabelVolume {
  Grid grid;
  std::vector<std::int32_t> labels;
  std::map<std::int32_t, std::string> names;
  std::string file;  // for messages
};

// The name of a label, "label7" when there is none for 7.
[[nodiscard]] std::string labelName(const LabelVolume& image, std::int32_t value);

// Where regions are drawn: the runs' grid and, if there are masks, the voxels that all of them
// contain (empty: every voxel).
struct RegionSpace {
  Grid grid;
  std::vector<bool> mask;
  // True: voxels outside the mask are left out. False: they stay, as the plug-in would average them.
  bool insideMaskOnly = true;
};

// Values of the image at the centres of the space's voxels: the same voxels when the grids agree,
// else those of the nearest voxel (labels cannot be interpolated), 0 outside the image.
[[nodiscard]] std::vector<std::int32_t> labelsOnGrid(const LabelVolume& image, const Grid& grid);

// One region per label asked for, in the order asked for; "all": ascending, background left out.
// Labels are names or indices. Throws InputError for an unknown label (with the nearest known one),
// and, unless all are asked for, for one without a voxel in the mask.
[[nodiscard]] std::vector<Region> labelRegions(const ReferenceRequest& request, const LabelVolume& image,
                                               const RegionSpace& space, const std::string& where);
// Voxels that are not 0.
[[nodiscard]] Region maskRegion(const ReferenceRequest& request, const LabelVolume& image,
                                const RegionSpace& space, const std::string& where);
// Voxels whose centre lies within the radius, borders included.
[[nodiscard]] Region sphereRegion(const ReferenceRequest& request, const RegionSpace& space,
                                  const std::string& where);
[[nodiscard]] Region voxelRegion(const ReferenceRequest& request, const RegionSpace& space,
                                 const std::string& where);

}  // namespace study

#endif
