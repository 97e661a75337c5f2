#include "report/condition_view.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "formats/nifti.h"
#include "results/map_words.h"
#include "tav/map_kinds.h"

namespace report {
namespace {

std::vector<float> readUpright(const StudyOutputs& outputs, const PageGrid& grid, const std::string& file) {
  const formats::Image3D image = formats::readImage(outputs.path(file));
  formats::requireSameGrid(image.header, outputs.path(file), grid.header(), outputs.prefix);
  return grid.upright(image.values);
}

std::vector<std::uint8_t> readCodes(const StudyOutputs& outputs, const PageGrid& grid,
                                    const std::string& file) {
  const std::vector<float> values = readUpright(outputs, grid, file);
  std::vector<std::uint8_t> codes;
  codes.reserve(values.size());
  for (const float value : values) codes.push_back(static_cast<std::uint8_t>(value));
  return codes;
}

bool holdsValue(std::uint8_t code) {
  return code == static_cast<std::uint8_t>(study::StatusCode::kComputed) ||
         code == static_cast<std::uint8_t>(study::StatusCode::kInsideReference);
}

float largestMagnitude(const MapView& view, const std::vector<std::uint8_t>& status) {
  float largest = 0;
  for (std::size_t i = 0; i < status.size(); ++i) {
    const bool isComputed = status[i] == static_cast<std::uint8_t>(study::StatusCode::kComputed);
    if (isComputed && std::isfinite(view.values[i])) largest = std::max(largest, std::abs(view.values[i]));
  }
  return largest;
}

// Of the largest q; unset when no voxel survives, or for a map without thresholds.
std::optional<double> thresholdShown(const study::MapResult& map) {
  if (map.thresholds.empty() || map.thresholds.back().outsideReference == 0) return std::nullopt;
  return map.thresholds.back().threshold;
}

// Empty when there are none.
std::vector<std::uint8_t> passingClusters(const StudyOutputs& outputs, const PageGrid& grid,
                                          const study::MapResult& map) {
  std::vector<std::uint8_t> clusters;
  if (map.familyWise.empty()) return clusters;
  for (const float p : readUpright(outputs, grid, map.familyWise.clusterFile))
    clusters.push_back(p <= static_cast<float>(study::kFamilyWiseAlpha) ? 1 : 0);
  return clusters;
}

MapView readMap(const StudyOutputs& outputs, const PageGrid& grid, const study::ConditionRecord& record,
                const std::vector<std::uint8_t>& status, std::size_t index) {
  MapView map;
  map.map = &record.maps[index];
  map.index = index;
  map.values = readUpright(outputs, grid, map.map->file);
  for (std::size_t i = 0; i < map.values.size(); ++i)
    if (!holdsValue(status[i])) map.values[i] = std::numeric_limits<float>::quiet_NaN();
  map.clusters = passingClusters(outputs, grid, *map.map);
  if (!map.map->pFile.empty()) map.minusLogP = readUpright(outputs, grid, map.map->pFile);
  const float factor = std::max(1.0F, tav::mapKind(map.map->type).range.factor);
  map.scale =
      scaleOf(thresholdShown(*map.map), factor, largestMagnitude(map, status), study::hasSign(map.map->type));
  return map;
}

}  // namespace

ConditionView readConditionView(const StudyOutputs& outputs, const PageGrid& grid, std::size_t reference,
                                std::size_t condition) {
  ConditionView view;
  view.reference = reference;
  view.condition = condition;
  view.record = &outputs.references[reference].record.conditions[condition];
  view.status = readCodes(outputs, grid, view.record->statusFile);
  for (const std::uint8_t code : view.status)
    view.region.push_back(code == static_cast<std::uint8_t>(study::StatusCode::kInsideReference) ? 1 : 0);
  if (!view.record->direction.empty())
    view.directions = readCodes(outputs, grid, view.record->direction.file);
  for (std::size_t i = 0; i < view.record->maps.size(); ++i)
    view.maps.push_back(readMap(outputs, grid, *view.record, view.status, i));
  return view;
}

MapView readMapView(const StudyOutputs& outputs, const PageGrid& grid,
                    const study::ConditionRecord& condition, std::size_t index) {
  return readMap(outputs, grid, condition, readCodes(outputs, grid, condition.statusFile), index);
}

}  // namespace report
