// An image of whole numbers on a grid of its own, and what becomes of it on the grid of the runs.
#ifndef TAVMAP_PREPARE_LABEL_VOLUME_H
#define TAVMAP_PREPARE_LABEL_VOLUME_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "prepare/grid.h"

namespace study {

// With the names of its labels (may be empty; label 0 is background).
struct LabelVolume {
  Grid grid;
  std::vector<std::int32_t> labels;
  std::map<std::int32_t, std::string> names;
  std::string file;        // for messages
  std::string table = {};  // of the names; empty: none
  std::string rule = {};   // how labels were made from another kind of image, in words; empty: they were not
  std::string question = {};  // what a reader should make sure of, in words; empty: nothing
};

// The name of a label, "label7" when there is none for 7.
[[nodiscard]] std::string labelName(const LabelVolume& image, std::int32_t value);

// Values of the image at the centres of the grid's voxels: the same voxels when the grids agree, else
// those of the nearest voxel (labels cannot be interpolated), 0 outside the image. Throws InputError for
// an image whose affine cannot be inverted.
[[nodiscard]] std::vector<std::int32_t> labelsOnGrid(const LabelVolume& image, const Grid& grid);

// Voxels of a region on the grid that it was drawn on, and how many of them have their centre outside the
// grid of the runs.
struct Reach {
  std::size_t voxels = 0, beyond = 0;
  [[nodiscard]] double shareInside() const;
};

// The reach of every label but 0; empty when the image has the grid itself.
[[nodiscard]] std::map<std::int32_t, Reach> reachOfLabels(const LabelVolume& image, const Grid& grid);

// Whether the voxel's centre lies within the radius, borders included.
[[nodiscard]] bool isInSphere(const formats::Point& centreMm, double radiusMm, const Grid& grid,
                              const std::array<int, 3>& voxel);
// Indices of the grid's voxels in the sphere, ascending.
[[nodiscard]] std::vector<std::size_t> voxelsInSphere(const formats::Point& centreMm, double radiusMm,
                                                      const Grid& grid);
// Of a sphere, on the grid as if it went on beyond its ends; all inside for one of more than 300 voxels.
[[nodiscard]] Reach reachOfSphere(const formats::Point& centreMm, double radiusMm, const Grid& grid);

}  // namespace study

#endif
