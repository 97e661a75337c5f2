#include "results/result_json.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "results/map_words.h"
#include "results/percent_encoding.h"
#include "results/record_json.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

// By ReferenceKind.
constexpr std::array<const char*, 4> kKindNames = {"labels", "mask", "sphere", "voxels"};

const RunPlan& runNamed(const ResultContext& context, const std::string& name) {
  return *std::find_if(context.runs.begin(), context.runs.end(),
                       [&](const RunPlan& run) { return run.request.name == name; });
}

RunRecord runRecord(const ResultContext& context, const SetResult& set) {
  const RunPlan& run = runNamed(context, set.target);
  RunRecord record;
  record.run = set.target;
  if (set.source != set.target) record.referenceFromRun = set.source;
  record.repetitionTime = run.volumes.trSeconds;
  record.volumes = run.volumes.volumes;
  record.volumesDropped = run.volumes.dropped;
  record.volumesCensored = run.censored;
  record.intervals = set.ranges;
  record.volumesUsed = totalLength(set.ranges);
  record.effectiveVolumes = set.effectiveVolumes;
  record.confoundsRegressed = run.confoundNames;
  record.confoundDegreesOfFreedom = run.confoundRank;
  return record;
}

std::vector<RunRecord> runRecords(const ResultContext& context, const ConditionResult& condition) {
  std::vector<RunRecord> records;
  for (const SetResult& set : condition.sets) records.push_back(runRecord(context, set));
  return records;
}

ConditionRecord conditionRecord(const ResultContext& context, const ConditionResult& condition) {
  return {condition.name,
          condition.totalVolumes,
          condition.effectiveVolumes,
          runRecords(context, condition),
          condition.statusCounts,
          condition.surrogatesIllDefined,
          condition.statusFile,
          condition.maps,
          condition.direction,
          condition.clustersFile,
          condition.evidenceFile};
}

ModelRecord modelRecord(const ResultContext& context, const ReferenceResult& reference) {
  ModelRecord model{context.request.settings, context.seed, reference.seed, context.version};
  model.settings.order = context.order;
  return model;
}

Json sourcesJson(const ResultContext& context, const ConditionResult& condition) {
  Json list = Json::array();
  const auto add = [&](const fs::path& file) {
    if (file.empty()) return;
    const Json uri = sourceUri(context.request, file);
    if (std::find(list.begin(), list.end(), uri) == list.end()) list.push_back(uri);
  };
  for (const SetResult& set : condition.sets) {
    for (const std::string& name : {set.source, set.target}) {
      const RunRequest& run = runNamed(context, name).request;
      for (const fs::path& file : {run.bold, run.mask, run.confounds, run.events}) add(file);
    }
  }
  for (const std::string& file : {context.source.image, context.source.table}) {
    if (!file.empty()) list.push_back(file);
  }
  return list;
}

// The repetition time of the runs when they agree.
Json repetitionTime(const ResultContext& context, const ConditionResult& condition) {
  const double first = runNamed(context, condition.sets[0].target).volumes.trSeconds;
  const bool same = std::all_of(condition.sets.begin(), condition.sets.end(), [&](const SetResult& set) {
    return runNamed(context, set.target).volumes.trSeconds == first;
  });
  return same ? Json(first) : Json(nullptr);
}

// What the sidecars of the runs say about the grid, where all say the same.
void addResolution(const ResultContext& context, const ConditionResult& condition, Json& json) {
  const std::string& first = runNamed(context, condition.sets[0].target).resolution;
  const bool same = std::all_of(condition.sets.begin(), condition.sets.end(), [&](const SetResult& set) {
    return runNamed(context, set.target).resolution == first;
  });
  if (same && !first.empty()) json["Resolution"] = Json::parse(first);
}

Json filtersJson(const ResultContext& context, const ConditionResult& condition) {
  Json list = Json::array();
  for (const SetResult& set : condition.sets) {
    for (const std::string& filter : runNamed(context, set.target).filters) list.push_back(filter);
  }
  return list;
}

// Where a reference comes from, and checksums of what this condition was made from.
void addOrigin(const ResultContext& context, const ConditionResult& condition, Json& json) {
  const Json sources = sourcesJson(context, condition);
  json["Sources"] = sources;
  if (!context.source.empty()) json["ReferenceSource"] = sourceJson(context.source);
  std::vector<InputRecord> inputs;
  for (const InputRecord& input : context.inputs) {
    if (std::find(sources.begin(), sources.end(), Json(input.file)) != sources.end()) inputs.push_back(input);
  }
  if (!inputs.empty()) json["Inputs"] = inputsJson(inputs);
}

void addDirection(const DirectionResult& direction, Json& json) {
  json["Direction"] = directionJson(direction);
  json["Direction"]["Note"] = kDirectionNote;
}

}  // namespace

std::string sourceUri(const Request& request, const fs::path& file) {
  const fs::path whole = fs::absolute(file).lexically_normal();
  std::string best;
  std::size_t bestLength = 0;
  for (const auto& [name, root] : request.datasets) {
    const fs::path folder = fs::absolute(root).lexically_normal();
    const fs::path relative = whole.lexically_relative(folder);
    if (relative.empty() || *relative.begin() == ".." || folder.string().size() < bestLength) continue;
    best = fmt::format("bids:{}:{}", name, percentEncoded(relative.generic_string()));
    bestLength = folder.string().size();
  }
  return best.empty() ? file.filename().string() : best;
}

const char* onGridOfRuns(bool isResampled) {
  return isResampled ? "each voxel of the runs takes the value at its centre (nearest voxel)"
                     : "the image has the grid of the runs";
}

