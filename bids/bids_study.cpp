#include "bids/bids_study.h"

#include <fmt/core.h>

#include <map>

#include "bids/bids_anatomy.h"
#include "request/problem.h"

namespace study {
namespace {

std::vector<ReferenceRequest> references(const BidsOptions& options) {
  std::vector<ReferenceRequest> list = options.configuration.references;
  if (!options.atlas.empty()) {
    if (!std::filesystem::is_regular_file(options.atlas)) {
      throw InputError(fmt::format("no atlas {}; --atlas names a label image", options.atlas.string()));
    }
    ReferenceRequest atlas;
    atlas.image = options.atlas;
    atlas.table = options.atlasTable;
    atlas.labels = options.labels;
    atlas.allLabels = options.labels.empty() || options.labels == std::vector<std::string>{"all"};
    if (atlas.allLabels) atlas.labels.clear();
    list.push_back(atlas);
  }
  if (list.empty()) {
    throw InputError(
        "no reference region: name a label image with --atlas, or [[reference]] in --config-file");
  }
  return list;
}

std::vector<ConditionRequest> conditions(const BidsOptions& options) {
  std::vector<ConditionRequest> list = options.configuration.conditions;
  for (const std::string& type : options.trialTypes) {
    ConditionRequest condition;
    condition.name = type;
    condition.kind = IntervalKind::kEvents;
    condition.trialTypes = {type};
    condition.delaySeconds = options.delaySeconds;
    list.push_back(condition);
  }
  if (list.empty()) {
    list.emplace_back();
    list.back().name = "whole";
  }
  return list;
}

std::string runName(const BidsRun& run) {
  const std::string number = run.name.get("run");
  return number.empty() ? run.name.get("task") : "run-" + number;
}

bool needsConfounds(const RunRequest& run) {
  return !run.confoundTerms.empty() || run.censoring.fdThresholdMm > 0;
}

RunRequest runRequest(const BidsRun& found, const RunRequest& preparation) {
  RunRequest run = preparation;
  run.name = runName(found);
  run.bold = found.bold;
  run.mask = found.mask;
  run.events = found.events;
  run.confounds = found.confounds;
  if (needsConfounds(run) && run.confounds.empty()) {
    throw InputError(found.bold.string() +
                     ": no *_desc-confounds_timeseries.tsv beside it, which regression and "
                     "censoring need");
  }
  // "auto" without a table: nothing says that a volume should go.
  if (run.dropVolumes == kDropFromConfounds && run.confounds.empty()) run.dropVolumes = 0;
  return run;
}

// Run names must differ: echoes, directions and the like may share a run number. All that share a name get
// longer ones.
void makeNamesUnique(const BidsGroup& group, std::vector<RunRequest>& runs) {
  std::map<std::string, int> sharers;
  for (const RunRequest& run : runs) ++sharers[run.name];
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (sharers[runs[i].name] == 1) continue;
    BidsName name = group.runs[i].name;
    for (const char* key : {"sub", "ses", "space", "res", "desc"}) name.erase(key);
    runs[i].name = formatEntities(name);
  }
}

void requireEvents(const std::vector<ConditionRequest>& conditions, const RunRequest& run) {
  for (const ConditionRequest& condition : conditions) {
    if (condition.kind == IntervalKind::kEvents && run.events.empty()) {
      throw InputError(fmt::format("{}: no events file in the data set, which condition '{}' needs",
                                   run.bold.string(), condition.name));
    }
  }
}

std::filesystem::path anatomyOf(const BidsGroup& group, const BidsOptions& options) {
  if (options.anatomy == kNoAnatomy) return {};
  return options.anatomy.empty() ? findAnatomy(group.runs[0]) : options.anatomy;
}

void requireAnatomy(const std::filesystem::path& file) {
  if (file.empty() || file == kNoAnatomy || std::filesystem::is_regular_file(file)) return;
  throw InputError(
      fmt::format("no anatomy {}; --anatomy names an image, or says {}", file.string(), kNoAnatomy));
}

Request groupRequest(const BidsGroup& group, const BidsOptions& options, Request request) {
  request.title = group.entities();
  request.settings = options.configuration.settings;
  request.connectome = options.configuration.connectome;
  request.seed = options.configuration.seed;
  request.output.prefix = group.entities();
  request.output.folder = options.outDir / group.folder();
  request.output.workFolder = options.workDir.empty() ? options.outDir / "work" : options.workDir;
  for (const BidsRun& run : group.runs) {
    request.runs.push_back(runRequest(run, options.configuration.preparation));
    requireEvents(request.conditions, request.runs.back());
  }
  makeNamesUnique(group, request.runs);
  for (ConditionRequest& condition : request.conditions) {
    for (const RunRequest& run : request.runs) condition.parts.push_back({run.name, run.name, {}});
  }
  request.anatomy = anatomyOf(group, options);
  request.datasets["raw"] = options.bidsDir;
  for (std::size_t i = 0; i < options.derivatives.size(); ++i) {
    request.datasets["preprocessed" + (i == 0 ? std::string() : std::to_string(i + 1))] =
        options.derivatives[i];
  }
  return request;
}

}  // namespace

void requireOutputElsewhere(const std::filesystem::path& bidsDir, const std::filesystem::path& outDir) {
  std::error_code error;
  if (std::filesystem::equivalent(bidsDir, outDir, error)) {
    throw InputError("the output folder is the data set itself, which is only read; give another, such as " +
                     (bidsDir / "derivatives" / "tavmap").string());
  }
}

BidsRequests bidsRequests(const BidsOptions& options) {
  requireOutputElsewhere(options.bidsDir, options.outDir);
  requireAnatomy(options.anatomy);
  const std::vector<BidsGroup> groups = findBidsGroups(options.bidsDir, options.derivatives, options.query);
  Request shared;
  shared.references = references(options);
  shared.conditions = conditions(options);
  BidsRequests made;
  for (const BidsGroup& group : groups) {
    try {
      made.requests.push_back(groupRequest(group, options, shared));
    } catch (const InputError& error) {
      if (groups.size() == 1) throw;
      made.failures.push_back(fmt::format("{}: {}", group.entities(), error.what()));
    }
  }
  return made;
}

}  // namespace study
