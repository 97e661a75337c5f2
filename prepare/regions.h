// Reference regions as lists of voxels of the runs' grid: from label images, masks, spheres and
// typed voxels.
#ifndef TAVMAP_PREPARE_REGIONS_H
#define TAVMAP_PREPARE_REGIONS_H

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "prepare/label_volume.h"
#include "request/request.h"

namespace study {

// Where a region comes from.
struct RegionSource {
  ReferenceKind kind = ReferenceKind::kVoxels;
  std::filesystem::path image, table;  // empty: none
  std::int32_t label = 0;              // its value in the image, and its name in the table
  std::string labelName;
  std::string grid;          // of the image, in words
  bool isResampled = false;  // the image has another grid than the runs
  std::array<double, 3> centreMm{};
  double radiusMm = 0;
  std::string rule = {};  // as in LabelVolume
};

struct Region {
  std::string name;
  std::vector<std::int32_t> coordinates;  // 3 per voxel, indices from 0, in storage order
  std::vector<std::string> notes;         // what was left out, in words
  RegionSource source = {};
  [[nodiscard]] int voxels() const { return static_cast<int>(coordinates.size() / 3); }
};

// Where regions are drawn: the runs' grid and, if there are masks, the voxels that all of them
// contain (empty: every voxel).
struct RegionSpace {
  Grid grid;
  std::vector<bool> mask;
  // True: voxels outside the mask are left out. False: they stay, as the plug-in would average them.
  bool insideMaskOnly = true;
};

// A region of which less than this is left by the grid of the runs and by the mask is refused.
inline constexpr double kLeastShareOfRegion = 0.1;

// One region per label asked for, in the order asked for; "all": ascending, background left out.
// Labels are names or indices. Throws InputError for an unknown label (with the nearest known one) and for
// one of which less than a tenth is left; of all labels such are left out, with a note.
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
