// A map seen through the brain: the strongest value along each line of sight, from three sides, as SVG.
#ifndef TAVMAP_REPORT_GLASS_BRAIN_H
#define TAVMAP_REPORT_GLASS_BRAIN_H

#include <cstddef>
#include <functional>
#include <string>

#include "render/pixels.h"
#include "report/page_grid.h"

namespace report {

struct GlassMap {
  // All of a voxel, by its place in upright order.
  std::function<bool(std::size_t)> isInside;        // part of the brain's outline
  std::function<float(std::size_t)> strength;       // above 0: is shown, the larger before the smaller
  std::function<render::Rgba(std::size_t)> colour;  // of what is shown
};

// From the left (front to the left), from behind and from above (left on the left); sizes in millimetres of
// the brain. label: what a person who cannot see it is told.
[[nodiscard]] std::string glassBrain(const PageGrid& grid, const GlassMap& map, const std::string& label);

}  // namespace report

#endif
