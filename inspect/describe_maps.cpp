#include <algorithm>
#include <cmath>
#include <optional>

#include "formats/file_error.h"
#include "formats/label_table.h"
#include "formats/map_set.h"
#include "formats/nifti.h"
#include "inspect/describe.h"

namespace inspect {
namespace {

using formats::Json;
using formats::Map;
using formats::MapSet;
using formats::Point;

// Names the region at a place in millimetres.
class Atlas {
 public:
  explicit Atlas(const DescribeOptions& options) {
    if (options.labelsPath.empty()) return;
    image_ = formats::readLabelImage(options.labelsPath);
    toVoxel_ = formats::inverse(image_->header.affine);
    const std::string table =
        options.tablePath.empty() ? formats::labelTableBeside(options.labelsPath) : options.tablePath;
    if (!table.empty()) table_ = formats::readLabelTable(table);
  }

  // Null without an atlas; "no region" for background and places outside the image.
  [[nodiscard]] Json regionAt(const Point& mm) const {
    if (!image_) return nullptr;
    const Point index = formats::apply(toVoxel_, mm);
    const auto& size = image_->header.size;
    const double x = std::nearbyint(index[0]), y = std::nearbyint(index[1]), z = std::nearbyint(index[2]);
    const bool inside = x >= 0 && x < size.x && y >= 0 && y < size.y && z >= 0 && z < size.z;
    if (!inside) return "no region";
    const std::size_t at = size.index(static_cast<int>(x), static_cast<int>(y), static_cast<int>(z));
    const std::int32_t label = image_->labels[at];
    return label == 0 ? "no region" : table_.nameOf(label);
  }

 private:
  std::optional<formats::LabelImage> image_;
  formats::Affine toVoxel_;
  formats::LabelTable table_;
};

Json numberOrNull(float value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

// Voxels that reach a threshold by their magnitude, as the search for it counts. Zeros are
// background; a threshold that is not a number lets none pass.
std::size_t voxelsReaching(const Map& map, float threshold) {
  return static_cast<std::size_t>(std::count_if(map.values.begin(), map.values.end(), [&](float value) {
    return value != 0 && std::abs(value) >= threshold;
  }));
}

Json thresholdsJson(const MapSet& set, const Map& map) {
  Json list = Json::array();
  for (std::size_t i = 0; i < map.thresholds.size(); ++i) {
    list.push_back({{"name", set.thresholdNames[i]},
                    {"value", numberOrNull(map.thresholds[i])},
                    {"voxels_reaching_it", voxelsReaching(map, map.thresholds[i])}});
  }
  return list;
}

std::optional<std::size_t> peakOf(const Map& map) {
  std::optional<std::size_t> peak;
  for (std::size_t i = 0; i < map.values.size(); ++i) {
    if (!std::isfinite(map.values[i]) || map.values[i] == 0) continue;
    if (!peak || std::abs(map.values[i]) > std::abs(map.values[*peak])) peak = i;
  }
  return peak;
}

Json peakJson(const MapSet& set, const Map& map, std::size_t index, const Atlas& atlas) {
  const auto sizeX = static_cast<std::size_t>(set.grid().x), sizeY = static_cast<std::size_t>(set.grid().y);
  const std::size_t x = index % sizeX, y = index / sizeX % sizeY, z = index / sizeX / sizeY;
  const Point mm =
      formats::apply(set.affine, {static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)});
  Json json{{"value", map.values[index]}, {"voxel", {x, y, z}}, {"mm", {mm[0], mm[1], mm[2]}}};
  const Json region = atlas.regionAt(mm);
  if (!region.is_null()) json["region"] = region;
  return json;
}

Json mapJson(const MapSet& set, const Map& map, const Atlas& atlas) {
  Json json{{"name", map.name}};
  float least = 0, largest = 0;
  for (const float value : map.values) {
    if (std::isfinite(value)) least = std::min(least, value), largest = std::max(largest, value);
  }
  json["value_range"] = {least, largest};
  json["voxels_not_zero"] = voxelsReaching(map, 0);
  json["thresholds"] = thresholdsJson(set, map);
  const auto peak = peakOf(map);
  json["peak"] = peak ? peakJson(set, map, *peak, atlas) : Json(nullptr);
  return json;
}

}  // namespace

Json describeMapSet(const std::string& path, const DescribeOptions& options) {
  const MapSet set = formats::loadMapSet(path);
  const Atlas atlas(options);
  Json json{{"file", path}, {"kind", "map set"}, {"engine_version", set.engineVersion}};
  json["voxels"] = {set.grid().x, set.grid().y, set.grid().z};
  json["resolution"] = set.resolution;
  json["maps"] = Json::array();
  for (const auto& map : set.maps) json["maps"].push_back(mapJson(set, map, atlas));
  return json;
}

}  // namespace inspect
