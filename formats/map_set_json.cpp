#include "formats/map_set_json.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "formats/json_file.h"

namespace formats {
namespace {

constexpr const char* kFormatName = "tavmap-map-set";
constexpr int kFormatVersion = 1;

// JSON has no NaN; null stands for "there is none".
Json numberOrNull(float value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

float floatOrNan(const JsonPlace& place) {
  if (place.value().is_null()) return std::numeric_limits<float>::quiet_NaN();
  return static_cast<float>(place.number());
}

std::int32_t colorFrom(const JsonPlace& place) {
  const std::string text = place.text();
  std::uint32_t rgb = 0;
  const char* last = text.data() + text.size();
  const bool hash = text.size() == 7 && text[0] == '#';
  if (!hash || std::from_chars(text.data() + 1, last, rgb, 16).ptr != last) {
    place.fail("a color is expected", "Write it as #rrggbb");
  }
  return static_cast<std::int32_t>((rgb >> 16U) | (rgb & 0xFF00U) | ((rgb & 0xFFU) << 16U));
}

Json mapToJson(const Map& map) {
  Json json;
  json["name"] = map.name;
  json["kind"] = map.kind;
  json["lower_threshold"] = numberOrNull(map.lowerThreshold);
  json["upper_threshold"] = numberOrNull(map.upperThreshold);
  json["use_colors"] = map.useColors;
  json["positive_colors"] = {colorText(map.positiveColorFrom), colorText(map.positiveColorTo)};
  json["negative_colors"] = {colorText(map.negativeColorFrom), colorText(map.negativeColorTo)};
  json["thresholds"] = Json::array();
  for (const float threshold : map.thresholds) json["thresholds"].push_back(numberOrNull(threshold));
  return json;
}

void readColors(const JsonPlace& place, std::int32_t& from, std::int32_t& to) {
  if (place.elements() != 2) place.fail("two colors are expected", "Write [\"#rrggbb\", \"#rrggbb\"]");
  from = colorFrom(place.element(0));
  to = colorFrom(place.element(1));
}

Map mapFrom(const JsonPlace& place, std::size_t nrOfThresholds) {
  Map map;
  map.name = place.member("name").text();
  map.kind = place.member("kind").integer();
  map.lowerThreshold = floatOrNan(place.member("lower_threshold"));
  map.upperThreshold = floatOrNan(place.member("upper_threshold"));
  map.useColors = place.member("use_colors").boolean();
  readColors(place.member("positive_colors"), map.positiveColorFrom, map.positiveColorTo);
  readColors(place.member("negative_colors"), map.negativeColorFrom, map.negativeColorTo);
  const JsonPlace thresholds = place.member("thresholds");
  for (std::size_t i = 0; i < thresholds.elements(); ++i)
    map.thresholds.push_back(floatOrNan(thresholds.element(i)));
  if (map.thresholds.size() != nrOfThresholds)
    thresholds.fail("their number is not that of the names", "Compute the maps again");
  return map;
}

void readBox(const JsonPlace& box, MapSet& set) {
  set.xStart = box.member("x_start").integer();
  set.xEnd = box.member("x_end").integer();
  set.yStart = box.member("y_start").integer();
  set.yEnd = box.member("y_end").integer();
  set.zStart = box.member("z_start").integer();
  set.zEnd = box.member("z_end").integer();
  set.resolution = box.member("resolution").integer();
}

Json boxToJson(const MapSet& set) {
  return {{"x_start", set.xStart}, {"x_end", set.xEnd}, {"y_start", set.yStart},       {"y_end", set.yEnd},
          {"z_start", set.zStart}, {"z_end", set.zEnd}, {"resolution", set.resolution}};
}

}  // namespace

std::string mapSetToJson(const MapSet& set) {
  Json json;
  json["format"] = kFormatName;
  json["format_version"] = kFormatVersion;
  json["engine_version"] = set.engineVersion;
  json["box"] = boxToJson(set);
  json["threshold_names"] = set.thresholdNames;
  json["maps"] = Json::array();
  for (const auto& map : set.maps) json["maps"].push_back(mapToJson(map));
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool looksLikeMapSet(const std::string& extension) {
  return extension.substr(0, 64).find(kFormatName) != std::string::npos;
}

MapSet mapSetFromJson(const std::string& extension, const std::string& path) {
  const Json document = parseJson(extension.substr(0, extension.find('\0')), path);
  const JsonPlace root(document, path);
  const JsonPlace version = root.member("format_version");
  if (version.integer() > kFormatVersion)
    version.fail("the map set is of a newer version", "Update this program");
  MapSet set;
  set.engineVersion = root.member("engine_version").text();
  readBox(root.member("box"), set);
  const JsonPlace names = root.member("threshold_names");
  for (std::size_t i = 0; i < names.elements(); ++i) set.thresholdNames.push_back(names.element(i).text());
  const JsonPlace maps = root.member("maps");
  for (std::size_t i = 0; i < maps.elements(); ++i)
    set.maps.push_back(mapFrom(maps.element(i), names.elements()));
  return set;
}

std::string colorText(std::int32_t packed) {
  const auto bits = static_cast<std::uint32_t>(packed);
  char text[8];
  std::snprintf(text, sizeof text, "#%02x%02x%02x", bits & 0xFFU, (bits >> 8U) & 0xFFU,
                (bits >> 16U) & 0xFFU);
  return text;
}

}  // namespace formats
