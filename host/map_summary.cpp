#include "host/map_summary.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "host/answer_parsing.h"

namespace host {
namespace {

std::size_t countAbove(const LentArray<float>& values, float threshold) {
  return static_cast<std::size_t>(
      std::count_if(values.begin(), values.end(), [&](float value) { return std::abs(value) > threshold; }));
}

// The element of the largest magnitude; none when all are 0 or not finite.
std::optional<std::size_t> peakOf(const LentArray<float>& values) {
  std::optional<std::size_t> peak;
  float largest = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const float magnitude = std::abs(values.data()[i]);
    if (!std::isfinite(magnitude) || magnitude <= largest) continue;
    largest = magnitude;
    peak = i;
  }
  return peak;
}

std::array<int, 3> cellAt(const Box& box, std::size_t index) {
  const auto nx = static_cast<std::size_t>(box.cells(0));
  const auto ny = static_cast<std::size_t>(box.cells(1));
  return {static_cast<int>(index % nx), static_cast<int>(index / nx % ny), static_cast<int>(index / nx / ny)};
}

bool holds(const Voi& voi, const Box& box, const std::array<int, 3>& cell) {
  for (const std::int32_t* voxel = voi.coordinates.begin(); voxel != voi.coordinates.end(); voxel += 3) {
    bool inside = true;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const std::int32_t fromCell = voxel[axis] - (box.start[axis] + box.resolution * cell[axis]);
      inside = inside && fromCell >= 0 && fromCell < box.resolution;
    }
    if (inside) return true;
  }
  return false;
}

// Lists in Talairach millimetres are not looked up.
std::string voiAt(const VoiList* list, const Box& box, const std::array<int, 3>& cell) {
  if (list == nullptr || list->talairach) return {};
  for (const Voi& voi : list->vois)
    if (holds(voi, box, cell)) return voi.name;
  return {};
}

MapSummary summaryOf(const MapSet::Map& map, const Box& box, const Place& place, const VoiList* vois) {
  MapSummary summary{map.header.name,           {map.thresholds.begin(), map.thresholds.end()},    {},
                     map.header.lowerThreshold, countAbove(map.values, map.header.lowerThreshold), {}};
  for (float threshold : summary.thresholds) summary.above.push_back(countAbove(map.values, threshold));
  if (const std::optional<std::size_t> peak = peakOf(map.values)) {
    const std::array<int, 3> cell = cellAt(box, *peak);
    const formats::Point point{static_cast<double>(cell[0]), static_cast<double>(cell[1]),
                               static_cast<double>(cell[2])};
    summary.peak = {map.values.data()[*peak], cell, formats::apply(place.affine, point),
                    voiAt(vois, box, cell)};
  }
  return summary;
}

std::string countText(std::size_t count) {
  if (count == 0) return "no voxel";
  return std::to_string(count) + (count == 1 ? " voxel" : " voxels");
}

std::string shortText(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4g", static_cast<double>(value));
  return text;
}

std::string peakText(const MapPeak& peak) {
  char text[160];
  std::snprintf(text, sizeof text, "%.4g at cell (%d, %d, %d), (%.1f, %.1f, %.1f) mm",
                static_cast<double>(peak.value), peak.cell[0], peak.cell[1], peak.cell[2],
                peak.millimetres[0], peak.millimetres[1], peak.millimetres[2]);
  return peak.voi.empty() ? text : text + (" in " + peak.voi);
}

std::string textOf(const MapSummary& summary, const MapSet& maps) {
  std::string text = fmt::format("  {}\n", summary.name);
  const bool hasThresholds =
      std::any_of(summary.thresholds.begin(), summary.thresholds.end(), [](float t) { return t != 0.0F; });
  for (std::size_t i = 0; hasThresholds && i < summary.thresholds.size(); ++i)
    text += fmt::format("    {}: {} above {}\n", maps.thresholdName(i), countText(summary.above[i]),
                        shortText(summary.thresholds[i]));
  if (!hasThresholds)
    text += fmt::format("    shown from: {} above {}\n", countText(summary.aboveLowerThreshold),
                        shortText(summary.lowerThreshold));
  return fmt::format("{}    peak: {}\n", text,
                     summary.peak ? peakText(*summary.peak) : "none, the map is empty");
}

}  // namespace

std::vector<MapSummary> summaryOf(const MapSet& maps, const Workspace& workspace) {
  const Place place = placeOf(maps.box(), workspace);
  std::vector<MapSummary> summaries;
  for (const MapSet::Map& map : maps.maps())
    summaries.push_back(summaryOf(map, maps.box(), place, workspace.vois()));
  return summaries;
}

std::string summaryText(const MapSet& maps, const Workspace& workspace) {
  std::string text;
  for (const MapSummary& summary : summaryOf(maps, workspace)) text += textOf(summary, maps);
  return text;
}

}  // namespace host
