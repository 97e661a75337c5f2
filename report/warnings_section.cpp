#include <fmt/core.h>

#include <algorithm>
#include <vector>

#include "report/html.h"
#include "report/sections.h"
#include "results/direction_result.h"

namespace report {
namespace {

std::string item(const char* kind, const std::string& content) {
  return element("li", {{"class", kind}}, content);
}

std::vector<std::string> warningsOf(const StudyOutputs& outputs) {
  std::vector<std::string> warnings;
  for (const ReferenceOutputs& reference : outputs.references)
    for (const std::string& warning : reference.record.warnings)
      if (std::find(warnings.begin(), warnings.end(), warning) == warnings.end()) warnings.push_back(warning);
  return warnings;
}

bool speaksOfDirection(const StudyOutputs& outputs) {
  for (const ReferenceOutputs& reference : outputs.references)
    for (const study::ConditionRecord& condition : reference.record.conditions)
      if (!condition.direction.empty()) return true;
  return false;
}

}  // namespace

std::string warningsSection(const StudyOutputs& outputs) {
  std::string items;
  for (const FailedReference& failure : outputs.failures)
    items += item("failure", "Failed: " + name(failure.reference) + ". " + text(failure.message));
  for (const std::string& warning : warningsOf(outputs)) items += item("warning", text(warning) + ".");
  if (speaksOfDirection(outputs)) items += item("note", text(study::kDirectionNote) + ".");
  if (items.empty()) return "";
  return section("warnings", "part", 2, "Read this first", element("ul", {{"class", "warnings"}}, items));
}

}  // namespace report
