#include "study/bids_group.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <tuple>

#include "formats/atomic_file.h"
#include "formats/file_error.h"
#include "study/bids_filter.h"
#include "study/bids_group_settings.h"
#include "study/problem.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

struct RecordFile {
  BidsName name;
  fs::path path;
};

double numberOr(const Json& value, double otherwise) {
  return value.is_null() ? otherwise : value.get<double>();
}

ThresholdResult thresholdOf(const Json& json) {
  ThresholdResult result;
  result.q = json.at("Q").get<double>();
  if (!json.at("Threshold").is_null()) result.threshold = json.at("Threshold").get<double>();
  result.voxelsPassing = json.at("VoxelsPassing").get<std::size_t>();
  result.outsideReference = json.at("VoxelsPassingOutsideReference").get<std::size_t>();
  return result;
}

tav::MapType mapTypeOf(const std::string& name) {
  const auto found = std::find(tav::MAPTYPE_NAMES.begin(), tav::MAPTYPE_NAMES.end(), name);
  if (found == tav::MAPTYPE_NAMES.end()) throw InputError("unknown map type '" + name + "'");
  return static_cast<tav::MapType>(found - tav::MAPTYPE_NAMES.begin());
}

MapResult mapOf(const Json& json) {
  MapResult map;
  map.type = mapTypeOf(json.at("MapType").get<std::string>());
  map.file = json.at("File").get<std::string>();
  for (const Json& threshold : json.value("Thresholds", Json::array()))
    map.thresholds.push_back(thresholdOf(threshold));
  std::stable_sort(map.thresholds.begin(), map.thresholds.end(),
                   [](const auto& a, const auto& b) { return a.q < b.q; });
  const Json& peak = json.at("Peak");
  map.peak = numberOr(peak.at("Value"), std::numeric_limits<double>::quiet_NaN());
  map.peakVoxel = peak.at("Voxel").get<std::array<int, 3>>();
  map.peakMm = peak.at("Millimetres").get<std::array<double, 3>>();
  return map;
}

GroupCondition conditionOf(const Json& json) {
  GroupCondition condition;
  condition.name = json.at("Name").get<std::string>();
  condition.effectiveVolumes = json.at("EffectiveVolumes").get<int>();
  condition.voxelsComputed = json.at("Voxels").at(statusName(StatusCode::kComputed)).get<std::size_t>();
  for (const Json& map : json.at("Maps")) condition.maps.push_back(mapOf(map));
  // Without computed voxels the record names the first voxel of all.
  if (condition.voxelsComputed == 0) {
    for (MapResult& map : condition.maps) map.peak = std::numeric_limits<double>::quiet_NaN();
  }
  std::stable_sort(condition.maps.begin(), condition.maps.end(),
                   [](const MapResult& a, const MapResult& b) { return a.type < b.type; });
  return condition;
}

GroupRecord recordOf(const Json& json) {
  GroupRecord record;
  record.reference = json.at("Reference").get<std::string>();
  record.method = json.at("Method").get<std::string>();
  record.version = json.at("SoftwareVersion").get<std::string>();
  record.order = json.at("ModelOrder").get<int>();
  record.seed = json.at("Seed").get<std::uint32_t>();
  for (const Json& condition : json.at("Conditions")) record.conditions.push_back(conditionOf(condition));
  std::stable_sort(record.conditions.begin(), record.conditions.end(),
                   [](const GroupCondition& a, const GroupCondition& b) { return a.name < b.name; });
  return record;
}

void readRecord(const RecordFile& file, const fs::path& outDir, GroupResult& group, SettingsSeen& settings) {
  const std::string remedy =
      "; left out, run the participant level of 'sub-" + file.name.get("sub") + "' again";
  try {
    const Json json = Json::parse(formats::readTextFile(file.path.string()));
    GroupRecord record = recordOf(json);
    settings.add(json);
    record.name = file.name;
    record.file = file.path.lexically_relative(outDir).generic_string();
    group.records.push_back(std::move(record));
  } catch (const Json::exception& error) {
    const std::string what = error.what();  // "[json.exception.type_error.302] type must be ..."
    const std::size_t end = what.find("] ");
    group.failures.push_back(file.path.string() + ": not a whole record (" +
                             (end == std::string::npos ? what : what.substr(end + 2)) + ")" + remedy);
  } catch (const formats::FileError& error) {
    group.failures.push_back(file.path.string() + ": " + error.reason() + remedy);
  } catch (const InputError& error) {
    group.failures.push_back(file.path.string() + ": " + error.what() + remedy);
  }
}

