#include "group/group_table.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "formats/atomic_file.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

struct Column {
  const char* name;
  const char* description;
};

constexpr std::array kColumns = {
    Column{"participant_id", "participant"},
    Column{"session_id", "session; n/a when the data set has none"},
    Column{"task", "task"},
    Column{"run",
           "run, when the record is of one run alone; n/a when it pools several or the runs have no number"},
    Column{"space", "space of the maps; n/a when their names have none"},
    Column{"reference", "reference region"},
    Column{"condition", "condition"},
    Column{"map", "kind of map"},
    Column{"model_order", "order of the autoregressive models, in volumes"},
    Column{"effective_volumes", "volumes that enter the model, those lost to its order left out"},
    Column{"voxels_computed", "voxels outside the reference that have a value"},
    Column{
        "q",
        "level of the false discovery rate over the voxels of this one map; n/a for maps without thresholds"},
    Column{"threshold", "magnitude that a voxel must reach; n/a when no voxel survives"},
    Column{"voxels_passing", "voxels that reach the threshold"},
    Column{"voxels_passing_outside_reference",
           "those of them outside the reference; a voxel of the reference is no finding"},
    Column{"family_wise_threshold",
           "magnitude that a voxel must reach for a family-wise p of at most q; n/a when there are too few "
           "draws for it, or none"},
    Column{"family_wise_voxels", "voxels outside the reference with a family-wise p of at most q"},
    Column{"family_wise_clusters", "clusters whose family-wise p is at most q"},
    Column{"peak",
           "value with the largest magnitude outside the reference, whether or not it reaches a threshold"},
    Column{"peak_x", "place of the peak, to the right"},
    Column{"peak_y", "place of the peak, to the front"},
    Column{"peak_z", "place of the peak, upwards"},
    Column{"seed", "seed of the random numbers of the participant's study"},
    Column{"method", "procedure of models, surrogates and thresholds"},
    Column{"software_version", "version of Tavmap that made the maps"},
    Column{"record", "file that the row was read from, relative to this one"}};

constexpr const char* kNoFamilyWise = "\tn/a\tn/a\tn/a";

std::string cell(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; }, ' ');
  return text.empty() ? "n/a" : text;
}

std::string labelled(const GroupRecord& record, const std::string& key) {
  return record.name.has(key) ? fmt::format("{}-{}", key, record.name.get(key)) : "n/a";
}

// The cells before q, each with the tab behind it.
std::string beginOf(const GroupRecord& record, const ConditionRecord& condition, const MapResult& map) {
  std::string text;
  for (const std::string& value :
       {labelled(record, "sub"), labelled(record, "ses"), record.name.get("task"), record.name.get("run"),
        record.name.get("space"), record.record.reference, condition.name,
        std::string(tav::MAPTYPE_NAMES[static_cast<std::size_t>(map.type)]),
        std::to_string(record.record.model.settings.order), std::to_string(condition.effectiveVolumes),
        std::to_string(condition.voxelsComputed())}) {
    text += cell(value) + "\t";
  }
  return text;
}

std::string thresholdCells(const ThresholdResult& result) {
  return fmt::format("{}\t{}\t{}\t{}", numberText(result.q),
                     result.threshold ? numberText(*result.threshold) : "n/a", result.voxelsPassing,
                     result.outsideReference);
}

// What passes at a family-wise error rate of q, each cell with the tab before it.
std::string familyWiseCells(const FamilyWiseResult& result, double q) {
  for (const FamilyWiseLevel& level : result.levels) {
    if (level.alpha != q) continue;
    return fmt::format("\t{}\t{}\t{}", level.threshold ? numberText(*level.threshold) : "n/a",
                       level.voxelsPassing, level.clustersPassing);
  }
  return kNoFamilyWise;
}

// The cells behind those of the threshold, each with the tab before it, and the end of the line.
std::string endOf(const GroupRecord& record, const MapResult& map) {
  std::string text = "\t" + numberText(map.peak);
  for (const double mm : map.peakMm) text += "\t" + (std::isnan(map.peak) ? "n/a" : numberText(mm));
  const ModelRecord& model = record.record.model;
  for (const std::string& value : {std::to_string(model.seed), std::string(methodName(model.settings.method)),
                                   model.version, record.file}) {
    text += "\t" + cell(value);
  }
  return text + "\n";
}

std::size_t writeMap(const GroupRecord& record, const ConditionRecord& condition, const MapResult& map,
                     formats::AtomicFile& out) {
  const std::string begin = beginOf(record, condition, map), end = endOf(record, map);
  if (map.thresholds.empty()) out.write(fmt::format("{}n/a\tn/a\tn/a\tn/a{}{}", begin, kNoFamilyWise, end));
  for (const ThresholdResult& result : map.thresholds) {
    out.write(fmt::format("{}{}{}{}", begin, thresholdCells(result),
                          familyWiseCells(map.familyWise, result.q), end));
  }
  return std::max<std::size_t>(map.thresholds.size(), 1);
}

std::string header() {
  std::string text;
  for (const Column& column : kColumns) text += (text.empty() ? "" : "\t") + std::string(column.name);
  return text + "\n";
}

Json describedColumns() {
  Json json;
  for (const Column& column : kColumns) json[column.name] = {{"Description", column.description}};
  for (const char* place : {"peak_x", "peak_y", "peak_z"}) json[place]["Units"] = "mm";
  for (const tav::MapType type : tav::DEF_T_MAPTYPES) {
    json["map"]["Levels"][tav::MAPTYPE_NAMES[static_cast<std::size_t>(type)]] =
        mapDescription(type, "the reference");
  }
  for (const Method method : {Method::kCalibrated, Method::kPlugin}) {
    json["method"]["Levels"][methodName(method)] = methodDescription(method);
  }
  return json;
}

}  // namespace

std::string numberText(double value) {
  return std::isfinite(value) ? Json(value).dump() : "n/a";
}

std::size_t writeGroupTable(const GroupResult& group, const fs::path& outDir) {
  std::size_t rows = 0;
  formats::AtomicFile out((outDir / kGroupTable).string());
  out.write(header());
  for (const GroupRecord& record : group.records) {
    for (const ConditionRecord& condition : record.record.conditions) {
      for (const MapResult& map : condition.maps) rows += writeMap(record, condition, map, out);
    }
  }
  formats::writeTextFile((outDir / "group_tavmap.json").string(), describedColumns().dump(2) + "\n");
  out.commit();
  return rows;
}

}  // namespace study
