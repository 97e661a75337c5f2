#include <fmt/core.h>

#include <algorithm>

#include "request/nearest_name.h"
#include "request/request_tables.h"

namespace study {
namespace {

const std::vector<std::string> kConditionKeys = {
    "name", "runs", "pairs", "whole_run", "intervals", "trial_types", "delay_s", "join_gap_s", "min_volumes"};

int volumeNumber(const TomlTable& table, const toml::node& node) {
  const auto value = node.value_exact<std::int64_t>();
  if (!value || *value < 1 || *value > 1000000) table.fail("intervals", "must hold volume numbers from 1");
  return static_cast<int>(*value);
}

std::vector<VolumeRange> parseRanges(const TomlTable& table, const toml::array& items) {
  std::vector<VolumeRange> ranges;
  for (const toml::node& item : items) {
    const toml::array* pair = item.as_array();
    if (pair == nullptr || pair->size() != 2) table.fail("intervals", "must hold pairs such as [1, 120]");
    const VolumeRange range{volumeNumber(table, (*pair)[0]), volumeNumber(table, (*pair)[1])};
    if (range.last < range.first) table.fail("intervals", "holds an interval that ends before it begins");
    ranges.push_back(range);
  }
  return ranges;
}

void checkRun(const TomlTable& table, std::string_view key, const std::string& run,
              const std::vector<std::string>& runs) {
  if (std::find(runs.begin(), runs.end(), run) != runs.end()) return;
  table.fail(key, fmt::format("names no run of this request: '{}'{}", run, suggestion(run, runs)));
}

void parsePairs(const TomlTable& table, const std::vector<std::string>& runs, ConditionRequest& condition) {
  for (const toml::node& item : *table.array("pairs")) {
    const toml::array* pair = item.as_array();
    const bool two = pair != nullptr && pair->size() == 2 && (*pair)[0].is_string() && (*pair)[1].is_string();
    if (!two) table.fail("pairs", "must hold pairs of run names such as [\"source\", \"target\"]");
    const std::string source = (*pair)[0].as_string()->get(), target = (*pair)[1].as_string()->get();
    checkRun(table, "pairs", source, runs);
    checkRun(table, "pairs", target, runs);
    condition.parts.push_back({source, target, {}});
  }
}

void parseParts(const TomlTable& table, const std::vector<std::string>& runs, ConditionRequest& condition) {
  if (table.has("pairs")) {
    if (table.has("runs")) table.fail("pairs", "and 'runs' exclude each other");
    parsePairs(table, runs, condition);
  }
  for (const std::string& run : table.texts("runs")) {
    checkRun(table, "runs", run, runs);
    condition.parts.push_back({run, run, {}});
  }
  if (condition.parts.empty()) {
    for (const std::string& run : runs) condition.parts.push_back({run, run, {}});
  }
}

// "intervals = { run1 = [[1, 50]], run2 = [[11, 60]] }"
void parsePerRun(const TomlTable& table, const toml::table& perRun, const std::vector<std::string>& runs,
                 ConditionRequest& condition) {
  for (const auto& [key, value] : perRun) {
    const std::string run(key.str());
    checkRun(table, "intervals", run, runs);
    if (!value.is_array()) table.fail("intervals", "must hold a list of pairs for every run");
    for (ConditionPart& part : condition.parts) {
      if (part.source == run) part.typed = parseRanges(table, *value.as_array());
    }
  }
  // A run that the table leaves out takes no part in the condition.
  std::erase_if(condition.parts, [](const ConditionPart& part) { return part.typed.empty(); });
}

void parseIntervals(const TomlTable& table, const std::vector<std::string>& runs, const toml::table& node,
                    ConditionRequest& condition) {
  const toml::node* intervals = node.get("intervals");
  condition.kind = IntervalKind::kTyped;
  if (intervals->is_table()) {
    parsePerRun(table, *intervals->as_table(), runs, condition);
  } else {
    condition.typed = parseRanges(table, *table.array("intervals"));
  }
  const bool none =
      condition.typed.empty() && std::all_of(condition.parts.begin(), condition.parts.end(),
                                             [](const ConditionPart& part) { return part.typed.empty(); });
  if (none) table.fail("intervals", "is empty");
}

void parseKind(const TomlTable& table, const std::vector<std::string>& runs, const toml::table& node,
               ConditionRequest& condition) {
  const bool whole = table.flag("whole_run", false);
  const int given = (whole ? 1 : 0) + (table.has("intervals") ? 1 : 0) + (table.has("trial_types") ? 1 : 0);
  if (given != 1) {
    failAt(
        table.file(), condition.line,
        fmt::format("[[condition]] '{}' needs exactly one of 'whole_run = true', 'intervals', 'trial_types'",
                    condition.name));
  }
  if (table.has("intervals")) parseIntervals(table, runs, node, condition);
  if (table.has("trial_types")) {
    condition.kind = IntervalKind::kEvents;
    condition.trialTypes = table.texts("trial_types");
  }
}

}  // namespace

ConditionRequest parseCondition(const toml::table& node, const RequestPlace& place,
                                const std::vector<std::string>& runs) {
  const TomlTable table(node, place.file, "[[condition]]", kConditionKeys);
  ConditionRequest condition;
  condition.line = table.line();
  condition.name = table.text("name");
  if (condition.name.empty()) failAt(place.file, condition.line, "[[condition]] needs a 'name'");
  parseParts(table, runs, condition);
  parseKind(table, runs, node, condition);
  condition.delaySeconds = table.number("delay_s", 0, -1000, 1000);
  if (table.has("join_gap_s")) condition.joinGapSeconds = table.number("join_gap_s", 0, 0, 10000);
  condition.minimumVolumes = table.integer("min_volumes", 0, 0, 100000);
  return condition;
}

}  // namespace study
