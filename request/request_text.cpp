#include "request/request_text.h"

#include <fmt/core.h>

#include <algorithm>
#include <sstream>

#include "request/settings_table.h"
#include "request/toml_text.h"

namespace study {
namespace {

namespace fs = std::filesystem;

// "key = value" lines, one table after the other.
class Lines {
 public:
  void table(const std::string& name) { out_ << "\n" << name << "\n"; }
  void put(const std::string& key, const std::string& value) { out_ << key << " = " << value << "\n"; }
  void text(const std::string& key, const std::string& value) { put(key, tomlText(value)); }
  void number(const std::string& key, double value) { put(key, tomlNumber(value)); }
  void integer(const std::string& key, std::int64_t value) { put(key, std::to_string(value)); }
  void texts(const std::string& key, const std::vector<std::string>& values) {
    put(key, tomlList(values, tomlText));
  }
  // An empty path has no line.
  void path(const std::string& key, const fs::path& value) {
    if (!value.empty()) text(key, value.string());
  }
  std::string all() const { return out_.str(); }

 private:
  std::ostringstream out_;
};

void putHead(const Request& request, Lines& lines) {
  lines.text("title", request.title);
  lines.text("prefix", request.output.prefix);
  lines.path("folder", request.output.folder);
  lines.path("work_folder", request.output.workFolder);
  lines.path("anatomy", request.anatomy);
  if (request.seed) lines.integer("seed", *request.seed);
}

void putDatasets(const Request& request, Lines& lines) {
  if (request.datasets.empty()) return;
  lines.table("[datasets]");
  for (const auto& [name, folder] : request.datasets) lines.text(tomlText(name), folder.string());
}

void putSettings(const Settings& settings, Lines& lines) {
  lines.table("[settings]");
  for (const Setting& row : settingsTable()) {
    if (row.key != nullptr && canBeAsked(row, settings.method))
      lines.put(row.key, settingText(row, settings));
  }
}

// What says nothing new has no table, so that requests without one keep their bytes.
void putConnectome(const ConnectomeSettings& settings, Lines& lines) {
  if (settings == ConnectomeSettings()) return;
  lines.table("[connectome]");
  lines.integer("surrogates", settings.surrogates);
  lines.texts("condition_on", settings.conditionOn);
}

void putRun(const RunRequest& run, Lines& lines) {
  lines.table("[[run]]");
  lines.text("name", run.name);
  lines.path("bold", run.bold);
  lines.path("mask", run.mask);
  lines.path("events", run.events);
  lines.path("confounds", run.confounds);
  if (run.trSeconds > 0) lines.number("tr", run.trSeconds);
  const bool fromTable = run.dropVolumes == kDropFromConfounds;
  lines.put("drop_volumes", fromTable ? tomlText("auto") : std::to_string(run.dropVolumes));
  lines.texts("regress", run.confoundTerms);
  lines.number("fd_threshold", run.censoring.fdThresholdMm);
  lines.integer("min_segment", run.censoring.minimumSegment);
  lines.integer("censor_before", run.censoring.alsoBefore);
  lines.integer("censor_after", run.censoring.alsoAfter);
}

std::string tripleText(const std::array<int, 3>& voxel) {
  return tomlList(voxel, [](int index) { return std::to_string(index); });
}

void putLabels(const ReferenceRequest& reference, Lines& lines) {
  lines.path("label_image", reference.image);
  lines.path("label_table", reference.table);
  if (reference.probability > 0) lines.number("probability", reference.probability);
  lines.texts("labels", reference.allLabels ? std::vector<std::string>{"all"} : reference.labels);
}

void putReference(const ReferenceRequest& reference, Lines& lines) {
  lines.table("[[reference]]");
  if (!reference.name.empty()) lines.text("name", reference.name);
  switch (reference.kind) {
    case ReferenceKind::kLabels:
      return putLabels(reference, lines);
    case ReferenceKind::kMask:
      return lines.path("mask", reference.image);
    case ReferenceKind::kSphere:
      lines.put("centre_mm", tomlList(reference.centreMm, tomlNumber));
      return lines.number("radius_mm", reference.radiusMm);
    case ReferenceKind::kVoxels:
      return lines.put("voxels", tomlList(reference.voxels, tripleText));
  }
}

std::string rangesText(const std::vector<VolumeRange>& ranges) {
  return tomlList(ranges,
                  [](const VolumeRange& range) { return fmt::format("[{}, {}]", range.first, range.last); });
}

// Intervals of all parts, or a table of those of each reference run.
std::string intervalsText(const ConditionRequest& condition) {
  if (!condition.typed.empty()) return rangesText(condition.typed);
  std::map<std::string, std::string> perRun;
  for (const ConditionPart& part : condition.parts) perRun[part.source] = rangesText(part.typed);
  std::string text;
  for (const auto& [run, ranges] : perRun)
    text += fmt::format("{}{} = {}", text.empty() ? "" : ", ", tomlText(run), ranges);
  return fmt::format("{{ {} }}", text);
}

void putParts(const ConditionRequest& condition, Lines& lines) {
  const bool pairs = std::any_of(condition.parts.begin(), condition.parts.end(),
                                 [](const ConditionPart& part) { return part.source != part.target; });
  lines.put(pairs ? "pairs" : "runs", tomlList(condition.parts, [&](const ConditionPart& part) {
              const std::string source = tomlText(part.source);
              return pairs ? fmt::format("[{}, {}]", source, tomlText(part.target)) : source;
            }));
}

void putCondition(const ConditionRequest& condition, Lines& lines) {
  lines.table("[[condition]]");
  lines.text("name", condition.name);
  putParts(condition, lines);
  if (condition.kind == IntervalKind::kWholeRun) lines.put("whole_run", "true");
  if (condition.kind == IntervalKind::kTyped) lines.put("intervals", intervalsText(condition));
  if (condition.kind == IntervalKind::kEvents) lines.texts("trial_types", condition.trialTypes);
  lines.number("delay_s", condition.delaySeconds);
  if (condition.joinGapSeconds) lines.number("join_gap_s", *condition.joinGapSeconds);
  lines.integer("min_volumes", condition.minimumVolumes);
}

}  // namespace

std::string requestText(const Request& request) {
  Lines lines;
  putHead(request, lines);
  putDatasets(request, lines);
  putSettings(request.settings, lines);
  putConnectome(request.connectome, lines);
  for (const RunRequest& run : request.runs) putRun(run, lines);
  for (const ReferenceRequest& reference : request.references) putReference(reference, lines);
  for (const ConditionRequest& condition : request.conditions) putCondition(condition, lines);
  return lines.all();
}

Request withoutLines(Request request) {
  for (RunRequest& run : request.runs) run.line = 0;
  for (ReferenceRequest& reference : request.references) reference.line = 0;
  for (ConditionRequest& condition : request.conditions) condition.line = 0;
  return request;
}

}  // namespace study
