#include "workbench/explore_ask.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "request/confound_terms.h"
#include "tav/map_kinds.h"
#include "workbench/exchange.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;
using study::ReferenceKind;

constexpr int kHighestOrder = 20, kMostDraws = 100;  // as requests have them (request/settings_table.cpp)

[[noreturn]] void refuseAsk(const std::string& what) {
  throw Refusal(kBadRequest, what);
}

const Json& memberOf(const Json& json, const char* key) {
  if (!json.is_object() || !json.contains(key)) refuseAsk(fmt::format("'{}' is missing", key));
  return json[key];
}

double finiteNumber(const Json& json, const char* what) {
  if (!json.is_number() || !std::isfinite(json.get<double>()))
    refuseAsk(fmt::format("'{}' is no number", what));
  return json.get<double>();
}

int integerWithin(const Json& json, const char* what, int first, int last) {
  if (!json.is_number_integer() || json.get<std::int64_t>() < first || json.get<std::int64_t>() > last)
    refuseAsk(fmt::format("'{}' is no whole number from {} to {}", what, first, last));
  return json.get<int>();
}

std::vector<std::size_t> cellsFrom(const Json& json) {
  if (!json.is_array()) refuseAsk("'cells' is no list");
  std::vector<std::size_t> cells;
  for (const Json& cell : json) {
    if (!cell.is_number_unsigned()) refuseAsk("'cells' has something else than cells of the grid, from 0");
    cells.push_back(cell.get<std::size_t>());
  }
  std::sort(cells.begin(), cells.end());
  cells.erase(std::unique(cells.begin(), cells.end()), cells.end());
  return cells;
}

live::Reference referenceFrom(const Json& json) {
  live::Reference reference;
  const std::string kind = textOf(json, "kind");
  if (kind == "sphere") {
    reference.kind = ReferenceKind::kSphere;
    reference.centreMm = pointFrom(json, "mm");
    reference.radiusMm = finiteNumber(memberOf(json, "radiusMm"), "radiusMm");
  } else if (kind == "label") {
    reference.kind = ReferenceKind::kLabels;
    reference.label = integerWithin(memberOf(json, "id"), "id", 1, 2'147'483'647);
  } else if (kind == "voxels") {
    reference.kind = ReferenceKind::kVoxels;
    reference.cells = cellsFrom(memberOf(json, "cells"));
  } else {
    refuseAsk(fmt::format("a reference of kind '{}' is unknown; there are sphere, label and voxels", kind));
  }
  return reference;
}

tav::MapType typeFrom(const Json& json) {
  const std::string name = json.is_string() ? json.get<std::string>() : "";
  for (int type = 0; type < static_cast<int>(tav::kNrOfMapTypes); ++type)
    if (name == tav::mapKind(static_cast<tav::MapType>(type)).keyword) return static_cast<tav::MapType>(type);
  refuseAsk(fmt::format("there is no map '{}'", name));
}

std::vector<std::string> namesFrom(const Json& json, const char* what) {
  if (!json.is_array()) refuseAsk(fmt::format("'{}' is no list of names", what));
  std::vector<std::string> names;
  for (const Json& name : json) {
    if (!name.is_string()) refuseAsk(fmt::format("'{}' has something else than names", what));
    names.push_back(name.get<std::string>());
  }
  return names;
}

std::vector<std::string> confoundsFrom(const Json& json) {
  if (json.is_array()) return namesFrom(json, "confounds");
  const std::string preset = json.is_string() ? json.get<std::string>() : "";
  if (preset.empty() || preset == "none") return {};
  const std::string problem = study::confoundTermProblem(preset);
  if (!problem.empty()) refuseAsk(problem);
  return {preset};
}

// Runs that are not wanted, and what conditions have of them.
void keepRuns(const std::vector<std::string>& names, study::Request& request) {
  const auto isLeft = [&](const std::string& name) {
    return std::find(names.begin(), names.end(), name) == names.end();
  };
  std::erase_if(request.runs, [&](const study::RunRequest& run) { return isLeft(run.name); });
  if (request.runs.empty()) refuseAsk("no run is left; choose at least one");
  for (study::ConditionRequest& condition : request.conditions)
    std::erase_if(condition.parts, [&](const study::ConditionPart& part) {
      return isLeft(part.source) || isLeft(part.target);
    });
  std::erase_if(request.conditions, [](const study::ConditionRequest& one) { return one.parts.empty(); });
  if (request.conditions.empty()) refuseAsk("no condition is left; choose further runs");
}

void censor(const Json& json, study::RunRequest& run) {
  const Json& limit = memberOf(json, "fdThresholdMm");
  run.censoring.fdThresholdMm = limit.is_null() ? 0 : finiteNumber(limit, "fdThresholdMm");
}

}  // namespace

std::array<double, 3> pointFrom(const Json& json, const char* key) {
  const Json& point = memberOf(json, key);
  if (!point.is_array() || point.size() != 3)
    refuseAsk(fmt::format("'{}' is no point of three numbers", key));
  return {finiteNumber(point[0], key), finiteNumber(point[1], key), finiteNumber(point[2], key)};
}

live::Ask askFrom(const Json& json, const live::LoadedStudy& study) {
  const study::Settings& own = study.plan.request.settings;
  live::Ask ask{referenceFrom(memberOf(json, "reference")), textOf(json, "condition"), study.plan.order,
                own.nullDraws, own.mapTypes};
  if (json.contains("types")) {
    const Json& types = json["types"];
    if (!types.is_array() || types.empty()) refuseAsk("'types' is no list of maps");
    ask.types.clear();
    for (const Json& type : types) ask.types.insert(typeFrom(type));
  }
  if (!json.contains("settings")) return ask;
  const Json& settings = json["settings"];
  if (settings.contains("order")) ask.order = integerWithin(settings["order"], "order", 1, kHighestOrder);
  if (settings.contains("draws")) ask.draws = integerWithin(settings["draws"], "draws", 1, kMostDraws);
  return ask;
}

study::Request withSettings(study::Request request, const Json& settings) {
  if (settings.contains("runs")) keepRuns(namesFrom(settings["runs"], "runs"), request);
  for (study::RunRequest& run : request.runs) {
    if (settings.contains("confounds") && !run.confounds.empty())
      run.confoundTerms = confoundsFrom(settings["confounds"]);
    if (settings.contains("censoring") && !run.confounds.empty()) censor(settings["censoring"], run);
  }
  return request;
}

}  // namespace workbench