bool isRecord(const std::string& fileName) {
  constexpr std::string_view kEnd = "_tavmap.json";
  return fileName.size() > kEnd.size() && fileName.ends_with(kEnd) && fileName != "group_tavmap.json";
}

// Hidden folders hold results in the making.
std::vector<fs::path> recordFilesBelow(const fs::path& folder) {
  std::vector<fs::path> files;
  try {
    for (fs::recursive_directory_iterator entry(folder), end; entry != end; ++entry) {
      const std::string name = entry->path().filename().string();
      if (entry->is_directory()) {
        if (name[0] == '.') entry.disable_recursion_pending();
      } else if (isRecord(name)) {
        files.push_back(entry->path());
      }
    }
  } catch (const fs::filesystem_error& error) {
    throw InputError(error.path1().string() + ": cannot be searched for records (" + error.code().message() +
                     "); check the folder and its permissions");
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<RecordFile> recordsOfParticipants(const fs::path& outDir, std::vector<std::string>& cautions) {
  const std::vector<fs::path> files =
      fs::is_directory(outDir) ? recordFilesBelow(outDir) : std::vector<fs::path>();
  std::vector<RecordFile> records;
  for (const fs::path& file : files) {
    const BidsName name = parseBidsName(file.filename().string());
    if (name.has("sub"))
      records.push_back({name, file});
    else
      cautions.push_back(file.string() + " names no participant (sub-LABEL_...) and is left out");
  }
  if (records.empty()) {
    throw InputError("no record of a participant (sub-*_tavmap.json) below " + outDir.string() +
                     "; run the participant level into this folder first");
  }
  return records;
}

void choose(const BidsQuery& query, std::vector<RecordFile>& records) {
  filterBy("sub", "record", "participant", query.participants, records);
  filterBy("ses", "record", "session", query.sessions, records);
  filterBy("task", "record", "task", query.tasks, records);
  if (query.space.empty()) return;
  std::set<std::string> known;
  for (const RecordFile& record : records) known.insert(spaceOf(record.name));
  std::erase_if(records, [&](const RecordFile& record) { return !isInSpace(record.name, query.space); });
  if (records.empty()) {
    throw InputError("no record in space '" + query.space + "'" +
                     suggestion(query.space, {known.begin(), known.end()}));
  }
}

auto subjectOf(const GroupRecord& record) {
  return std::tuple(record.name.get("sub"), record.name.get("ses"), record.name.get("task"),
                    record.reference);
}

// One run or one space of a participant beside another, for instance.
void tellRepeated(const std::vector<GroupRecord>& records, std::vector<std::string>& cautions) {
  const auto same = [](const GroupRecord& a, const GroupRecord& b) { return subjectOf(a) == subjectOf(b); };
  const auto first = std::adjacent_find(records.begin(), records.end(), same);
  if (first == records.end()) return;
  cautions.push_back(
      "several records of one participant, session, task and reference, such as " + first->file + " and " +
      std::next(first)->file +
      ": each has its rows, and the counts take a participant once, as passing when one of them passes");
}

}  // namespace

GroupResult readGroup(const fs::path& outDir, const BidsQuery& query) {
  GroupResult group;
  std::vector<RecordFile> files = recordsOfParticipants(outDir, group.cautions);
  choose(query, files);
  SettingsSeen settings;
  for (const RecordFile& file : files) readRecord(file, outDir, group, settings);
  std::stable_sort(group.records.begin(), group.records.end(),
                   [](const GroupRecord& a, const GroupRecord& b) {
                     return std::tuple_cat(subjectOf(a), std::tie(a.file)) <
                            std::tuple_cat(subjectOf(b), std::tie(b.file));
                   });
  for (std::string& caution : settings.differences()) group.cautions.push_back(std::move(caution));
  tellRepeated(group.records, group.cautions);
  return group;
}

}  // namespace study
