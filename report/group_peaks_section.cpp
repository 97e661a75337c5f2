#include <fmt/core.h>

#include <cmath>

#include "report/group_sections.h"
#include "report/html.h"
#include "report/quotes.h"
#include "report/sections.h"
#include "report/strip_plot.h"

namespace report {
namespace {

constexpr std::size_t kMostRows = 60;

std::string byWords(const std::string& by) {
  if (by == "tfce") return "enhancement";
  if (by == "mass") return "cluster mass";
  return by == "none" ? "nothing: the largest |t|" : "maximum";
}

std::string peakRow(const TestedCell& cell, std::size_t index) {
  const Quotes quotes = Quotes(cell.json, cell.file).at(fmt::format("/Peaks/{}", index));
  const auto number = [&](const char* way, Digits digits = Digits::kFour) {
    return element("td", quotes.number(way, digits));
  };
  std::string row = element("th", {{"scope", "row"}}, std::to_string(index + 1)) +
                    element("td", byWords(cell.record.peaks[index].by)) +
                    number("/ClusterVoxels", Digits::kAll) +
                    element("td", fmt::format("({}, {}, {})", quotes.number("/Millimetres/0", Digits::kTenth),
                                              quotes.number("/Millimetres/1", Digits::kTenth),
                                              quotes.number("/Millimetres/2", Digits::kTenth))) +
                    number("/Effect") + number("/T") + number("/PFamilyWise") + number("/PEnhanced") +
                    number("/PMass") + number("/QFalseDiscovery") + number("/Participants", Digits::kAll);
  if (cell.record.hasVotes()) {
    row += element(
        "td",
        fmt::format("{} reference, {} voxel, {} not supported, {} do not pass",
                    quotes.number("/Directions/ReferenceLeads"), quotes.number("/Directions/VoxelLeads"),
                    quotes.number("/Directions/NotSupported"), quotes.number("/Directions/NotTested")));
  }
  return element("tr", row);
}

std::string peakTable(const TestedCell& cell) {
  const std::size_t shown = std::min(kMostRows, cell.record.peaks.size());
  std::string rows, head;
  for (std::size_t i = 0; i < shown; ++i) rows += peakRow(cell, i);
  std::vector<const char*> titles = {
      "Cluster",     "Passes by",    "Voxels", "Peak (mm)",   "Effect", "t", "Family-wise p, maximum",
      "Enhancement", "Cluster mass", "q",      "Participants"};
  if (cell.record.hasVotes())
    titles.push_back("Who leads there in the participants' own maps, with reversed time");
  for (const char* title : titles) head += element("th", {{"scope", "col"}}, title);
  std::string caption = "Clusters of what passes, and their peaks. The whole table: " +
                        element("code", text(cell.record.clusterTable));
  if (shown < cell.record.peaks.size())
    caption += fmt::format(", of whose {} rows the first {} are here", cell.record.peaks.size(), shown);
  return element("div", {{"class", "table-scroll"}},
                 element("table", element("caption", caption + ".") + element("thead", element("tr", head)) +
                                      element("tbody", rows)));
}

std::string groupOf(const study::GroupTestRecord& record, const std::string& participant) {
  for (const study::GroupRow& row : record.rows)
    if (row.participant == participant) return row.level;
  return "";
}

std::string valueRow(const TestedCell& cell, std::size_t peak, std::size_t index) {
  const Quotes quotes = Quotes(cell.json, cell.file).at(fmt::format("/Peaks/{}/Values/{}", peak, index));
  const std::string& participant = cell.record.peaks[peak].values[index].participant;
  const std::string group = groupOf(cell.record, participant);
  return element("tr", element("th", {{"scope", "row"}}, name("sub-" + participant)) +
                           element("td", group.empty() ? "" : name(group)) +
                           element("td", quotes.number("/Value", Digits::kFour)) +
                           element("td", quotes.number("/TWithout", Digits::kFour)));
}

// Whose absence changes t most.
std::string influenceWords(const TestedCell& cell, std::size_t index) {
  const study::GroupPeak& peak = cell.record.peaks[index];
  std::size_t most = peak.values.size();
  double change = -1;
  for (std::size_t i = 0; i < peak.values.size(); ++i) {
    const double by = std::fabs(peak.values[i].tWithout - peak.t);
    if (by > change) change = by, most = i;
  }
  if (most == peak.values.size()) return "";
  const Quotes quotes = Quotes(cell.json, cell.file).at(fmt::format("/Peaks/{}", index));
  return fmt::format(" Without {} t would be {} instead of {}: no other participant changes it as much.",
                     name("sub-" + peak.values[most].participant),
                     quotes.number(fmt::format("/Values/{}/TWithout", most), Digits::kFour),
                     quotes.number("/T", Digits::kFour));
}

std::string stripFigure(const TestedCell& cell, std::size_t index) {
  const study::GroupPeak& peak = cell.record.peaks[index];
  if (peak.values.empty()) return "";
  std::vector<StripPoint> points;
  std::string rows;
  for (std::size_t i = 0; i < peak.values.size(); ++i) {
    points.push_back({"sub-" + peak.values[i].participant, groupOf(cell.record, peak.values[i].participant),
                      peak.values[i].value});
    rows += valueRow(cell, index, i);
  }
  const std::string unit = cell.record.isZ ? "z against own null values" : cell.record.map;
  const std::string title = fmt::format("Participants at peak {}", index + 1);
  const std::string table = element(
      "details",
      element("summary", "The values") +
          element("div", {{"class", "table-scroll"}},
                  element("table",
                          "<thead><tr><th scope=\"col\">Participant</th><th scope=\"col\">Group</th><th "
                          "scope=\"col\">Value</th><th scope=\"col\">t without</th></tr></thead>" +
                              element("tbody", rows))));
  const std::string caption =
      title + ". Lines: means." + influenceWords(cell, index) +
      " A peak is where a group is most extreme: values there look stronger than they are.";
  return element(
      "figure", {{"class", "strip"}},
      element("figcaption", caption) + stripPlot(points, unit, title + ", one point each") + table);
}

std::string cellPeaks(const TestedCell& cell, std::size_t index) {
  std::string content = peakTable(cell);
  for (std::size_t i = 0; i < cell.record.peaks.size(); ++i) content += stripFigure(cell, i);
  return section(cellId("peaks", index), "condition", 3, name(cellTitle(cell.record)), content);
}

}  // namespace

std::string groupPeaksSection(const GroupOutputs& outputs) {
  std::string content;
  for (std::size_t i = 0; i < outputs.cells.size(); ++i) content += cellPeaks(outputs.cells[i], i);
  return section("peaks", "part", 2, "Clusters, peaks and participants", content);
}

std::string groupParticipantsSection(const GroupOutputs& outputs) {
  const TestedCell& cell = outputs.cells[0];
  std::string head =
      element("th", {{"scope", "col"}}, "Participant") + element("th", {{"scope", "col"}}, "Group");
  for (std::size_t i = 0; i < cell.record.columns.size(); ++i)
    head += element("th", {{"scope", "col"}},
                    name(cell.record.columns[i]) + fmt::format(" (weight {})", cell.record.weights[i]));
  std::string rows;
  for (std::size_t r = 0; r < cell.record.rows.size(); ++r) {
    const study::GroupRow& row = cell.record.rows[r];
    const Quotes quotes = Quotes(cell.json, cell.file).at(fmt::format("/Rows/{}", r));
    std::string cells = element("th", {{"scope", "row"}}, name("sub-" + row.participant)) +
                        element("td", row.level.empty() ? "" : name(row.level));
    for (std::size_t i = 0; i < row.design.size(); ++i)
      cells += element("td", quotes.number(fmt::format("/Design/{}", i), Digits::kFour));
    rows += element("tr", cells);
  }
  const std::string caption =
      "The design: one row per participant, one column per coefficient, of " + name(cellTitle(cell.record));
  return section(
      "participants", "part", 2, "Participants",
      element("div", {{"class", "table-scroll"}},
              element("table", element("caption", caption) + element("thead", element("tr", head)) +
                                   element("tbody", rows))));
}

}  // namespace report