ReferenceSource referenceSource(const Request& request, const Region& region) {
  const RegionSource& from = region.source;
  ReferenceSource source;
  source.kind = kKindNames.at(static_cast<std::size_t>(from.kind));
  if (!from.image.empty()) source.image = sourceUri(request, from.image);
  if (!from.table.empty()) source.table = sourceUri(request, from.table);
  source.labelIndex = from.label;
  source.labelName = from.labelName;
  source.rule = from.rule;
  source.grid = from.grid;
  if (!from.image.empty()) source.onGridOfRuns = onGridOfRuns(from.isResampled);
  source.centreMm = from.centreMm;
  source.radiusMm = from.radiusMm;
  return source;
}

Json mapSidecar(const ResultContext& context, const ReferenceResult& reference,
                const ConditionResult& condition, const MapResult& map) {
  Json json;
  json["Description"] =
      fmt::format("{}; condition '{}'", mapDescription(map.type, reference.name), condition.name);
  json["MapType"] = tav::MAPTYPE_NAMES[static_cast<std::size_t>(map.type)];
  json["Units"] = mapUnits(map.type, Json(context.request.settings.mapScale).dump());
  json["Reference"] = reference.name;
  json["ReferenceVoxels"] = reference.voxels;
  json["Condition"] = condition.name;
  addOrigin(context, condition, json);
  json["RepetitionTime"] = repetitionTime(context, condition);
  addResolution(context, condition, json);
  const Json filters = filtersJson(context, condition);
  if (!filters.empty()) json["SoftwareFilters"] = filters;
  json["VolumesUsed"] = condition.totalVolumes;
  json["EffectiveVolumes"] = condition.effectiveVolumes;
  json["Runs"] = runsJson(runRecords(context, condition));
  if (!map.thresholds.empty()) json["Thresholds"] = thresholdsJson(map.thresholds);
  if (hasSign(map.type) && !condition.direction.empty()) addDirection(condition.direction, json);
  if (!map.familyWise.empty()) json["FamilyWise"] = familyWiseJson(map.familyWise, false);
  addModel(modelRecord(context, reference), json);
  json["Warnings"] = context.cautions;
  return json;
}

Json statusSidecar(const ResultContext& context, const ReferenceResult& reference,
                   const ConditionResult& condition) {
  Json json;
  json["Description"] = fmt::format("why each voxel of the maps of {}, condition '{}', has the value it has",
                                    reference.name, condition.name);
  Json labels;
  for (std::size_t code = 0; code < kStatusCodes; ++code) {
    labels[std::to_string(code)] = statusName(static_cast<StatusCode>(code));
  }
  json["Labels"] = labels;
  addResolution(context, condition, json);
  json["Voxels"] = voxelsJson(condition.statusCounts);
  addOrigin(context, condition, json);
  json["SoftwareVersion"] = context.version;
  return json;
}

Json directionSidecar(const ResultContext& context, const ReferenceResult& reference,
                      const ConditionResult& condition) {
  Json json;
  json["Description"] = fmt::format(
      "which voxels that pass the difference map DTAV of {}, condition '{}', keep their direction when it is "
      "tested with reversed time",
      reference.name, condition.name);
  Json labels;
  for (std::size_t code = 0; code < kDirectionCodes; ++code) {
    labels[std::to_string(code)] = directionName(static_cast<DirectionCode>(code));
  }
  json["Labels"] = labels;
  addResolution(context, condition, json);
  addDirection(condition.direction, json);
  addOriginAndModel(context, reference, condition, json);
  return json;
}

Json passingSidecar(const ResultContext& context, const ReferenceResult& reference,
                    const ConditionResult& condition, const MapResult& map) {
  Json json;
  json["Description"] = fmt::format(
      "which voxels outside the reference pass at which q: the number of a voxel is that of the smallest q; "
      "numbers above 0 are the voxels that pass at the largest q. The map: {}; condition '{}'",
      mapDescription(map.type, reference.name), condition.name);
  const std::vector<std::string> names = passingNames(map.thresholds);
  for (std::size_t code = 0; code < names.size(); ++code) json["Labels"][std::to_string(code)] = names[code];
  addResolution(context, condition, json);
  json["StatisticFile"] = map.file;
  json["Thresholds"] = thresholdsJson(map.thresholds);
  addOriginAndModel(context, reference, condition, json);
  return json;
}

std::vector<std::string> passingNames(const std::vector<ThresholdResult>& thresholds) {
  std::vector<std::string> names = {"passes at no q"};
  for (auto level = thresholds.rbegin(); level != thresholds.rend(); ++level)
    names.push_back(fmt::format("passes at q = {}", Json(level->q).dump()));
  return names;
}

void addOriginAndModel(const ResultContext& context, const ReferenceResult& reference,
                       const ConditionResult& condition, Json& json) {
  addOrigin(context, condition, json);
  addModel(modelRecord(context, reference), json);
  json["Warnings"] = context.cautions;
}

Record referenceRecord(const ResultContext& context, const ReferenceResult& reference,
                       const std::string& key) {
  Record record;
  record.key = key;
  record.reference = reference.name;
  record.referenceVoxels = reference.voxels;
  record.source = context.source;
  record.inputs = context.inputs;
  record.model = modelRecord(context, reference);
  for (const ConditionResult& condition : reference.conditions) {
    record.conditions.push_back(conditionRecord(context, condition));
  }
  record.warnings = context.cautions;
  return record;
}

}  // namespace study
