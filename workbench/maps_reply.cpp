#include "workbench/maps_reply.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "tav/map_kinds.h"
#include "workbench/packed_arrays.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::uint8_t kUnknownP = 255;

float largestMagnitude(const std::vector<float>& values) {
  float largest = 0;
  for (const float value : values)
    if (std::isfinite(value)) largest = std::max(largest, std::abs(value));
  return largest;
}

PackedArray shortValues(const std::vector<float>& values) {
  constexpr float kMost = 32767;
  constexpr std::int16_t kNone = -32768;
  const float largest = largestMagnitude(values), scale = largest > 0 ? largest / kMost : 1;
  std::vector<std::int16_t> codes(values.size());
  std::transform(values.begin(), values.end(), codes.begin(), [scale](float value) {
    return std::isfinite(value) ? static_cast<std::int16_t>(std::lround(value / scale)) : kNone;
  });
  return {{{"format", "int16"}, {"scale", scale}}, bytesOf(codes)};
}

PackedArray pCodes(const std::vector<float>& p) {
  static constexpr float kMostCode = 254;
  std::vector<std::uint8_t> codes(p.size());
  std::transform(p.begin(), p.end(), codes.begin(), [](float value) {
    if (!(value > 0)) return kUnknownP;
    return static_cast<std::uint8_t>(std::lround(std::min(-10 * std::log10(value), kMostCode)));
  });
  return {{{"format", "uint8"}, {"scale", 1}}, bytesOf(codes)};
}

PackedArray named(const char* type, const char* what, PackedArray array) {
  Json header{{"type", type}, {"what", what}};
  header.update(array.header);
  return {header, std::move(array.bytes)};
}

std::vector<PackedArray> arraysOf(const MapsToSend& sent) {
  std::vector<PackedArray> arrays;
  for (const live::LiveMap& map : sent.maps.maps) {
    const char* const type = tav::mapKind(map.type).keyword;
    const bool isDraft = sent.maps.care == live::Care::kDraft;
    arrays.push_back(named(type, "value",
                           isDraft
                               ? shortValues(map.values)
                               : PackedArray{{{"format", "float32"}, {"scale", 1}}, bytesOf(map.values)}));
    if (!map.p.empty()) arrays.push_back(named(type, "p", pCodes(map.p)));
    if (map.type == tav::DTAV && !sent.directions.empty())
      arrays.push_back(
          named(type, "direction", {{{"format", "uint8"}, {"scale", 1}}, bytesOf(sent.directions)}));
  }
  return arrays;
}

Json thresholdsOf(const live::LiveMap& map) {
  Json thresholds = Json::array();
  for (const tav::MapThreshold& found : map.thresholds) {
    Json one{{"q", std::round(static_cast<double>(found.q) * 1e6) / 1e6},
             {"threshold", nullptr},
             {"passing", found.nrPassing}};
    if (found.anyPasses()) one["threshold"] = found.threshold;
    thresholds.push_back(one);
  }
  return thresholds;
}

Json headerOf(const MapsToSend& sent) {
  const live::LiveMaps& maps = sent.maps;
  const bool isDraft = maps.care == live::Care::kDraft;
  Json header{{"sequence", sent.sequence},
              {"draft", isDraft},
              {"draws", isDraft ? 1 : maps.ask.draws},
              {"voxels", maps.status.size()},
              {"reference", {{"name", maps.reference}, {"voxels", maps.voxels}, {"mm", maps.mm}}},
              {"condition", maps.ask.condition},
              {"order", maps.ask.order},
              {"effectiveVolumes", maps.effectiveVolumes},
              {"elapsedMs", sent.elapsedMs},
              {"maps", Json::array()},
              {"warnings", maps.notes}};
  for (const std::string& warning : sent.warnings) header["warnings"].push_back(warning);
  for (const live::LiveMap& map : maps.maps)
    header["maps"].push_back({{"type", tav::mapKind(map.type).keyword}, {"thresholds", thresholdsOf(map)}});
  return header;
}

}  // namespace

std::string encodedMaps(const MapsToSend& sent) {
  return packed(headerOf(sent), arraysOf(sent));
}

}  // namespace workbench
