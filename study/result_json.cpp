#include "study/result_json.h"

#include <algorithm>

namespace study {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

const RunPlan& runNamed(const ResultContext& context, const std::string& name) {
  return *std::find_if(context.runs.begin(), context.runs.end(),
                       [&](const RunPlan& run) { return run.request.name == name; });
}

Json rangesJson(const std::vector<VolumeRange>& ranges) {
  Json list = Json::array();
  for (const VolumeRange& range : ranges) list.push_back({range.first, range.last});
  return list;
}

Json setJson(const ResultContext& context, const SetResult& set) {
  const RunPlan& run = runNamed(context, set.target);
  Json json = {{"Run", set.target}};
  if (set.source != set.target) json["ReferenceFromRun"] = set.source;
  json["RepetitionTime"] = run.volumes.trSeconds;
  json["Volumes"] = run.volumes.volumes;
  json["VolumesDropped"] = run.volumes.dropped;
  json["VolumesCensored"] = run.censored;
  json["Intervals"] = rangesJson(set.ranges);
  json["VolumesUsed"] = totalLength(set.ranges);
  json["EffectiveVolumes"] = effectiveVolumes(set.ranges, context.order);
  json["ConfoundsRegressed"] = run.confoundNames;
  json["ConfoundDegreesOfFreedom"] = run.confoundRank;
  return json;
}

Json setsJson(const ResultContext& context, const ConditionResult& condition) {
  Json list = Json::array();
  for (const SetResult& set : condition.sets) list.push_back(setJson(context, set));
  return list;
}

Json thresholdsJson(const MapResult& map) {
  Json list = Json::array();
  for (const ThresholdResult& result : map.thresholds) {
    Json json = {{"Q", result.q}, {"Threshold", nullptr}};
    if (result.threshold) json["Threshold"] = *result.threshold;
    json["AnyVoxelPasses"] = result.voxelsPassing > 0;
    json["VoxelsPassing"] = result.voxelsPassing;
    json["VoxelsPassingOutsideReference"] = result.outsideReference;
    list.push_back(json);
  }
  return list;
}

Json statusJson(const ConditionResult& condition) {
  Json json;
  for (std::size_t code = 0; code < kStatusCodes; ++code) {
    json[statusName(static_cast<StatusCode>(code))] = condition.statusCounts[code];
  }
  return json;
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

Json filtersJson(const ResultContext& context, const ConditionResult& condition) {
  Json list = Json::array();
  for (const SetResult& set : condition.sets) {
    for (const std::string& filter : runNamed(context, set.target).filters) list.push_back(filter);
  }
  return list;
}

// How the numbers came about; shared by sidecars and records.
void addModel(const ResultContext& context, const ReferenceResult& reference, Json& json) {
  const Settings& settings = context.request.settings;
  json["Method"] = methodName(settings.method);
  json["MethodDescription"] = methodDescription(settings.method);
  json["ModelOrder"] = context.order;
  json["ModelOrderChosenBy"] = orderChoiceName(settings.orderChoice);
  json["NumberOfSurrogates"] = settings.surrogates;
  json["NullDrawsPerVoxel"] = settings.nullDraws;
  json["DiscardedSimulatedTimePoints"] = settings.discardedTimePoints;
  json["CVConstant"] = settings.cvConstant;
  json["Seed"] = context.seed;
  json["SeedOfReference"] = reference.seed;
  json["SoftwareVersion"] = context.version;
}

void addSettings(const Settings& settings, Json& json) {
  json["FirstTimePointInclusionThreshold"] = settings.inclusionThreshold;
  json["InstantaneousLowerThreshold"] = settings.instantaneousLower;
  json["RCUpperThreshold"] = settings.rcUpper;
  json["MapScaleFactor"] = settings.mapScale;
}

std::string unitsOf(const Settings& settings, tav::MapType type) {
  if (type == tav::DTAV_RC) return "share, -1 to 1";
  std::string factor = Json(settings.mapScale).dump();
  return "natural logarithm of a ratio of error variances, times " + factor;
}

Json mapEntry(const MapResult& map) {
  Json json = {{"MapType", tav::MAPTYPE_NAMES[static_cast<std::size_t>(map.type)]}, {"File", map.file}};
  if (!map.thresholds.empty()) json["Thresholds"] = thresholdsJson(map);
  json["Peak"] = {{"Value", map.peak}, {"Voxel", map.peakVoxel}, {"Millimetres", map.peakMm}};
  return json;
}

Json conditionEntry(const ResultContext& context, const ConditionResult& condition) {
  Json json = {{"Name", condition.name}};
  json["VolumesUsed"] = condition.totalVolumes;
  json["EffectiveVolumes"] = condition.effectiveVolumes;
  json["Runs"] = setsJson(context, condition);
  json["Voxels"] = statusJson(condition);
  json["SurrogatesIllDefined"] = condition.surrogatesIllDefined;
  json["StatusFile"] = condition.statusFile;
  json["Maps"] = Json::array();
  for (const MapResult& map : condition.maps) json["Maps"].push_back(mapEntry(map));
  return json;
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
    best = "bids:" + name + ":" + relative.generic_string();
    bestLength = folder.string().size();
  }
  return best.empty() ? file.filename().string() : best;
}

Json mapSidecar(const ResultContext& context, const ReferenceResult& reference, const ConditionResult& condition,
                const MapResult& map) {
  Json json;
  json["Description"] = mapDescription(map.type, reference.name) + "; condition '" + condition.name + "'";
  json["MapType"] = tav::MAPTYPE_NAMES[static_cast<std::size_t>(map.type)];
  json["Units"] = unitsOf(context.request.settings, map.type);
  json["Reference"] = reference.name;
  json["ReferenceVoxels"] = reference.voxels;
  json["Condition"] = condition.name;
  json["Sources"] = sourcesJson(context, condition);
  json["RepetitionTime"] = repetitionTime(context, condition);
  const Json filters = filtersJson(context, condition);
  if (!filters.empty()) json["SoftwareFilters"] = filters;
  json["VolumesUsed"] = condition.totalVolumes;
  json["EffectiveVolumes"] = condition.effectiveVolumes;
  json["Runs"] = setsJson(context, condition);
  if (!map.thresholds.empty()) json["Thresholds"] = thresholdsJson(map);
  addModel(context, reference, json);
  addSettings(context.request.settings, json);
  json["Warnings"] = context.cautions;
  return json;
}

Json statusSidecar(const ResultContext& context, const ReferenceResult& reference, const ConditionResult& condition) {
  Json json;
  json["Description"] = "why each voxel of the maps of " + reference.name + ", condition '" + condition.name +
                        "', has the value it has";
  Json labels;
  for (std::size_t code = 0; code < kStatusCodes; ++code) {
    labels[std::to_string(code)] = statusName(static_cast<StatusCode>(code));
  }
  json["Labels"] = labels;
  json["Voxels"] = statusJson(condition);
  json["Sources"] = sourcesJson(context, condition);
  json["SoftwareVersion"] = context.version;
  return json;
}

Json referenceRecord(const ResultContext& context, const ReferenceResult& reference, const std::string& key) {
  Json json;
  json["Key"] = key;
  json["Reference"] = reference.name;
  json["ReferenceVoxels"] = reference.voxels;
  addModel(context, reference, json);
  addSettings(context.request.settings, json);
  json["Conditions"] = Json::array();
  for (const ConditionResult& condition : reference.conditions) {
    json["Conditions"].push_back(conditionEntry(context, condition));
  }
  json["Warnings"] = context.cautions;
  return json;
}

Json datasetDescription(const Request& request, const std::string& version) {
  Json json;
  json["Name"] = "Tavmap: maps of directed influence";
  json["BIDSVersion"] = "1.8.0";
  json["DatasetType"] = "derivative";
  json["GeneratedBy"] = Json::array({{{"Name", "Tavmap"}, {"Version", version}}});
  Json links = Json::object();
  for (const auto& [name, root] : request.datasets) {
    links[name] = "file://" + fs::absolute(root).lexically_normal().generic_string();
  }
  if (!links.empty()) json["DatasetLinks"] = links;
  return json;
}

}  // namespace study
