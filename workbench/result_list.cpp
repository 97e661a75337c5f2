#include "workbench/result_list.h"

#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <system_error>

#include "formats/file_error.h"
#include "group/group_names.h"
#include "report/reports.h"
#include "report/study_outputs.h"
#include "results/map_words.h"
#include "results/output_names.h"
#include "tav/map_kinds.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr int kDeepest = 4;
constexpr std::size_t kMostFolders = 10'000;

bool isEntered(const fs::directory_entry& entry) {
  std::error_code ignored;
  return entry.is_directory(ignored) && !entry.is_symlink(ignored) &&
         !entry.path().filename().string().starts_with('.');
}

// Tests over participants whose results lie in this folder.
bool holdsTests(const fs::path& folder) {
  const fs::path group = folder / study::kGroupFolder;
  std::error_code error;
  if (fs::is_symlink(group, error)) return false;
  for (fs::directory_iterator at(group, error), end; !error && at != end; at.increment(error))
    if (at->path().filename().string().ends_with(study::kGroupRecordEnd)) return true;
  return false;
}

bool holdsResults(const fs::path& folder) {
  return !report::prefixesIn(folder).empty() || holdsTests(folder);
}

void collect(const fs::path& folder, int depth, std::size_t& looked, std::vector<fs::path>& found) {
  if (++looked > kMostFolders) return;
  std::error_code error;
  fs::directory_iterator at(folder, error);
  if (error) return;  // others' folders, for instance
  if (holdsResults(folder)) found.push_back(folder);
  if (depth == kDeepest) return;
  for (const fs::directory_iterator end; !error && at != end; at.increment(error))
    if (isEntered(*at)) collect(at->path(), depth + 1, looked, found);
}

Json thresholdsOf(const study::MapResult& map) {
  Json list = Json::array();
  for (const study::ThresholdResult& threshold : map.thresholds)
    list.push_back({{"q", threshold.q},
                    {"threshold", threshold.threshold ? Json(*threshold.threshold) : Json()},
                    {"passing", threshold.outsideReference}});
  return list;
}

Json textOrNull(const std::string& text) {
  return text.empty() ? Json() : Json(text);
}

Json mapJson(const study::MapResult& map, const study::Record& record) {
  const study::SignWords signs = study::signWords(map.type, record.reference);
  return {{"label", study::mapLabel(map.type)},
          {"type", tav::mapKind(map.type).keyword},
          {"title", study::mapTitle(map.type, record.reference)},
          {"unit", study::mapUnits(map.type, fmt::format("{:g}", record.model.settings.mapScale))},
          {"positive", signs.positive},
          {"negative", textOrNull(signs.negative)},
          {"file", map.file},
          {"pFile", textOrNull(map.pFile)},
          {"peak", map.peak},
          {"peakMm", map.peakMm},
          {"peakLabel", map.peakLabel},
          {"thresholds", thresholdsOf(map)}};
}

Json conditionJson(const study::ConditionRecord& condition, const study::Record& record) {
  Json maps = Json::array();
  for (const study::MapResult& map : condition.maps) maps.push_back(mapJson(map, record));
  return {{"name", condition.name},
          {"volumes", condition.volumesUsed},
          {"effectiveVolumes", condition.effectiveVolumes},
          {"voxels", condition.voxelsComputed()},
          {"statusFile", condition.statusFile},
          {"directionFile", textOrNull(condition.direction.file)},
          {"maps", maps}};
}

Json referenceJson(const report::ReferenceOutputs& reference) {
  Json conditions = Json::array();
  for (const study::ConditionRecord& condition : reference.record.conditions)
    conditions.push_back(conditionJson(condition, reference.record));
  Json files = Json::array();
  for (const auto& [name, bytes] : reference.record.files)
    files.push_back({{"name", name}, {"bytes", bytes}});
  return {{"name", reference.record.reference},
          {"voxels", reference.record.referenceVoxels},
          {"record", reference.file},
          {"order", reference.record.model.settings.order},
          {"warnings", reference.record.warnings},
          {"conditions", conditions},
          {"files", files}};
}

void addOutputs(const fs::path& folder, const std::string& prefix, Json& json) {
  const report::StudyOutputs outputs = report::readStudyOutputs(folder, prefix);
  for (const auto& reference : outputs.references) json["references"].push_back(referenceJson(reference));
  for (const auto& failure : outputs.failures)
    json["failures"].push_back({{"reference", failure.reference}, {"message", failure.message}});
}

}  // namespace

bool hasIndex(const fs::path& folder) {
  std::error_code ignored;
  return fs::is_regular_file(folder / report::kIndexFile, ignored);
}

std::vector<fs::path> resultFoldersIn(const fs::path& folder) {
  std::vector<fs::path> found;
  std::size_t looked = 0;
  collect(folder, 0, looked, found);
  std::set<fs::path> all(found.begin(), found.end());
  for (fs::path one : found)
    while (one != folder)
      if (hasIndex(one = one.parent_path())) all.insert(one);
  return {all.begin(), all.end()};
}

std::string participantOf(const std::string& prefix) {
  return prefix.starts_with("sub-") ? prefix.substr(0, prefix.find('_')) : "";
}

Json requestJson(const fs::path& folder, const std::string& prefix, const FolderGuard& folders) {
  const FolderGuard::Place place = folders.placeOf(folder);
  Json json{{"folder", place.folder},   {"path", place.path},
            {"name", prefix},           {"participant", participantOf(prefix)},
            {"report", nullptr},        {"references", Json::array()},
            {"failures", Json::array()}};
  std::error_code ignored;
  if (fs::exists(folder / study::reportFileOf(prefix), ignored)) json["report"] = study::reportFileOf(prefix);
  try {
    addOutputs(folder, prefix, json);
  } catch (const formats::FileError& error) {
    json["problem"] = error.what();
  }
  return json;
}

}  // namespace workbench
