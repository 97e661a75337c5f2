// A group's t map ready to be drawn: upright, with what passes.
#ifndef TAVMAP_REPORT_GROUP_VIEW_H
#define TAVMAP_REPORT_GROUP_VIEW_H

#include <cstdint>
#include <string>
#include <vector>

#include "report/group_outputs.h"
#include "report/map_overlay.h"
#include "report/page_grid.h"

namespace report {

struct GroupView {
  std::vector<float> t;                // NaN where nothing is tested
  std::vector<std::uint8_t> passes;    // by enhancement where it was asked for, else by the maximum
  std::vector<std::uint8_t> clusters;  // in a cluster that passes by its mass
  OverlayScale scale;                  // threshold: the smallest |t| of what passes; unset when nothing does
  [[nodiscard]] render::Rgba colour(std::size_t voxel) const;
};

// Throws formats::FileError.
[[nodiscard]] GroupView readGroupView(const GroupOutputs& outputs, const PageGrid& grid,
                                      const TestedCell& cell);

// What the maps lie on, in stored order: the mean of the participants' anatomies, or mean images, that lie on
// the grid; else what was tested.
struct GroupUnderlay {
  std::vector<float> values;
  std::string words;
  double brightness = 1;
};
[[nodiscard]] GroupUnderlay readGroupUnderlay(const GroupOutputs& outputs, const PageGrid& grid);

}  // namespace report

#endif
