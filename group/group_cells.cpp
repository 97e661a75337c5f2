#include "group/group_cells.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <tuple>

#include "request/nearest_name.h"
#include "request/problem.h"

namespace study {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSession = "ses-";

bool isAboutSessions(const Sides& sides) {
  return sides.first.starts_with(kSession) && sides.second.starts_with(kSession);
}

bool isChosen(const std::vector<std::string>& names, const std::string& name) {
  return names.empty() || std::find(names.begin(), names.end(), name) != names.end();
}

constexpr auto kGroupMaps = std::to_array<GroupMap>({{"Ref2Vox", tav::REF2VOX, GroupValues::kZ},
                                                     {"Vox2Ref", tav::VOX2REF, GroupValues::kZ},
                                                     {"Inst", tav::INST, GroupValues::kZ},
                                                     {"dTAV", tav::DTAV, GroupValues::kEffect},
                                                     {"dTAVrev", tav::DTAV, GroupValues::kReversed}});

std::vector<const GroupMap*> mapsOf(const GroupQuestion& question) {
  std::vector<const GroupMap*> maps;
  for (const std::string& label : question.maps) maps.push_back(&groupMapNamed(label, question.name));
  if (maps.empty())
    for (const GroupMap& map : kGroupMaps) maps.push_back(&map);
  return maps;
}

const std::string& fileOf(const MapResult& map, GroupValues values) {
  return values == GroupValues::kZ          ? map.zFile
         : values == GroupValues::kReversed ? map.reversedFile
                                            : map.file;
}

// A difference of conditions has two of them, everything else each that is chosen.
void requireKnown(const GroupResult& group, const GroupQuestion& question) {
  std::set<std::string> references, conditions, sessions;
  for (const GroupRecord& record : group.records) {
    references.insert(record.record.reference);
    if (record.name.has("ses")) sessions.insert("ses-" + record.name.get("ses"));
    for (const ConditionRecord& condition : record.record.conditions) conditions.insert(condition.name);
  }
  const auto require = [&](const char* what, const std::string& name, const std::set<std::string>& known) {
    if (known.count(name) > 0) return;
    throw InputError(fmt::format("test '{}': no record has the {} '{}'{}", question.name, what, name,
                                 suggestion(name, {known.begin(), known.end()})));
  };
  for (const std::string& name : question.references) require("reference", name, references);
  for (const std::string& name : question.conditions) require("condition", name, conditions);
  const Sides sides = sidesOf(question.within);
  if (sides.empty()) return;
  const bool ofSessions = isAboutSessions(sides);
  for (const std::string& side : {sides.first, sides.second})
    require(ofSessions ? "session" : "condition", side, ofSessions ? sessions : conditions);
}

// What tells cells apart.
struct CellKey {
  std::string task, session, reference, condition;
  std::string map;
  auto operator<=>(const CellKey&) const = default;
};

class CellFinder {
 public:
  CellFinder(const GroupResult& group, const GroupQuestion& question)
      : group_(group), question_(question), sides_(sidesOf(question.within)), maps_(mapsOf(question)) {}

  std::vector<GroupCell> find() {
    for (const GroupRecord& record : group_.records)
      if (isChosen(question_.references, record.record.reference)) addRecord(record);
    std::vector<GroupCell> cells;
    for (const CellKey& key : order_) {
      GroupCell cell = cellOf(key);
      if (cell.rows.size() > 1) cells.push_back(std::move(cell));
    }
    return cells;
  }

 private:
  struct Found {
    CellImage plus, minus;
  };

  void addRecord(const GroupRecord& record) {
    if (isLeftOut(record.name.get("sub"))) return;
    for (const ConditionRecord& condition : record.record.conditions)
      for (const MapResult& map : condition.maps)
        for (const GroupMap* kind : maps_)
          if (kind->type == map.type) addMap(record, condition, map, *kind);
  }

  [[nodiscard]] bool isLeftOut(const std::string& participant) const {
    return std::find(question_.leftOut.begin(), question_.leftOut.end(), participant) !=
           question_.leftOut.end();
  }

