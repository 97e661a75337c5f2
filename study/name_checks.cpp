#include "study/name_checks.h"

#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "formats/vtc_sidecar.h"
#include "request/problem.h"
#include "results/output_names.h"

namespace study {
namespace {

bool isControl(unsigned char c) {
  return c < 0x20 || c == 0x7f;
}

bool isUtf8(const std::string& text) {
  try {
    (void)nlohmann::json(text).dump();
    return true;
  } catch (const nlohmann::json::exception&) {
    return false;
  }
}

// As a terminal can show it.
std::string escaped(const std::string& text) {
  std::string shown;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    shown += isControl(byte) || byte >= 0x80 ? fmt::format("\\x{:02x}", byte) : std::string(1, c);
  }
  return shown;
}

void requirePrintable(const std::string& where, const char* what, const std::string& name) {
  if (std::any_of(name.begin(), name.end(), isControl)) {
    throw InputError(
        fmt::format("{}: the {} '{}' has control characters, which files and tables cannot hold; "
                    "choose another name",
                    where, what, escaped(name)));
  }
  if (isUtf8(name)) return;
  throw InputError(fmt::format("{}: the {} '{}' is not UTF-8; save the file that names it as UTF-8", where,
                               what, escaped(name)));
}

void requireShort(const std::string& where, const std::string& file, const std::string& remedy) {
  if (file.size() <= kLongestFileName) return;
  throw InputError(fmt::format("{}: the file name '{}' would have {} bytes, and files can have {}; {}", where,
                               file, file.size(), kLongestFileName, remedy));
}

std::vector<std::string> filesOf(const OutputNames& names, const std::string& label,
                                 const Settings& settings) {
  std::vector<std::string> files = {names.status(label), names.statusTable(label), names.clusters(label)};
  for (const tav::MapType type : settings.mapTypes) {
    files.push_back(names.map(label, type));
    files.push_back(names.passing(label, type));
    files.push_back(names.thresholded(label, type));
  }
  if (settings.method == Method::kCalibrated && settings.mapTypes.count(tav::DTAV) > 0)
    files.push_back(names.direction(label));
  return files;
}

void requireShortNames(const StudyPlan& plan, std::size_t region) {
  const Request& request = plan.request;
  const std::string& reference = plan.regions[region].name;
  const OutputNames names(request.output.prefix, plan.regionLabels[region]);
  const std::string remedy = fmt::format("shorten the prefix or the name of reference '{}'", reference);
  requireShort(request.title, fmt::format("{}_{}.tav", request.output.prefix, reference), remedy);
  requireShort(request.title, OutputNames::sidecarOf(names.courses()), remedy);
  for (std::size_t i = 0; i < plan.conditions.size(); ++i) {
    for (const std::string& file : filesOf(names, plan.conditionLabels[i], request.settings))
      requireShort(request.title, file, fmt::format("{} or condition '{}'", remedy, plan.conditions[i].name));
  }
}

}  // namespace

void requireUsableNames(const StudyPlan& plan) {
  const std::string& where = plan.request.title;
  requirePrintable(where, "prefix", plan.request.output.prefix);
  for (const RunPlan& run : plan.runs) {
    requirePrintable(where, "run", run.request.name);
    requireShort(where, formats::sidecarPathOf(run.vtcName),
                 fmt::format("shorten the name of run '{}'", run.request.name));
  }
  for (const Region& region : plan.regions) requirePrintable(where, "reference", region.name);
  for (const PlannedCondition& condition : plan.conditions)
    requirePrintable(where, "condition", condition.name);
  for (std::size_t i = 0; i < plan.regions.size(); ++i) requireShortNames(plan, i);
}

}  // namespace study
