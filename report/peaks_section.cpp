#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <optional>

#include "formats/nifti.h"
#include "formats/table.h"
#include "report/html.h"
#include "report/page_grid.h"
#include "report/quotes.h"
#include "report/sections.h"
#include "tav/map_kinds.h"

namespace report {
namespace {

constexpr std::size_t kMostRows = 1500, kMostOfAMap = 25, kLeastOfAMap = 5;

// The clusters file of one condition, read row by row.
struct ClusterRows {
  const formats::Table& table;
  const std::string& file;
  std::string view;  // "0-1"
  std::size_t mostOfAMap;
  const PageGrid& grid;

  [[nodiscard]] const std::string& cell(std::size_t row, const char* column) const {
    return table.cell(row, table.require(column));
  }
  [[nodiscard]] std::string number(std::size_t row, const char* column, Digits digits = Digits::kAll) const {
    return quotedCell(row, column, cell(row, column), digits);
  }
};

std::string numberCell(const ClusterRows& rows, std::size_t row, const char* column, Digits digits) {
  return element("td", {{"data-value", rows.cell(row, column)}}, rows.number(row, column, digits));
}

std::string jumpButton(const ClusterRows& rows, std::size_t row) {
  const auto index = [&](const char* column) { return rows.table.integer(row, rows.table.require(column)); };
  const std::array<int, 3> voxel =
      rows.grid.view().position({index("peak_i"), index("peak_j"), index("peak_k")});
  return element("button",
                 {{"type", "button"},
                  {"class", "jump script-only"},
                  {"aria-label",
                   fmt::format("Show the peak of {} at voxel {} {} {}", rows.cell(row, "map"),
                               rows.cell(row, "peak_i"), rows.cell(row, "peak_j"), rows.cell(row, "peak_k"))},
                  {"data-view", rows.view},
                  {"data-kind", rows.cell(row, "map")},
                  {"data-voxel", fmt::format("{} {} {}", voxel[0], voxel[1], voxel[2])}},
                 "show");
}

std::string placeCell(const ClusterRows& rows, std::size_t row) {
  return element("td", "(" + rows.number(row, "peak_x", Digits::kTenth) + ", " +
                           rows.number(row, "peak_y", Digits::kTenth) + ", " +
                           rows.number(row, "peak_z", Digits::kTenth) + ") " + jumpButton(rows, row));
}

// "66.7% V1; 33.3% none": the first ones of a large cluster.
std::string fewLabels(const std::string& labels) {
  constexpr int kMost = 4;
  std::size_t end = 0;
  for (int i = 0; i < kMost; ++i) {
    end = labels.find("; ", end == 0 ? 0 : end + 1);
    if (end == std::string::npos) return labels;
  }
  return labels.substr(0, end) + "; and others";
}

std::string clusterRow(const ClusterRows& rows, std::size_t row) {
  const std::string& label = rows.cell(row, "peak_label");
  return element("tr", element("th", {{"scope", "row"}}, text(rows.cell(row, "map"))) +
                           element("td", text(rows.cell(row, "sign"))) +
                           numberCell(rows, row, "voxels", Digits::kAll) +
                           numberCell(rows, row, "volume", Digits::kTenth) +
                           numberCell(rows, row, "peak", Digits::kFour) + placeCell(rows, row) +
                           element("td", label == "n/a" ? label : name(label)) +
                           element("td", text(fewLabels(rows.cell(row, "labels")))));
}

std::string headOfClusters() {
  std::string row;
  const auto head = [&](const char* words, const char* sort) {
    row += element("th", {{"scope", "col"}, {"data-sort", sort}}, words);
  };
  head("Map", "text");
  head("Sign", "text");
  head("Voxels", "number");
  head("mm&sup3;", "number");
  head("Peak", "number");
  row += element("th", {{"scope", "col"}}, "at, mm");
  head("Label at the peak", "text");
  head("Labels covered", "text");
  return element("thead", element("tr", row));
}

// Rows of a map at the largest q, the largest clusters first; the others are in the file.
std::string rowsOfMap(const ClusterRows& rows, const study::MapResult& map, std::size_t& leftOut) {
  if (map.thresholds.empty()) return "";
  const double largest = map.thresholds.back().q;
  std::string html;
  std::size_t count = 0;
  for (std::size_t row = 0; row < rows.table.rows(); ++row) {
    const bool isOfMap = rows.cell(row, "map") == tav::mapKind(map.type).keyword &&
                         rows.table.number(row, rows.table.require("q")) == largest;
    if (!isOfMap) continue;
    if (++count <= rows.mostOfAMap) html += clusterRow(rows, row);
  }
  leftOut += count - std::min(count, rows.mostOfAMap);
  return html;
}

double largestQ(const study::ConditionRecord& condition) {
  double largest = 0;
  for (const study::MapResult& map : condition.maps)
    if (!map.thresholds.empty()) largest = std::max(largest, map.thresholds.back().q);
  return largest;
}

std::string clusterTable(const study::ConditionRecord& condition, const ClusterRows& rows) {
  std::string body;
  std::size_t leftOut = 0;
  for (const study::MapResult& map : condition.maps) body += rowsOfMap(rows, map, leftOut);
  if (body.empty()) return element("p", fmt::format("No voxel survives at q = {}.", largestQ(condition)));
  std::string html =
      element("div", {{"class", "table-scroll"}},
              element("table", {{"class", "sortable peaks"}, {"data-file", rows.file}},
                      element("caption", fmt::format("Clusters of voxels that pass at q = {}, by map "
                                                     "and size",
                                                     largestQ(condition))) +
                          headOfClusters() + element("tbody", body)));
  const std::string more = leftOut == 0 ? "All of them" : fmt::format("{} smaller ones", leftOut);
  return html +
         element("p", fmt::format("{}, at every q and with their further peaks, are in {}. The rate q is one "
                                  "of voxels and says nothing of a cluster as a whole.",
                                  more, element("code", text(rows.file))));
}

// Of many conditions fewer rows, so that the page can be mailed.
std::size_t rowsPerMap(const StudyOutputs& outputs) {
  std::size_t maps = 0;
  for (const ReferenceOutputs& reference : outputs.references)
    for (const study::ConditionRecord& condition : reference.record.conditions) maps += condition.maps.size();
  return std::clamp(kMostRows / std::max<std::size_t>(maps, 1), kLeastOfAMap, kMostOfAMap);
}

std::string conditionPeaks(const StudyOutputs& outputs, std::size_t r, std::size_t c) {
  const study::ConditionRecord& condition = outputs.references[r].record.conditions[c];
  std::string content = element("p", "There is no table of clusters.");
  const std::string path = outputs.path(condition.clustersFile);
  if (!condition.clustersFile.empty() && std::filesystem::exists(path)) {
    const formats::Table table = formats::Table::read(path);
    const PageGrid grid(formats::readImageHeader(outputs.path(condition.statusFile)));
    content =
        clusterTable(condition, {table, condition.clustersFile, viewId(r, c), rowsPerMap(outputs), grid});
  }
  return section(placeId("peaks", r, c), "condition", 4, "Condition " + name(condition.name), content);
}

}  // namespace

std::string peaksSection(const StudyOutputs& outputs) {
  std::string content;
  for (std::size_t r = 0; r < outputs.references.size(); ++r) {
    const study::Record& record = outputs.references[r].record;
    std::string conditions;
    for (std::size_t c = 0; c < record.conditions.size(); ++c) conditions += conditionPeaks(outputs, r, c);
    content += section(placeId("peaks", r), "reference", 3, name(record.reference), conditions);
  }
  return content.empty() ? "" : section("peaks", "part", 2, "Clusters and peaks", content);
}

}  // namespace report
