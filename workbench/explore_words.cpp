#include "workbench/explore_words.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "results/map_words.h"
#include "tav/map_kinds.h"
#include "workbench/affine_json.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;

Json runsJson(const study::StudyPlan& plan) {
  Json runs = Json::array();
  for (const study::RunPlan& run : plan.runs)
    runs.push_back({{"name", run.request.name},
                    {"volumes", run.volumes.volumes - run.volumes.dropped},
                    {"trSeconds", run.volumes.trSeconds},
                    {"censored", run.censored}});
  return runs;
}

Json conditionsJson(const study::StudyPlan& plan) {
  Json conditions = Json::array();
  for (const study::PlannedCondition& condition : plan.conditions) {
    Json intervals = Json::array();
    for (const study::PlannedSet& set : condition.sets)
      for (const study::VolumeRange& range : set.ranges)
        intervals.push_back({{"run", set.target}, {"first", range.first}, {"last", range.last}});
    conditions.push_back(
        {{"name", condition.name}, {"volumes", condition.totalVolumes}, {"intervals", intervals}});
  }
  return conditions;
}

std::array<double, 3> middleOf(const study::Region& region, const study::Grid& grid) {
  std::array<double, 3> sum{};
  for (int voxel = 0; voxel < region.voxels(); ++voxel) {
    const std::int32_t* const at = &region.coordinates[3 * static_cast<std::size_t>(voxel)];
    const std::array<double, 3> mm = grid.toMm({at[0], at[1], at[2]});
    for (std::size_t axis = 0; axis < 3; ++axis) sum[axis] += mm[axis] / region.voxels();
  }
  return sum;
}

Json labelsJson(const live::LoadedStudy& study) {
  Json labels = Json::array();
  if (!study.atlas) return labels;
  for (const auto& [id, region] : study.atlas->regions)
    labels.push_back({{"id", id},
                      {"name", region.name},
                      {"voxels", region.voxels()},
                      {"mm", middleOf(region, study.plan.space.grid)}});
  return labels;
}

Json mapsJson(const study::Settings& settings) {
  Json maps = Json::array();
  for (const tav::MapType type : settings.mapTypes) {
    const tav::MapKind& kind = tav::mapKind(type);
    const study::SignWords signs = study::signWords(type, "the reference");
    maps.push_back({{"type", kind.keyword},
                    {"name", kind.label},
                    {"hasThresholds", kind.range.isSearched},
                    {"unit", study::mapUnits(type, "the map scale factor")},
                    {"positive", signs.positive},
                    {"negative", signs.negative.empty() ? Json() : Json(signs.negative)}});
  }
  return maps;
}

Json settingsJson(const study::StudyPlan& plan) {
  const study::Settings& settings = plan.request.settings;
  Json json{{"order", plan.order},
            {"maxOrder", settings.maxOrder},
            {"draws", settings.nullDraws},
            {"qValues", settings.qValues}};
  const study::RunRequest& run = plan.request.runs.at(0);
  if (run.confounds.empty()) return json;
  const double limit = run.censoring.fdThresholdMm;
  json["censoring"] = {{"fdThresholdMm", limit > 0 ? Json(limit) : Json()}};
  if (run.confoundTerms.size() == 1)
    json["confounds"] = run.confoundTerms[0];
  else if (run.confoundTerms.empty())
    json["confounds"] = "none";
  else
    json["confounds"] = run.confoundTerms;
  return json;
}

Json presetsJson(const study::StudyPlan& plan) {
  if (plan.request.runs.at(0).confounds.empty()) return Json::array();
  return {{{"id", "none"}, {"words", "none"}},
          {{"id", "6motion"}, {"words", "translations and rotations"}},
          {{"id", "24motion"}, {"words", "those, their derivatives and squares"}},
          {{"id", "9p"}, {"words", "motion, white matter, cerebrospinal fluid, global signal (9)"}},
          {{"id", "36p"}, {"words", "those, their derivatives and squares (36)"}}};
}

Json modelJson(const std::optional<live::FittedModel>& model) {
  if (!model) return nullptr;
  Json json = Json::object();
  if (!model->onReference.empty()) json["on the reference's past"] = model->onReference;
  if (!model->onVoxel.empty()) json["on the voxel's past"] = model->onVoxel;
  json["error variance"] = model->errorVariance;
  return json;
}

Json seriesJson(const live::RunLook& run, const study::StudyPlan& plan) {
  const auto found = std::find_if(plan.runs.begin(), plan.runs.end(),
                                  [&](const study::RunPlan& one) { return one.request.name == run.run; });
  Json intervals = Json::array(), censored = Json::array();
  for (const auto& [first, length] : run.intervals) intervals.push_back({first, first + length - 1});
  for (std::size_t t = 0; t < run.voxel.size(); ++t)
    if (!found->kept[t + static_cast<std::size_t>(run.dropped)]) censored.push_back(t);
  return {{"run", run.run},     {"trSeconds", run.trSeconds}, {"reference", run.reference},
          {"voxel", run.voxel}, {"intervals", intervals},     {"censored", censored}};
}

