#include "report/thumbnail.h"

#include <algorithm>
#include <array>

#include "formats/nifti.h"
#include "render/slice_choice.h"
#include "report/condition_view.h"

namespace report {
namespace {

render::Rgba over(std::uint8_t grey, const render::Rgba& colour) {
  const auto mixed = [&](std::uint8_t value) {
    return static_cast<std::uint8_t>((value * colour.alpha + grey * (255 - colour.alpha)) / 255);
  };
  return {mixed(colour.red), mixed(colour.green), mixed(colour.blue), 255};
}

// A quarter from below, the peak's, a quarter from above.
std::array<int, 3> slicesOf(const PageGrid& grid, const std::vector<float>& underlay, int peak) {
  std::vector<int> spread = render::chooseSlices(grid.view(), underlay, 4);
  spread.resize(4, spread.back());
  return {spread[1], peak, spread[2]};
}

}  // namespace

const study::MapResult* mainMap(const study::ConditionRecord& condition) {
  for (const study::MapResult& map : condition.maps)
    if (map.type == tav::DTAV) return &map;
  return condition.maps.empty() ? nullptr : condition.maps.data();
}

Thumbnails::Thumbnails(const StudyOutputs& outputs)
    : outputs_(outputs),
      grid_(formats::readImageHeader(outputs.path(outputs.references[0].record.conditions[0].statusFile))),
      underlay_(readUnderlay(outputs, grid_)),
      levels_(grid_.upright(greyLevels(underlay_.values, underlay_.brightness))) {}

std::string Thumbnails::of(std::size_t reference, std::size_t condition) const {
  const study::ConditionRecord& record = outputs_.references[reference].record.conditions[condition];
  const study::MapResult* map = mainMap(record);
  const MapView view =
      readMapView(outputs_, grid_, record, static_cast<std::size_t>(map - record.maps.data()));
  const MapOverlay overlay(view.scale);
  const int width = grid_.view().dim(0), height = grid_.view().dim(1);
  render::Pixels pixels(3 * width, height);
  const auto slices = slicesOf(grid_, underlay_.values, grid_.view().position(map->peakVoxel)[2]);
  for (int panel = 0; panel < 3; ++panel) {
    std::size_t voxel = static_cast<std::size_t>(slices[static_cast<std::size_t>(panel)]) *
                        static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    for (int front = 0; front < height; ++front)
      for (int right = 0; right < width; ++right, ++voxel)
        pixels.at(panel * width + right, height - 1 - front) =
            over(levels_[voxel], overlay.colour(view.values[voxel]));
  }
  return pixels.png();
}

}  // namespace report
