// One map over the anatomy as a mosaic of axial slices, as SVG: the patient's left on the left, the front at
// the top, the reference outlined. Sizes in millimetres of the brain.
#ifndef TAVMAP_REPORT_MOSAIC_H
#define TAVMAP_REPORT_MOSAIC_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "report/map_overlay.h"
#include "report/page_grid.h"
#include "report/underlay_sheet.h"

namespace report {

struct Outline {
  const std::vector<std::uint8_t>& region;  // non-zero inside; upright order; not owned
  const char* colour;                       // "#0ff"
};

struct MosaicMap {
  std::string id;                                   // of the picture; no other on its page has it
  std::function<render::Rgba(std::size_t)> colour;  // of a voxel, by its place in upright order
  std::vector<Outline> outlines;                    // later ones lie on earlier ones
};

inline constexpr int kMosaicSlices = 15;

// At most kMosaicSlices slices from below to above, spread over those that hold anatomy. Each of `wanted`
// (such as the peaks of clusters, the most important first) takes the place of the nearest that is not wanted
// itself.
[[nodiscard]] std::vector<int> mosaicSlices(const PageGrid& grid, const std::vector<float>& underlay,
                                            const std::vector<int>& wanted);

// label: what a person who cannot see it is told. The definition of the underlay's sheet must stand in the
// same document.
[[nodiscard]] std::string mosaic(const PageGrid& grid, const MosaicMap& map, const std::vector<int>& slices,
                                 const std::string& label);

// A bar of the scale's colours with its numbers and the unit, as SVG.
[[nodiscard]] std::string colourBar(const OverlayScale& scale, const std::string& unit);

}  // namespace report

#endif
