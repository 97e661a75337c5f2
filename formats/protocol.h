// Stimulation protocols: named conditions, each a list of intervals.
#ifndef TAVMAP_FORMATS_PROTOCOL_H
#define TAVMAP_FORMATS_PROTOCOL_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace formats {

enum class TimeUnit : std::int32_t { kVolumes = 1, kMilliseconds = 2 };

// Both ends belong to the interval. Volumes count from 1, milliseconds from the first volume's start.
struct Interval {
  std::int32_t start = 0, end = 0;
  friend bool operator==(const Interval&, const Interval&) = default;
};

struct ProtocolCondition {
  std::string name;
  std::vector<Interval> intervals;  // by ascending start
};

// A row of an events table that is not what it seems: without onset or trial type, or over before the first
// volume begins, it is left out; without duration it lasts no time.
enum class RowFlaw { kNoOnset, kNoType, kBeforeStart, kNoDuration };
struct FlawedRow {
  RowFlaw flaw = RowFlaw::kNoOnset;
  std::size_t line = 0;  // of the file, from 1
  friend bool operator==(const FlawedRow&, const FlawedRow&) = default;
};

struct Protocol {
  TimeUnit unit = TimeUnit::kVolumes;
  std::vector<ProtocolCondition> conditions;
  std::vector<FlawedRow> flawed = {};  // in order of lines
};

// Reads either kind of table, told apart by its columns:
//
//   onset, duration (seconds), trial_type     a BIDS events table: a protocol in milliseconds.
//     Conditions are the trial types in order of first appearance; without that column there is
//     one, "events". Within a condition, events whose gap is shorter than one TR (`trMs`) are
//     joined, since experiments list the single pictures of a block; with a negative one none are, even
//     if they overlap by less. Rows whose onset or
//     trial_type is n/a are passed over, a duration n/a counts as 0. What lies before the first
//     volume is cut off.
//
//   condition, first_volume, last_volume      a protocol in volumes, nothing is joined.
//
// Throws FileError, naming the line.
[[nodiscard]] Protocol readProtocol(const std::string& path, double trMs);
[[nodiscard]] Protocol parseProtocol(const std::string& text, const std::string& path, double trMs);

// Writes the kind of table that its unit asks for.
void writeProtocol(const std::string& path, const Protocol& protocol);

}  // namespace formats

#endif
