#include "results/cluster_table.h"

#include <fmt/core.h>

#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>

#include "formats/table.h"
#include "results/local_peaks.h"
#include "results/record_json.h"

namespace study {
namespace {

using Json = nlohmann::ordered_json;

struct Row {
  tav::MapType type;
  const ThresholdResult& level;
  std::size_t number;
  const PlacedCluster& cluster;
};

struct Column {
  std::string name, description, units;
  std::function<std::string(const Row&)> cell;
};
using Columns = std::vector<Column>;

// Micrometres are enough; no "-0".
std::string mmText(double mm) {
  return fmt::format("{}", std::round(mm * 1000) / 1000 + 0.0);
}

std::string nameCell(const std::string& name) {
  return name.empty() ? "n/a" : formats::tsvCell(name);
}

std::string sharesCell(const std::vector<LabelShare>& shares) {
  std::string text;
  for (const LabelShare& share : shares)
    text += fmt::format("{}{:.1f}% {}", text.empty() ? "" : "; ", 100 * share.share, share.label);
  return nameCell(text);
}

const char* mapName(tav::MapType type) {
  return tav::MAPTYPE_NAMES[static_cast<std::size_t>(type)];
}

void addCluster(Columns& columns) {
  columns.push_back({"map", "the kind of map", "", [](const Row& row) { return mapName(row.type); }});
  columns.push_back({"q", "false discovery rate at which the voxels pass, over the voxels of this one map",
                     "", [](const Row& row) { return fmt::format("{}", row.level.q); }});
  columns.push_back({"threshold", "magnitude that the voxels reach", "as the map",
                     [](const Row& row) { return fmt::format("{}", row.level.threshold.value_or(0)); }});
  columns.push_back({"cluster", "number of the cluster within its map and q, from 1, by descending size", "",
                     [](const Row& row) { return std::to_string(row.number); }});
  columns.push_back({"sign", "of the values of all voxels of the cluster", "", [](const Row& row) {
                       return std::signbit(row.cluster.peaks[0].value) ? "negative" : "positive";
                     }});
  columns.push_back({"voxels", "number of voxels, those of the reference left out", "",
                     [](const Row& row) { return std::to_string(row.cluster.voxels); }});
  columns.push_back(
      {"volume", "of the voxels", "mm^3", [](const Row& row) { return mmText(row.cluster.volumeMm3); }});
}

void addCentre(Columns& columns) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    columns.push_back({fmt::format("centre_{}", "xyz"[axis]),
                       "centre of gravity, the voxels weighted by their magnitudes", "mm",
                       [axis](const Row& row) { return mmText(row.cluster.centreMm[axis]); }});
  }
}

// Columns of one of the peaks, "n/a" where a cluster has fewer.
class PeakColumns {
 public:
  PeakColumns(Columns& columns, std::size_t peak) : columns_(columns), peak_(peak) {
    const std::string what = peak == 0 ? "largest magnitude of the cluster"
                                       : fmt::format("local peak {} of the cluster", peak + 1);
    add("", what + ", with its sign", "as the map",
        [](const PlacedPeak& at) { return fmt::format("{}", at.value); });
    for (std::size_t axis = 0; axis < 3; ++axis) {
      add(fmt::format("_{}", "ijk"[axis]), "voxel index of it, from 0", "",
          [axis](const PlacedPeak& at) { return std::to_string(at.voxel[axis]); });
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
      add(fmt::format("_{}", "xyz"[axis]), "place of it", "mm",
          [axis](const PlacedPeak& at) { return mmText(at.mm[axis]); });
    }
    add("_label", "label of its voxel, none for the background", "",
        [](const PlacedPeak& at) { return nameCell(at.label); });
  }

 private:
  template <typename Cell>
  void add(const std::string& ending, const std::string& description, const char* units, Cell cell) {
    const std::string begin = peak_ == 0 ? "peak" : fmt::format("peak{}", peak_ + 1);
    columns_.push_back({begin + ending, description, units, [cell, peak = peak_](const Row& row) {
                          const auto& peaks = row.cluster.peaks;
                          return peak < peaks.size() ? cell(peaks[peak]) : std::string("n/a");
                        }});
  }

  Columns& columns_;
  std::size_t peak_;
};

Columns allColumns() {
  Columns columns;
  addCluster(columns);
  PeakColumns(columns, 0);
  addCentre(columns);
  columns.push_back({"labels",
                     "labels of the cluster's voxels with their shares of them, none for the background", "",
                     [](const Row& row) { return sharesCell(row.cluster.labels); }});
  for (std::size_t peak = 1; peak <= kFurtherPeaks; ++peak) PeakColumns(columns, peak);
  return columns;
}

const Columns& columns() {
  static const Columns all = allColumns();
  return all;
}

std::string tableDescription(const ReferenceResult& reference, const ConditionResult& condition) {
  return fmt::format(
      "clusters of the maps of {}, condition '{}': voxels outside the reference that pass the threshold of a "
      "q, of one sign, and touch, be it at a corner; a row each, by map, q and descending size. The rate q "
      "is one of voxels and says nothing of clusters. Local peaks are higher than every voxel of the cluster "
      "that they touch, at least {} mm from each other, and at most {} beside the largest",
      reference.name, condition.name, kPeakDistanceMm, kFurtherPeaks);
}

void describeColumns(Json& json, const ReferenceResult& reference, const ConditionResult& condition) {
  for (const Column& column : columns()) {
    json[column.name] = {{"Description", column.description}};
    if (!column.units.empty()) json[column.name]["Units"] = column.units;
  }
  for (const MapResult& map : condition.maps)
    json["map"]["Levels"][mapName(map.type)] = mapDescription(map.type, reference.name);
}

}  // namespace

void ClusterTable::add(tav::MapType type, const ThresholdResult& level,
                       const std::vector<PlacedCluster>& clusters) {
  for (std::size_t i = 0; i < clusters.size(); ++i) {
    const Row row{type, level, i + 1, clusters[i]};
    std::string line;
    for (const Column& column : columns()) line += (line.empty() ? "" : "\t") + column.cell(row);
    rows_ += line + "\n";
  }
}

std::string ClusterTable::text() const {
  std::string header;
  for (const Column& column : columns()) header += (header.empty() ? "" : "\t") + column.name;
  return header + "\n" + rows_;
}

Json clusterSidecar(const ResultContext& context, const ReferenceResult& reference,
                    const ConditionResult& condition, const PlaceNames* names) {
  Json json;
  json["Description"] = tableDescription(reference, condition);
  describeColumns(json, reference, condition);
  json["LabelImage"] = names == nullptr ? Json(nullptr) : Json(sourceUri(context.request, names->file()));
  if (names != nullptr) json["LabelsOnGridOfRuns"] = onGridOfRuns(names->isResampled());
  addOriginAndModel(context, reference, condition, json);
  return json;
}

}  // namespace study
