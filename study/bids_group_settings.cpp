#include "study/bids_group_settings.h"

#include <set>
#include <utility>

namespace study {
namespace {

using Json = nlohmann::ordered_json;

// Entries of a record that results of different participants should share, and their names in words.
constexpr std::pair<const char*, const char*> kSettings[] = {
    {"SoftwareVersion", "software version"},
    {"Method", "method"},
    {"ModelOrder", "model order"},
    {"ModelOrderChosenBy", "choice of the model order"},
    {"NumberOfSurrogates", "number of surrogates"},
    {"NullDrawsPerVoxel", "null draws per voxel"},
    {"DiscardedSimulatedTimePoints", "discarded simulated time points"},
    {"CVConstant", "constant of the false discovery rate"},
    {"FirstTimePointInclusionThreshold", "inclusion threshold"},
    {"InstantaneousLowerThreshold", "lower threshold of the instantaneous influence"},
    {"RCUpperThreshold", "upper threshold of DTAV_RC"},
    {"MapScaleFactor", "factor of the maps"}};

std::string textOf(const Json& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

std::string joined(const Json& list) {
  std::string text;
  for (const Json& item : list) text += (text.empty() ? "" : " ") + textOf(item);
  return text.empty() ? "none" : text;
}

using Values = std::map<std::string, std::set<std::string>>;  // of one record, by setting in words

void addCondition(const Json& condition, Values& values) {
  for (const Json& run : condition.at("Runs")) {
    values["repetition time"].insert(textOf(run.at("RepetitionTime")) + " s");
    values["confounds regressed"].insert(joined(run.at("ConfoundsRegressed")));
  }
  for (const Json& map : condition.at("Maps")) {
    Json levels = Json::array();
    for (const Json& threshold : map.value("Thresholds", Json::array())) levels.push_back(threshold.at("Q"));
    if (!levels.empty()) values["q"].insert(joined(levels));
  }
}

std::string differenceText(const std::string& setting, const std::map<std::string, int>& values) {
  constexpr std::size_t kMostValues = 4, kMostLetters = 60;
  std::string text = "the records differ in " + setting + ":";
  std::size_t told = 0;
  for (const auto& [value, records] : values) {
    if (told++ == kMostValues) break;
    text += (told > 1 ? "; " : " ") + value.substr(0, kMostLetters) +
            (value.size() > kMostLetters ? "..." : "") + " (" + std::to_string(records) +
            (records == 1 ? " record)" : " records)");
  }
  if (values.size() > kMostValues) text += "; and " + std::to_string(values.size() - kMostValues) + " more";
  return text + "; compare their rows with care, or repeat the participant level alike for all";
}

}  // namespace

void SettingsSeen::add(const Json& record) {
  Values values;
  for (const auto& [key, words] : kSettings)
    values[words].insert(textOf(record.value(key, Json("not recorded"))));
  for (const Json& condition : record.at("Conditions")) addCondition(condition, values);
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
