#include "group/group_settings.h"

#include <fmt/core.h>

#include <nlohmann/json.hpp>
#include <set>

#include "request/settings_table.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;

// As in the records, but texts without quotation marks.
std::string textOf(const SettingValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  return std::visit([](const auto& number) { return Json(number).dump(); }, value);
}

template <typename Items>
std::string joined(const Items& items) {
  std::string text;
  for (const auto& item : items) text += (text.empty() ? "" : " ") + textOf(item);
  return text.empty() ? "none" : text;
}

using Values = std::map<std::string, std::set<std::string>>;  // of one record, by setting in words

void addCondition(const ConditionRecord& condition, Values& values) {
  for (const RunRecord& run : condition.runs) {
    values["repetition time"].insert(textOf(run.repetitionTime) + " s");
    values["confounds regressed"].insert(joined(run.confoundsRegressed));
  }
  for (const MapResult& map : condition.maps) {
    std::vector<double> levels;
    for (const ThresholdResult& threshold : map.thresholds) levels.push_back(threshold.q);
    if (!levels.empty()) values["q"].insert(joined(levels));
  }
}

std::string differenceText(const std::string& setting, const std::map<std::string, int>& values) {
  constexpr std::size_t kMostValues = 4, kMostLetters = 60;
  std::string text = fmt::format("the records differ in {}:", setting);
  std::size_t told = 0;
  for (const auto& [value, records] : values) {
    if (told++ == kMostValues) break;
    text += fmt::format("{}{}{} ({}{}", told > 1 ? "; " : " ", value.substr(0, kMostLetters),
                        value.size() > kMostLetters ? "..." : "", records,
                        records == 1 ? " record)" : " records)");
  }
  if (values.size() > kMostValues) text += fmt::format("; and {} more", values.size() - kMostValues);
  return text + "; compare their rows with care, or repeat the participant level alike for all";
}

}  // namespace

void SettingsSeen::add(const Record& record) {
  Values values;
  values["software version"].insert(record.model.version);
  const Settings& settings = record.model.settings;
  for (const Setting* row : recordedSettings()) {
    if (isKept(*row, settings.method)) values[row->name].insert(textOf(valuesOf(*row, settings).at(0)));
  }
  for (const ConditionRecord& condition : record.conditions) addCondition(condition, values);
  for (const auto& [setting, own] : values) {
    for (const std::string& value : own) ++seen_[setting][value];
  }
}

std::vector<std::string> SettingsSeen::differences() const {
  std::vector<std::string> cautions;
  for (const auto& [setting, values] : seen_) {
    if (values.size() > 1) cautions.push_back(differenceText(setting, values));
  }
  return cautions;
}

}  // namespace study
