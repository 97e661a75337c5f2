#include "study/request_differences.h"

#include <fmt/core.h>

#include <map>
#include <set>

#include "request/settings_table.h"
#include "results/result_json.h"
#include "study/planned_result.h"

namespace study {
namespace {

namespace fs = std::filesystem;
using Facts = std::map<std::string, std::string>;  // what a result was made with, by name in words

constexpr std::size_t kMostLetters = 60;  // of a value, in messages

std::string shortened(const std::string& text) {
  if (text.empty()) return "none";
  return text.size() <= kMostLetters ? text : text.substr(0, kMostLetters) + "...";
}

template <typename Items, typename ToText>
std::string joined(const Items& items, ToText toText) {
  std::string text;
  for (const auto& item : items) text += (text.empty() ? "" : ", ") + toText(item);
  return text;
}

std::string textOf(const SettingValue& value) {
  return std::visit([](const auto& v) { return fmt::format("{}", v); }, value);
}

void addSettings(const Settings& settings, Facts& facts) {
  for (const Setting* row : recordedSettings()) {
    if (isKept(*row, settings.method)) facts[row->name] = textOf(valuesOf(*row, settings).at(0));
  }
}

std::string intervalsOf(const RunRecord& run) {
  return run.run + " " + joined(run.intervals, [](const VolumeRange& range) {
           return fmt::format("{}-{}", range.first, range.last);
         });
}

void addCondition(const ConditionRecord& condition, Facts& facts) {
  const auto add = [&](const char* what, auto toText) {
    facts[fmt::format("{} of condition '{}'", what, condition.name)] = joined(condition.runs, toText);
  };
  add("runs", [](const RunRecord& run) {
    return run.referenceFromRun.empty() ? run.run : fmt::format("{} from {}", run.run, run.referenceFromRun);
  });
  add("repetition times", [](const RunRecord& run) { return fmt::format("{} s", run.repetitionTime); });
  add("volumes", [](const RunRecord& run) { return std::to_string(run.volumes); });
  add("intervals", intervalsOf);
  add("confounds", [](const RunRecord& run) {
    return fmt::format("[{}]", joined(run.confoundsRegressed, [](const std::string& name) { return name; }));
  });
}

Facts factsOf(const Record& record) {
  Facts facts;
  facts["reference"] = record.reference;
  facts["voxels of the reference"] = std::to_string(record.referenceVoxels);
  facts["seed"] = std::to_string(record.model.seed);
  facts["version of Tavmap"] = record.model.version;
  addSettings(record.model.settings, facts);
  facts["conditions"] =
      joined(record.conditions, [](const ConditionRecord& c) { return fmt::format("'{}'", c.name); });
  for (const ConditionRecord& condition : record.conditions) addCondition(condition, facts);
  return facts;
}

// The record as it will be, without what the data will say.
Record plannedRecord(const StudyPlan& plan, std::size_t region) {
  const ResultContext context{plan.request, plan.runs, plan.version, plan.seed, plan.order, {}};
  return referenceRecord(context, emptyResult(plan, region), resultKey(plan, region));
}

// Records have map types and q by map.
void addMaps(const Record& made, const Settings& now, Facts& there, Facts& asked) {
  std::set<tav::MapType> types;
  std::set<double> levels;
  for (const ConditionRecord& condition : made.conditions) {
    for (const MapResult& map : condition.maps) {
      types.insert(map.type);
      for (const ThresholdResult& threshold : map.thresholds) levels.insert(threshold.q);
    }
  }
  const auto name = [](tav::MapType type) {
    return std::string(tav::MAPTYPE_NAMES[static_cast<std::size_t>(type)]);
  };
  const auto number = [](double q) { return fmt::format("{}", q); };
  there["map types"] = joined(types, name), asked["map types"] = joined(now.mapTypes, name);
  if (levels.empty()) return;
  there["q"] = joined(levels, number), asked["q"] = joined(now.qValues, number);
}

// What only one of the two has follows from its conditions, which are told, or from its method.
std::vector<std::string> compared(const Facts& there, const Facts& asked) {
  std::vector<std::string> differences;
  for (const auto& [name, value] : there) {
    const auto now = asked.find(name);
    if (now == asked.end() || now->second == value) continue;
    differences.push_back(
        fmt::format("{}: {} there, {} now", name, shortened(value), shortened(now->second)));
  }
  return differences;
}

std::set<fs::path> inputsOf(const Request& request) {
  std::set<fs::path> files;
  for (const RunRequest& run : request.runs) files.insert({run.bold, run.mask, run.events, run.confounds});
  for (const ReferenceRequest& reference : request.references)
    files.insert({reference.image, reference.table});
  files.erase(fs::path());
  return files;
}

void addChangedInputs(const StudyPlan& plan, const fs::path& record, std::vector<std::string>& differences) {
  std::error_code error;
  const auto made = fs::last_write_time(record, error);
  if (error) return;
  for (const fs::path& file : inputsOf(plan.request)) {
    const auto changed = fs::last_write_time(file, error);
    if (!error && changed > made) differences.push_back(file.string() + " was changed since");
  }
}

}  // namespace

std::vector<std::string> differencesFrom(const Record& made, const fs::path& file, const StudyPlan& plan,
                                         std::size_t region) {
  if (made.key == resultKey(plan, region)) return {};
  const Record planned = plannedRecord(plan, region);
  Facts there = factsOf(made), asked = factsOf(planned);
  addMaps(made, plan.request.settings, there, asked);
  std::vector<std::string> differences = compared(there, asked);
  addChangedInputs(plan, file, differences);
  if (!differences.empty()) return differences;
  if (plan.request.settings.method == Method::kPlugin)
    return {"the references before it, or an input: its path, size or time of change"};
  return {"an input: its path, size or time of change"};
}

}  // namespace study