  void addMap(const GroupRecord& record, const ConditionRecord& condition, const MapResult& map,
              const GroupMap& kind) {
    const std::string session = record.name.get("ses");
    const auto add = [&](const std::string& keySession, const std::string& keyCondition, bool isMinus) {
      addImage({record.name.get("task"), keySession, record.record.reference, keyCondition, kind.label},
               record, imageOf(record, condition, map, kind), isMinus);
    };
    if (sides_.empty()) {
      if (isChosen(question_.conditions, condition.name)) add(session, condition.name, false);
    } else if (isAboutSessions(sides_)) {
      if (!isChosen(question_.conditions, condition.name)) return;
      if ("ses-" + session == sides_.first) add("", condition.name, false);
      if ("ses-" + session == sides_.second) add("", condition.name, true);
    } else {
      if (condition.name == sides_.first) add(session, question_.within, false);
      if (condition.name == sides_.second) add(session, question_.within, true);
    }
  }

  [[nodiscard]] CellImage imageOf(const GroupRecord& record, const ConditionRecord& condition,
                                  const MapResult& map, const GroupMap& kind) const {
    const fs::path folder = fs::path(record.file).parent_path();
    const std::string& file = fileOf(map, kind.values);
    if (file.empty()) {
      throw InputError(fmt::format(
          "{}: there is no image for the group map {}; run the participant level again, with method "
          "\"calibrated\" and null_draws of 2 or more, or leave the map out of 'maps'",
          record.file, kind.label));
    }
    const std::string directions = condition.direction.file;
    return {(folder / file).generic_string(), (folder / condition.statusFile).generic_string(),
            directions.empty() ? "" : (folder / directions).generic_string(), record.record.key};
  }

  void addImage(const CellKey& key, const GroupRecord& record, CellImage image, bool isMinus) {
    if (images_.count(key) == 0) order_.push_back(key);
    const std::string participant = record.name.get("sub");
    Found& found = images_[key][participant];
    CellImage& place = isMinus ? found.minus : found.plus;
    if (!place.image.empty()) {
      throw InputError(fmt::format(
          "participant '{}' has several results of reference '{}', condition '{}', such as {} and {}; choose "
          "one "
          "with --task-label, --session-label or --space, or pool the runs at the participant level",
          participant, key.reference, key.condition, place.image, image.image));
    }
    place = std::move(image);
  }

  [[nodiscard]] GroupCell cellOf(const CellKey& key) const {
    GroupCell cell{key.task,
                   key.session,
                   key.reference,
                   key.condition,
                   isAboutSessions(sides_) ? question_.within : "",
                   &groupMapNamed(key.map, question_.name),
                   {},
                   {}};
    for (const auto& [participant, found] : images_.at(key)) {
      if (found.plus.image.empty() || (!sides_.empty() && found.minus.image.empty())) {
        cell.leftOut.push_back(fmt::format("sub-{} has no map of '{}'", participant,
                                           found.plus.image.empty() ? sides_.first : sides_.second));
      } else {
        cell.rows.push_back({participant, found.plus, found.minus});
      }
    }
    return cell;
  }

  const GroupResult& group_;
  const GroupQuestion& question_;
  Sides sides_;
  std::vector<const GroupMap*> maps_;
  std::map<CellKey, std::map<std::string, Found>> images_;
  std::vector<CellKey> order_;
};

}  // namespace

std::span<const GroupMap> groupMaps() {
  return kGroupMaps;
}

const GroupMap& groupMapNamed(const std::string& label, const std::string& test) {
  const auto found = std::find_if(kGroupMaps.begin(), kGroupMaps.end(),
                                  [&](const GroupMap& map) { return map.label == label; });
  if (found != kGroupMaps.end()) return *found;
  std::string known;
  for (const GroupMap& map : kGroupMaps) known += (known.empty() ? "" : ", ") + std::string(map.label);
  throw InputError(
      fmt::format("test '{}': groups are asked of the maps {}, not of '{}'", test, known, label));
}

std::vector<GroupCell> cellsOf(const GroupResult& group, const GroupQuestion& question) {
  requireKnown(group, question);
  return CellFinder(group, question).find();
}

}  // namespace study
