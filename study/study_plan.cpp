#include "study/study_plan.h"

#include <fmt/core.h>

#include <algorithm>

#include "prepare/anatomy.h"
#include "prepare/cautions.h"
#include "prepare/fingerprint.h"
#include "prepare/region_files.h"
#include "prepare/value_size.h"
#include "request/settings_table.h"
#include "results/output_names.h"
#include "study/name_checks.h"

namespace study {
namespace {

namespace fs = std::filesystem;

void makeAbsolute(fs::path& path) {
  if (!path.empty()) path = fs::absolute(path).lexically_normal();
}

// Workers change into the work folder.
void makeAbsolute(Request& request) {
  makeAbsolute(request.output.folder);
  makeAbsolute(request.output.workFolder);
  for (RunRequest& run : request.runs) {
    for (fs::path* path : {&run.bold, &run.mask, &run.events, &run.confounds}) makeAbsolute(*path);
  }
  for (ReferenceRequest& reference : request.references) {
    makeAbsolute(reference.image);
    makeAbsolute(reference.table);
  }
  makeAbsolute(request.anatomy);
  for (auto& [name, root] : request.datasets) makeAbsolute(root);
  if (request.output.workFolder.empty()) request.output.workFolder = request.output.folder / "work";
  // Outside BIDS sources are named relative to the folder of the first run.
  if (request.datasets.empty()) request.datasets["input"] = request.runs[0].bold.parent_path();
}

bool hasPairs(const Request& request) {
  for (const ConditionRequest& condition : request.conditions) {
    for (const ConditionPart& part : condition.parts) {
      if (part.source != part.target) return true;
    }
  }
  return false;
}

// Source and target share their volume numbers, so that all runs must drop equally many.
void planRuns(StudyPlan& plan) {
  Request& request = plan.request;
  const auto planAll = [&] {
    plan.runs.clear();
    for (const RunRequest& run : request.runs) {
      plan.runs.push_back(
          planRun(run, request.settings.inclusionThreshold, plan.version, request.settings.highPass));
    }
  };
  planAll();
  if (!hasPairs(request)) return;
  int dropped = 0;
  for (const RunPlan& run : plan.runs) dropped = std::max(dropped, run.volumes.dropped);
  for (RunRequest& run : request.runs) run.dropVolumes = dropped;
  planAll();
}

// The plug-in takes values as they are.
void scaleRuns(StudyPlan& plan) {
  if (plan.request.settings.method == Method::kPlugin) return;
  const int threshold = plan.request.settings.inclusionThreshold;
  std::vector<ValueSize> sizes;
  for (const RunPlan& run : plan.runs) sizes.push_back(sizeOfValues(run, threshold));
  const double scale = commonScale(sizes, threshold);
  for (RunPlan& run : plan.runs) setScale(run, scale);
}

bool usesEvents(const Request& request, const std::string& run) {
  return std::any_of(request.conditions.begin(), request.conditions.end(),
                     [&](const ConditionRequest& condition) {
                       return condition.kind == IntervalKind::kEvents &&
                              std::any_of(condition.parts.begin(), condition.parts.end(),
                                          [&](const ConditionPart& part) { return part.source == run; });
                     });
}

void collectCautions(StudyPlan& plan) {
  for (const RunPlan& run : plan.runs) {
    plan.cautions.insert(plan.cautions.end(), run.cautions.begin(), run.cautions.end());
    if (!run.eventsCaution.empty() && usesEvents(plan.request, run.request.name))
      plan.cautions.push_back(run.eventsCaution);
  }
  const std::string masks = mixedMasksCaution(plan.request.runs, plan.request.settings.inclusionThreshold);
  if (!masks.empty()) plan.cautions.push_back(masks);
}

// The plug-in's procedure does not count what regression costs.
double costPerVolume(const RunPlan& run, Method method) {
  const auto used = std::count(run.kept.begin(), run.kept.end(), true);
  const bool counts = method == Method::kCalibrated && used > 0;
  return counts ? static_cast<double>(run.confoundRank) / static_cast<double>(used) : 0;
}

std::vector<RunVolumes> runVolumes(const StudyPlan& plan) {
  std::vector<RunVolumes> volumes;
  for (const RunPlan& run : plan.runs) {
    volumes.push_back(run.volumes);
    volumes.back().costPerVolume = costPerVolume(run, plan.request.settings.method);
  }
  return volumes;
}

void addSettings(const StudyPlan& plan, Fingerprint& key) {
  Settings settings = plan.request.settings;
  settings.order = plan.order;
  for (const auto& [name, value] : keyParts(settings)) {
    std::visit([&key, begin = name](const auto& v) { key.add(begin, v); }, value);
  }
  key.add("seed", static_cast<std::int64_t>(plan.seed)).add("prefix", plan.request.output.prefix.c_str());
}

void addRegion(const Region& region, Fingerprint& key) {
  key.add("reference", region.name.c_str());
  if (!region.source.rule.empty()) key.add("rule", region.source.rule.c_str());
  for (const std::int32_t c : region.coordinates) key.add("c", static_cast<std::int64_t>(c));
}

void addConditions(const StudyPlan& plan, Fingerprint& key) {
  for (const PlannedCondition& condition : plan.conditions) {
    key.add("condition", condition.name.c_str());
    for (const PlannedSet& set : condition.sets) {
      key.add("source", set.source.c_str()).add("target", set.target.c_str());
      for (const VolumeRange& range : set.ranges) key.add("first", range.first).add("last", range.last);
    }
  }
}

// With method "calibrated" the data themselves are looked at, once there are some (data_warnings.h).
void cautionOfFewSamples(StudyPlan& plan, const PlannedCondition& planned) {
  if (plan.request.settings.method != Method::kPlugin) return;
  const std::string few = fewSamplesCaution(planned.name, planned.effectiveVolumes, plan.order);
  if (!few.empty()) plan.cautions.push_back(few);
}

}  // namespace

StudyPlan planStudy(const Request& request, std::uint32_t seed, const std::string& version) {
  StudyPlan plan;
  plan.request = request;
  makeAbsolute(plan.request);
  plan.workFolder = plan.request.output.workFolder;
  plan.version = version;
  plan.seed = seed;
  planRuns(plan);
  requireOneGrid(plan.runs);
  requireUsableAnatomy(plan.request.anatomy, plan.runs[0]);
  scaleRuns(plan);
  plan.space = regionSpace(plan.runs, request.settings.method);
  plan.regions = readRegions(plan.request, plan.space);
  plan.places = readPlaceNames(plan.request, plan.space.grid);
  std::vector<std::string> names;
  for (const Region& region : plan.regions) names.push_back(region.name);
  plan.regionLabels = labelsOf(names, "references", request.title);
  // Trial types, intervals and lengths are checked for the lowest order before any data are read.
  settleOrder(plan, request.settings.orderChoice == OrderChoice::kFixed ? request.settings.order : 1);
  requireUsableNames(plan);
  return plan;
}

void settleOrder(StudyPlan& plan, int order) {
  plan.order = order;
  plan.conditions.clear();
  plan.cautions.clear();
  collectCautions(plan);
  std::vector<std::string> names;
  for (const ConditionRequest& condition : plan.request.conditions) {
    plan.conditions.push_back(planCondition(condition, runVolumes(plan), order, plan.request.title));
    const PlannedCondition& planned = plan.conditions.back();
    names.push_back(planned.name);
    plan.cautions.insert(plan.cautions.end(), planned.notes.begin(), planned.notes.end());
    cautionOfFewSamples(plan, planned);
  }
  plan.conditionLabels = labelsOf(names, "conditions", plan.request.title);
}

std::string resultKey(const StudyPlan& plan, std::size_t region) {
  Fingerprint key;
  key.add("version", plan.version.c_str());
  for (const RunPlan& run : plan.runs) {
    key.add("run", run.request.name.c_str()).add("vtc", run.vtcName.c_str());
    key.add("tr", run.volumes.trSeconds).addFile("events", run.request.events);
  }
  addSettings(plan, key);
  addConditions(plan, key);
  if (plan.request.settings.method != Method::kPlugin)
    key.add("direction", "reversed time")
        .add("surrogates", "between spikes")
        .add("z", "own null values")
        .add("reversed", "all voxels");
  key.add("evidence", "histograms and courses");
  key.add("clusters", plan.places ? plan.places->key().c_str() : "without names");
  // With method "plugin" a result depends on all references before it.
  const bool together = plan.request.settings.method == Method::kPlugin;
  for (std::size_t i = together ? 0 : region; i <= region; ++i) addRegion(plan.regions[i], key);
  for (const std::string& caution : cautionsOf(plan, region)) key.add("caution", caution.c_str());
  return key.hex();
}

std::vector<std::string> cautionsOf(const StudyPlan& plan, std::size_t region,
                                    const std::vector<std::string>& ofData) {
  std::vector<std::string> cautions = plan.cautions;
  const Region& own = plan.regions[region];
  const std::string small = smallReferenceCaution(own.name, own.voxels());
  if (!small.empty()) cautions.push_back(small);
  cautions.insert(cautions.end(), own.notes.begin(), own.notes.end());
  cautions.insert(cautions.end(), ofData.begin(), ofData.end());
  return cautions;
}

std::uint32_t seedOf(const StudyPlan& plan, std::size_t region) {
  if (plan.request.settings.method == Method::kPlugin) return plan.seed;
  return derivedSeed(plan.seed, fmt::format("{}\n{}", plan.request.output.prefix, plan.regions[region].name));
}

}  // namespace study
