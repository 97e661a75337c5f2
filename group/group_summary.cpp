#include "group/group_summary.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <tuple>

#include "group/group_table.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;
using Labels = std::set<std::string>;

struct CountAtQ {
  Labels among, passing;
};

struct MapCounts {
  std::map<double, CountAtQ> atQ;
  double lowestPeak = std::numeric_limits<double>::infinity();
  double highestPeak = -std::numeric_limits<double>::infinity();
};

struct Block {
  Labels participants;
  std::map<tav::MapType, MapCounts> maps;
};

// Session, task, reference, condition.
using BlockName = std::tuple<std::string, std::string, std::string, std::string>;

constexpr const char* kMeaning =
    "Counted are participants with any voxel outside the reference that reaches the participant's own "
    "threshold, wherever it lies. This is a count, not a group test.";

void addMap(const std::string& participant, const MapResult& map, MapCounts& counts) {
  for (const ThresholdResult& result : map.thresholds) {
    CountAtQ& count = counts.atQ[result.q];
    count.among.insert(participant);
    if (result.outsideReference > 0) count.passing.insert(participant);
  }
  counts.lowestPeak = std::min(counts.lowestPeak, map.peak);  // a NaN changes neither
  counts.highestPeak = std::max(counts.highestPeak, map.peak);
}

std::map<BlockName, Block> blocksOf(const GroupResult& group) {
  std::map<BlockName, Block> blocks;
  for (const GroupRecord& record : group.records) {
    const std::string participant = record.name.get("sub");
    for (const ConditionRecord& condition : record.record.conditions) {
      Block& block =
          blocks[{record.name.get("ses"), record.name.get("task"), record.record.reference, condition.name}];
      block.participants.insert(participant);
      for (const MapResult& map : condition.maps) addMap(participant, map, block.maps[map.type]);
    }
  }
  return blocks;
}

std::string counted(std::size_t count, const char* what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::size_t participantsOf(const GroupResult& group) {
  Labels all;
  for (const GroupRecord& record : group.records) all.insert(record.name.get("sub"));
  return all.size();
}

void printMap(tav::MapType type, const MapCounts& counts, std::ostream& out) {
  out << "  " << tav::MAPTYPE_NAMES[static_cast<std::size_t>(type)] << ": ";
  if (counts.atQ.empty()) out << "no thresholds";
  bool first = true;
  for (const auto& [q, count] : counts.atQ) {
    out << (first ? "" : "; ") << "q = " << numberText(q) << ": " << count.passing.size() << " of "
        << count.among.size();
    first = false;
  }
  out << "; peaks " << numberText(counts.lowestPeak) << " to " << numberText(counts.highestPeak) << "\n";
}

void printBlock(const BlockName& name, const Block& block, std::ostream& out) {
  const auto& [session, task, reference, condition] = name;
  if (!session.empty()) out << "ses-" << session << ", ";
  if (!task.empty()) out << "task-" << task << ", ";
  out << reference << ", " << condition << ": " << counted(block.participants.size(), "participant") << "\n";
  for (const auto& [type, counts] : block.maps) printMap(type, counts, out);
}

Json mapJson(tav::MapType type, const MapCounts& counts) {
  Json json = {{"MapType", tav::MAPTYPE_NAMES[static_cast<std::size_t>(type)]},
               {"Thresholds", Json::array()}};
  for (const auto& [q, count] : counts.atQ) {
    json["Thresholds"].push_back(
        {{"Q", q}, {"ParticipantsPassing", count.passing.size()}, {"Participants", count.among.size()}});
  }
  json["LowestPeak"] = counts.lowestPeak;  // infinities, when no peak was recorded, are written as null
  json["HighestPeak"] = counts.highestPeak;
  return json;
}

Json blockJson(const BlockName& name, const Block& block) {
  const auto& [session, task, reference, condition] = name;
  Json json = {{"Session", session}, {"Task", task}, {"Reference", reference}, {"Condition", condition}};
  json["Participants"] = block.participants.size();
  json["Maps"] = Json::array();
  for (const auto& [type, counts] : block.maps) json["Maps"].push_back(mapJson(type, counts));
  return json;
}

}  // namespace

void printGroup(const GroupResult& group, std::ostream& out) {
  out << counted(group.records.size(), "record") << " of " << counted(participantsOf(group), "participant")
      << "\n";
  for (const auto& [name, block] : blocksOf(group)) printBlock(name, block, out);
  out << kMeaning << "\n";
  for (const std::string& caution : group.cautions) out << "WARNING: " << caution << "\n";
}

Json groupJson(const GroupResult& group, const std::string& version) {
  Json json = {{"SoftwareVersion", version}, {"Failed", !group.failures.empty()}, {"Table", kGroupTable}};
  json["Records"] = group.records.size();
  json["Participants"] = participantsOf(group);
  json["Counts"] = Json::array();
  for (const auto& [name, block] : blocksOf(group)) json["Counts"].push_back(blockJson(name, block));
  json["Meaning"] = kMeaning;
  json["Warnings"] = group.cautions;
  json["Failures"] = group.failures;
  return json;
}

}  // namespace study
