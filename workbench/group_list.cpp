#include "workbench/group_list.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>

#include "formats/file_error.h"
#include "group/group_names.h"
#include "report/group_outputs.h"
#include "report/group_sections.h"
#include "results/output_names.h"

namespace workbench {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr double kLevelOfT = 0.05;  // at which records keep the threshold of t

struct GroupSigns {
  std::string positive, negative;  // the latter empty where less counts for nothing
};

// In the words of the group's page.
GroupSigns groupSigns(const study::GroupTestRecord& record) {
  if (!record.isTwoSided) return {"more than the voxels' own null values", ""};
  const study::Sides sides = study::sidesOf(record.contrast);
  if (!sides.empty()) return {"larger in " + sides.first, "larger in " + sides.second};
  if (record.contrast != "mean") return {"grows with " + record.contrast, "falls with " + record.contrast};
  return {"above 0", "below 0"};
}

Json cellJson(const study::GroupTestRecord& record) {
  const GroupSigns signs = groupSigns(record);
  Json images = Json::array();
  for (const study::GroupImage& image : record.images)
    images.push_back({{"what", image.what}, {"file", image.file}});
  const Json threshold = std::isfinite(record.tAtQ) ? Json(record.tAtQ) : Json();
  return {{"title", report::cellTitle(record)},
          {"condition", record.condition},
          {"map", record.map},
          {"positive", signs.positive},
          {"negative", signs.negative.empty() ? Json() : Json(signs.negative)},
          {"images", images},
          {"thresholds", Json::array({{{"q", kLevelOfT}, {"threshold", threshold}}})}};
}

Json groupJson(const report::GroupOutputs& outputs, const FolderGuard& folders) {
  const FolderGuard::Place place = folders.placeOf(outputs.folder());
  Json json{{"folder", place.folder},
            {"path", place.path},
            {"test", outputs.test},
            {"report", nullptr},
            {"cells", Json::array()}};
  const std::string report = study::reportFileOf(outputs.test);
  std::error_code ignored;
  if (fs::exists(outputs.path(report), ignored)) json["report"] = report;
  for (const report::TestedCell& cell : outputs.cells) json["cells"].push_back(cellJson(cell.record));
  return json;
}

}  // namespace

Json groupsJson(const fs::path& outDir, const FolderGuard& folders) {
  Json groups = Json::array();
  try {
    for (const report::GroupOutputs& outputs : report::readGroupOutputs(outDir))
      groups.push_back(groupJson(outputs, folders));
  } catch (const formats::FileError& error) {
    const FolderGuard::Place place = folders.placeOf(outDir / study::kGroupFolder);
    groups.push_back({{"folder", place.folder},
                      {"path", place.path},
                      {"test", study::kGroupFolder},
                      {"report", nullptr},
                      {"problem", error.what()},
                      {"cells", Json::array()}});
  }
  return groups;
}

}  // namespace workbench
