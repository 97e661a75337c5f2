#include "study/connectome_key.h"

#include <fmt/core.h>

#include "prepare/fingerprint.h"

namespace study {
namespace {

std::string runsKey(const StudyPlan& plan) {
  Fingerprint key;
  for (const RunPlan& run : plan.runs) {
    key.add("run", run.request.name.c_str()).add("vtc", run.vtcName.c_str());
    key.add("tr", run.volumes.trSeconds).addFile("events", run.request.events);
  }
  return key.hex();
}

std::string conditionsKey(const StudyPlan& plan) {
  Fingerprint key;
  for (const PlannedCondition& condition : plan.conditions) {
    key.add("condition", condition.name.c_str());
    for (const PlannedSet& set : condition.sets) {
      key.add("source", set.source.c_str()).add("target", set.target.c_str());
      for (const VolumeRange& range : set.ranges) key.add("first", range.first).add("last", range.last);
    }
  }
  return key.hex();
}

std::string regionsKey(const StudyPlan& plan) {
  Fingerprint key;
  for (const Region& region : plan.regions) {
    key.add("region", region.name.c_str()).addFile("table", region.source.table);
    for (const std::int32_t c : region.coordinates) key.add("c", static_cast<std::int64_t>(c));
  }
  return key.hex();
}

std::string joinedNames(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text.empty() ? "nothing" : text;
}

// What a person can read stands in differences; a key of 32 digits says nothing.
bool isReadable(const std::string& text) {
  constexpr std::size_t kKey = 32;
  return text.size() != kKey;
}

}  // namespace

std::map<std::string, std::string> connectomeInputs(const StudyPlan& plan) {
  const Settings& settings = plan.request.settings;
  std::string q;
  for (const double value : settings.qValues) q += fmt::format("{}{}", q.empty() ? "" : ", ", value);
  return {{"version", plan.version},
          {"model order", std::to_string(plan.order)},
          {"choice of the model order", orderChoiceName(settings.orderChoice)},
          {"q", q},
          {"constant that divides q", fmt::format("{}", settings.fdrConstant)},
          {"surrogates per region", std::to_string(plan.request.connectome.surrogates)},
          {"condition_on", joinedNames(plan.request.connectome.conditionOn)},
          {"inclusion threshold", std::to_string(settings.inclusionThreshold)},
          {"seed", std::to_string(plan.seed)},
          {"prefix", plan.request.output.prefix},
          {"runs", runsKey(plan)},
          {"conditions", conditionsKey(plan)},
          {"regions", regionsKey(plan)}};
}

std::string connectomeKey(const std::map<std::string, std::string>& inputs) {
  Fingerprint key;
  key.add("connectome", "signs shared by nodes");
  for (const auto& [name, text] : inputs) key.add(name, text);
  return key.hex();
}

std::string inputDifferences(const std::map<std::string, std::string>& now,
                             const std::map<std::string, std::string>& before) {
  std::string text;
  for (const auto& [name, value] : now) {
    const auto found = before.find(name);
    if (found != before.end() && found->second == value) continue;
    text += (text.empty() ? "" : ", ") + name;
    if (found != before.end() && isReadable(value))
      text += fmt::format(" ({}, was {})", value, found->second);
  }
  return text;
}

}  // namespace study
