#include "report/viewer_data.h"

#include <fmt/core.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "report/sections.h"
#include "results/map_words.h"
#include "tav/map_kinds.h"

namespace report {
namespace {

using formats::Json;

template <typename T>
std::vector<T> within(const std::vector<std::uint8_t>& mask, const std::vector<T>& values) {
  std::vector<T> chosen;
  for (std::size_t i = 0; i < mask.size(); ++i)
    if (mask[i] != 0) chosen.push_back(values[i]);
  return chosen;
}

Json thresholdsJson(const study::MapResult& map) {
  Json thresholds = Json::array();
  for (const study::ThresholdResult& threshold : map.thresholds) {
    const bool survives = threshold.outsideReference > 0 && threshold.threshold;
    thresholds.push_back(
        {{"q", threshold.q}, {"value", survives ? Json(*threshold.threshold) : Json(nullptr)}});
  }
  return thresholds;
}

Json reference(const std::string& id, const CodedValues& values) {
  return {{"id", id},
          {"type", values.bits == 16 ? "u16" : "u8"},
          {"step", values.step},
          {"offset", values.offset}};
}

// Takes away what is smaller; returns the limit.
float keepStrongest(double share, std::vector<float>& values) {
  const float floor = strongest(values, share);
  for (float& value : values)
    if (std::abs(value) < floor) value = std::numeric_limits<float>::quiet_NaN();
  return floor;
}

Json mapJson(const StudyOutputs& outputs, const ConditionView& view, const MapView& map,
             const std::vector<std::uint8_t>& mask, const EmbeddingPlan& plan, std::string& volumes) {
  const study::Record& record = outputs.references[view.reference].record;
  const std::string keyword = tav::mapKind(map.map->type).keyword;
  const std::string id = placeId("vol-effect", view.reference, view.condition) + "-" + keyword;
  std::vector<float> values = within(mask, map.values);
  const float floor = plan.strongestShare < 1 ? keepStrongest(plan.strongestShare, values) : 0.0F;
  const CodedValues effect = coded(values, plan.bits);
  volumes += volumeElement(id, effect.bytes);
  const study::SignWords words = study::signWords(map.map->type, record.reference);
  Json json = {{"kind", keyword},
               {"title", fmt::format("{}: {}", keyword, study::mapTitle(map.map->type, record.reference))},
               {"unit", ""},
               {"positive", words.positive},
               {"negative", map.scale.hasSign ? Json(words.negative) : Json(nullptr)},
               {"effect", reference(id, effect)},
               {"p", nullptr},
               {"thresholds", thresholdsJson(*map.map)},
               {"fullColour", map.scale.full}};
  if (floor > 0) json["floor"] = floor;
  if (!plan.withP || map.minusLogP.empty()) return json;
  const std::string pId = placeId("vol-p", view.reference, view.condition) + "-" + keyword;
  const CodedValues p = codedFromZero(within(mask, map.minusLogP), 8);
  volumes += volumeElement(pId, p.bytes);
  json["p"] = reference(pId, p);
  return json;
}

}  // namespace

ViewerPart viewerPart(const StudyOutputs& outputs, const ConditionView& view,
                      const std::vector<std::uint8_t>& mask, const EmbeddingPlan& plan) {
  ViewerPart part;
  const std::string regionId = placeId("vol-region", view.reference, view.condition);
  part.volumes = volumeElement(regionId, view.region);
  Json direction = nullptr;
  if (!view.directions.empty()) {
    direction = placeId("vol-direction", view.reference, view.condition);
    part.volumes += volumeElement(direction.get<std::string>(), within(mask, view.directions));
  }
  Json maps = Json::array();
  for (const MapView& map : view.maps) maps.push_back(mapJson(outputs, view, map, mask, plan, part.volumes));
  part.json = {{"id", viewId(view.reference, view.condition)},
               {"reference", outputs.references[view.reference].record.reference},
               {"condition", view.record->name},
               {"region", regionId},
               {"direction", direction},
               {"maps", maps}};
  return part;
}

Json gridJson(const PageGrid& grid) {
  const render::Upright& view = grid.view();
  const render::Affine affine = view.affine();
  Json rows = Json::array();
  for (std::size_t row = 0; row < 3; ++row)
    rows.push_back({affine[4 * row], affine[4 * row + 1], affine[4 * row + 2], affine[4 * row + 3]});
  Json stored = Json::array({nullptr, nullptr, nullptr});
  for (std::size_t axis = 0; axis < 3; ++axis)
    stored[view.storedAxis(axis)] = {{"axis", axis}, {"reversed", view.isReversed(axis)}};
  return {{"size", {view.dim(0), view.dim(1), view.dim(2)}}, {"affine", rows}, {"stored", stored}};
}

}  // namespace report
