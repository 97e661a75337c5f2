#include "workbench/map_set_reply.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>

#include "inspect/shown_map.h"
#include "results/map_words.h"
#include "tav/map_kinds.h"
#include "workbench/affine_json.h"
#include "workbench/packed_arrays.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;

// Files have names alone: "faces: dTAV IT".
std::optional<tav::MapType> kindOf(const std::string& name) {
  std::optional<tav::MapType> found;
  for (int type = 0; type < tav::kNrOfMapTypes; ++type) {
    const auto kind = static_cast<tav::MapType>(type);
    if (name.ends_with(std::string(": ") + tav::mapKind(kind).label)) found = kind;
  }
  return found;
}

bool hasNegativeColours(const formats::Map& map) {
  return map.negativeColorFrom != 0 || map.negativeColorTo != 0;
}

void addWords(const formats::Map& map, Json& json) {
  const std::optional<tav::MapType> kind = kindOf(map.name);
  const study::SignWords signs =
      kind ? study::signWords(*kind, "the reference")
           : study::SignWords{"positive", hasNegativeColours(map) ? "negative" : ""};
  json["kind"] = kind ? Json(tav::mapKind(*kind).keyword) : Json();
  json["positive"] = signs.positive;
  json["negative"] = signs.negative.empty() ? Json() : Json(signs.negative);
}

// "thres q=0.050"; none for a name of another form.
std::optional<double> qOf(const std::string& thresholdName) {
  const std::size_t at = thresholdName.find("q=");
  if (at == std::string::npos) return std::nullopt;
  const double q = std::strtod(thresholdName.c_str() + at + 2, nullptr);
  return q > 0 ? std::optional(q) : std::nullopt;
}

Json setThresholds(const formats::MapSet& set, const formats::Map& map) {
  Json thresholds = Json::array();
  if (!inspect::hasThresholds(map)) return thresholds;
  for (std::size_t i = 0; i < map.thresholds.size(); ++i) {
    const std::optional<double> q = qOf(set.thresholdNames.at(i));
    const float value = map.thresholds[i];
    if (q) thresholds.push_back({{"q", *q}, {"threshold", std::isfinite(value) ? Json(value) : Json()}});
  }
  return thresholds;
}

Json setMapJson(const formats::MapSet& set, std::size_t index) {
  const formats::Map& map = set.maps[index];
  Json json{{"type", std::to_string(index)}, {"name", map.name}};
  addWords(map, json);
  json["thresholds"] = setThresholds(set, map);
  json["lower"] = map.lowerThreshold;
  return json;
}

}  // namespace

std::string encodedMapSet(const formats::MapSet& set) {
  const io::GridSize size = set.grid();
  Json header{{"grid", {{"size", {size.x, size.y, size.z}}, {"affine", affineJson(set.affine)}}},
              {"voxels", size.voxels()},
              {"maps", Json::array()}};
  std::vector<PackedArray> arrays;
  for (std::size_t i = 0; i < set.maps.size(); ++i) {
    header["maps"].push_back(setMapJson(set, i));
    const Json array{{"type", std::to_string(i)}, {"what", "value"}, {"format", "float32"}, {"scale", 1}};
    arrays.push_back({array, bytesOf(set.maps[i].values)});
  }
  return packed(std::move(header), arrays);
}

}  // namespace workbench