Json orNull(float value) {
  return std::isfinite(value) ? Json(value) : Json();
}

Json mapValuesJson(const VoxelToSend& sent, const live::LiveMap& map) {
  const auto nulls = sent.nulls.find(map.type);
  Json draws = Json::array();
  if (nulls != sent.nulls.end()) draws = nulls->second;
  return {{"type", tav::mapKind(map.type).keyword},
          {"value", orNull(map.values[sent.index])},
          {"p", map.p.empty() ? Json() : orNull(map.p[sent.index])},
          {"z", nullptr},
          {"null", draws}};
}

std::string statusWords(const VoxelToSend& sent) {
  if (sent.maps.isReference[sent.index]) return "part of the reference";
  switch (sent.maps.status[sent.index]) {
    case tav::VoxelStatus::kComputed:
      return "computed";
    case tav::VoxelStatus::kBelowInclusion:
      return "below the inclusion threshold";
    case tav::VoxelStatus::kIllDefined:
      return "no model fits";
    case tav::VoxelStatus::kNotFinite:
      return "not finite";
  }
  return "";
}

std::array<int, 3> voxelOf(const io::GridSize& size, std::size_t cell) {
  const auto x = static_cast<std::size_t>(size.x), plane = x * static_cast<std::size_t>(size.y);
  return {static_cast<int>(cell % x), static_cast<int>(cell % plane / x), static_cast<int>(cell / plane)};
}

}  // namespace

Json studyJson(const live::LoadedStudy& study) {
  const study::StudyPlan& plan = study.plan;
  const io::GridSize size = plan.space.grid.size;
  return {{"state", "ready"},
          {"title", plan.request.title},
          {"memoryBytes", study.bytes},
          {"grid", {{"size", {size.x, size.y, size.z}}, {"affine", affineJson(plan.space.grid.affine)}}},
          {"voxels", study.cells.size()},
          {"runs", runsJson(plan)},
          {"conditions", conditionsJson(plan)},
          {"labels", labelsJson(study)},
          {"maps", mapsJson(plan.request.settings)},
          {"settings", settingsJson(plan)},
          {"confoundPresets", presetsJson(plan)},
          {"warnings", plan.cautions},
          {"hasAnatomy", !plan.request.anatomy.empty()},
          {"hasLabels", study.atlas.has_value()}};
}

Json voxelJson(const VoxelToSend& sent) {
  const study::StudyPlan& plan = sent.study.plan;
  const std::size_t cell = sent.study.cells[sent.index];
  const std::array<int, 3> voxel = voxelOf(plan.space.grid.size, cell);
  Json json{{"voxel", voxel}, {"cell", cell}, {"mm", plan.space.grid.toMm(voxel)}, {"label", nullptr}};
  if (plan.places != nullptr) json["label"] = plan.places->nameAt(cell);
  json["status"] = statusWords(sent);
  json["series"] = Json::array();
  for (const live::RunLook& run : sent.look.runs) json["series"].push_back(seriesJson(run, plan));
  json["lagged"] = Json::array();
  for (const live::LaggedCorrelation& one : sent.look.lagged)
    json["lagged"].push_back({{"lag", one.lag}, {"r", one.r}});
  json["model"] = {{"order", sent.maps.ask.order},
                   {"samples", sent.look.samples},
                   {"reference alone", modelJson(sent.look.referenceAlone)},
                   {"voxel alone", modelJson(sent.look.voxelAlone)},
                   {"reference, jointly", modelJson(sent.look.reference)},
                   {"voxel, jointly", modelJson(sent.look.voxel)}};
  json["maps"] = Json::array();
  for (const live::LiveMap& map : sent.maps.maps) json["maps"].push_back(mapValuesJson(sent, map));
  return json;
}

Json emptyVoxelJson(const std::array<int, 3>& voxel, const std::array<double, 3>& mm, const char* status) {
  return {{"voxel", voxel},          {"mm", mm},
          {"label", nullptr},        {"status", status},
          {"series", Json::array()}, {"lagged", Json::array()},
          {"model", nullptr},        {"maps", Json::array()}};
}

std::array<int, 3> voxelAt(const study::Grid& grid, const std::array<double, 3>& mm) {
  const formats::Affine inverse = formats::inverse(grid.affine);
  std::array<int, 3> voxel{};
  for (int row = 0; row < 3; ++row) {
    const double at = inverse.at(row, 0) * mm[0] + inverse.at(row, 1) * mm[1] + inverse.at(row, 2) * mm[2] +
                      inverse.at(row, 3);
    voxel[static_cast<std::size_t>(row)] = static_cast<int>(std::floor(std::clamp(at, -1e6, 1e6) + 0.5));
  }
  return voxel;
}

}  // namespace workbench
