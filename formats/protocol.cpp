#include "formats/protocol.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <utility>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "formats/table.h"

namespace formats {
namespace {

constexpr const char* kOnlyCondition = "events";

std::vector<Interval>& intervalsOf(Protocol& protocol, const std::string& name) {
  auto& conditions = protocol.conditions;
  const auto found = std::find_if(conditions.begin(), conditions.end(),
                                  [&](const ProtocolCondition& condition) { return condition.name == name; });
  if (found != conditions.end()) return found->intervals;
  conditions.push_back({name, {}});
  return conditions.back().intervals;
}

void sortByStart(Protocol& protocol) {
  for (auto& condition : protocol.conditions) {
    std::stable_sort(condition.intervals.begin(), condition.intervals.end(),
                     [](const Interval& a, const Interval& b) { return a.start < b.start; });
  }
}

// Overlapping events are joined as well: their gap is negative.
std::vector<Interval> joined(const std::vector<Interval>& events, double trMs) {
  std::vector<Interval> blocks;
  for (const auto& event : events) {
    const bool near = !blocks.empty() && static_cast<double>(event.start) - blocks.back().end < trMs;
    if (near) {
      blocks.back().end = std::max(blocks.back().end, event.end);
    } else {
      blocks.push_back(event);
    }
  }
  return blocks;
}

std::int32_t toMilliseconds(const Table& table, std::size_t row, double seconds) {
  const double ms = std::nearbyint(seconds * 1000);
  if (std::abs(ms) > std::numeric_limits<std::int32_t>::max()) {
    table.fail(row, "the time is out of range", "Give onset and duration in seconds");
  }
  return static_cast<std::int32_t>(ms);
}

void addEvent(const Table& table, std::size_t row, const std::string& condition, double onset,
              double duration, Protocol& protocol) {
  if (duration < 0) table.fail(row, "the duration is negative", "Correct the duration");
  const Interval event{toMilliseconds(table, row, onset), toMilliseconds(table, row, onset + duration)};
  auto& intervals = intervalsOf(protocol, condition);
  if (event.end >= 0) intervals.push_back({std::max(event.start, 0), event.end});
  if (event.end < 0) protocol.flawed.push_back({RowFlaw::kBeforeStart, table.line(row)});
}

void addRow(const Table& table, std::size_t row, const std::string& condition, std::optional<double> onset,
            std::optional<double> duration, Protocol& protocol) {
  const auto note = [&](RowFlaw flaw) { protocol.flawed.push_back({flaw, table.line(row)}); };
  if (!onset) return note(RowFlaw::kNoOnset);
  if (isMissing(condition)) return note(RowFlaw::kNoType);
  if (!duration) note(RowFlaw::kNoDuration);
  addEvent(table, row, condition, *onset, duration.value_or(0), protocol);
}

Protocol fromEvents(const Table& table, double trMs) {
  const std::size_t onset = table.require("onset"), duration = table.require("duration");
  const auto type = table.find("trial_type");
  Protocol protocol{TimeUnit::kMilliseconds, {}, {}};
  for (std::size_t row = 0; row < table.rows(); ++row) {
    const std::string name = type ? table.cell(row, *type) : kOnlyCondition;
    addRow(table, row, name, table.number(row, onset), table.number(row, duration), protocol);
  }
  sortByStart(protocol);
  for (auto& condition : protocol.conditions) condition.intervals = joined(condition.intervals, trMs);
  return protocol;
}

Protocol fromVolumes(const Table& table) {
  const std::size_t name = table.require("condition"), first = table.require("first_volume"),
                    last = table.require("last_volume");
  Protocol protocol{TimeUnit::kVolumes, {}, {}};
  for (std::size_t row = 0; row < table.rows(); ++row) {
    const Interval interval{table.integer(row, first), table.integer(row, last)};
    if (interval.start < 1) table.fail(row, "the first volume is below 1", "Count volumes from 1");
    if (interval.end < interval.start)
      table.fail(row, "the last volume comes before the first", "Correct the interval");
    if (isMissing(table.cell(row, name))) table.fail(row, "the condition has no name", "Name the condition");
    intervalsOf(protocol, table.cell(row, name)).push_back(interval);
  }
  sortByStart(protocol);
  return protocol;
}

std::string seconds(std::int32_t ms) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", ms / 1000.0);
  return text;
}

std::string lineOf(const Protocol& protocol, const ProtocolCondition& condition, const Interval& interval) {
  const std::string name = tsvCell(condition.name);
  if (protocol.unit == TimeUnit::kVolumes) {
    return fmt::format("{}\t{}\t{}\n", name, interval.start, interval.end);
  }
  return fmt::format("{}\t{}\t{}\n", seconds(interval.start), seconds(interval.end - interval.start), name);
}

}  // namespace

Protocol readProtocol(const std::string& path, double trMs) {
  return parseProtocol(readTextFile(path), path, trMs);
}

Protocol parseProtocol(const std::string& text, const std::string& path, double trMs) {
  const Table table = Table::parse(text, path);
  const bool events = table.find("onset").has_value();
  if (!events && !table.find("first_volume")) {
    throw FileError(path, "it is neither an events table nor a table of volumes",
                    "Name the columns onset, duration, trial_type or condition, first_volume, last_volume");
  }
  Protocol protocol = events ? fromEvents(table, trMs) : fromVolumes(table);
  if (protocol.conditions.empty()) throw FileError(path, "it holds no events", "Give at least one");
  return protocol;
}

void writeProtocol(const std::string& path, const Protocol& protocol) {
  std::string text = protocol.unit == TimeUnit::kVolumes ? "condition\tfirst_volume\tlast_volume\n"
                                                         : "onset\tduration\ttrial_type\n";
  for (const auto& condition : protocol.conditions) {
    for (const auto& interval : condition.intervals) text += lineOf(protocol, condition, interval);
  }
  writeTextFile(path, text);
}

}  // namespace formats
