#include <fmt/core.h>

#include <algorithm>

#include "report/group_sections.h"
#include "report/html.h"
#include "report/quotes.h"
#include "report/sections.h"
#include "results/map_words.h"

namespace report {
namespace {

std::string countsCell(const Quotes& quotes, const std::string& way) {
  return element("td",
                 quotes.number(way + "/Positive") + " above, " + quotes.number(way + "/Negative") + " below");
}

std::string resultRow(const TestedCell& cell, std::size_t index) {
  const Quotes quotes(cell.json, cell.file);
  const bool isEnhanced = cell.record.inference.enhance;
  return element(
      "tr", element("th", {{"scope", "row"}},
                    element("a", {{"href", "#" + cellId("maps", index)}}, name(cellTitle(cell.record)))) +
                element("td", std::to_string(cell.record.rows.size())) +
                countsCell(quotes, "/VoxelsByMaximum") +
                (isEnhanced ? countsCell(quotes, "/VoxelsByEnhancement") : element("td", "not asked for")) +
                countsCell(quotes, "/ClustersByMass") + countsCell(quotes, "/VoxelsByFalseDiscovery") +
                element("td", quotes.number("/LargestT", Digits::kFour)) +
                element("td", quotes.number("/SmallestT", Digits::kFour)));
}

std::string resultTable(const GroupOutputs& outputs) {
  std::string rows;
  for (std::size_t i = 0; i < outputs.cells.size(); ++i) rows += resultRow(outputs.cells[i], i);
  const std::string level = fmt::format("{}", outputs.cells[0].record.inference.level);
  std::string head;
  for (const std::string& words :
       {std::string("Map"), std::string("Participants"),
        "Voxels, family-wise p ≤ " + level + " by the maximum",
        "Voxels, family-wise p ≤ " + level + " by enhancement",
        "Clusters, family-wise p ≤ " + level + " by mass", "Voxels, false discovery rate " + level,
        std::string("Largest t"), std::string("Smallest t")})
    head += element("th", {{"scope", "col"}}, words);
  return element(
      "div", {{"class", "table-scroll"}},
      element("table", element("caption",
                               "What was found, map by map. Each p and rate holds for one map: who "
                               "looks at several must correct for their number.") +
                           element("thead", element("tr", head)) + element("tbody", rows)));
}

std::string asked(const study::GroupTestRecord& record) {
  std::string words = "Asked: whether " + text(record.question) + ".";
  if (!record.within.empty())
    words += " Every participant brings the difference " + name(record.within) + ".";
  words += fmt::format(" Answered by {} {}{}.", record.shuffles, text(record.exchange),
                       record.isExhaustive ? ", all that there are" : "");
  return element("p", words);
}

}  // namespace

std::string cellTitle(const study::GroupTestRecord& record) {
  std::string title = fmt::format("{} of {}, {}", record.map, record.reference, record.condition);
  for (const std::string& part : {record.sessions, record.session.empty() ? "" : "ses-" + record.session,
                                  record.task.empty() ? "" : "task " + record.task})
    if (!part.empty()) title += ", " + part;
  return title;
}

std::string cellId(const char* part, std::size_t cell) {
  return placeId(part, cell);
}

std::string groupSummarySection(const GroupOutputs& outputs) {
  return section("summary", "part", 2, "Summary", asked(outputs.cells[0].record) + resultTable(outputs));
}

std::string groupWarningsSection(const GroupOutputs& outputs) {
  std::vector<std::string> warnings, leftOut;
  const auto add = [](const std::vector<std::string>& from, std::vector<std::string>& to) {
    for (const std::string& one : from)
      if (std::find(to.begin(), to.end(), one) == to.end()) to.push_back(one);
  };
  for (const TestedCell& cell : outputs.cells) {
    add(cell.record.leftOut, leftOut);
    std::vector<std::string> named;
    for (const std::string& warning : cell.record.warnings)
      named.push_back(cellTitle(cell.record) + ": " + warning);
    add(named, warnings);
  }
  std::string items;
  for (const std::string& one : leftOut)
    items += element("li", {{"class", "warning"}}, "Left out: " + text(one) + ".");
  for (const std::string& one : warnings) items += element("li", {{"class", "warning"}}, text(one) + ".");
  if (items.empty()) return "";
  return section("warnings", "part", 2, "Read this first", element("ul", {{"class", "warnings"}}, items));
}

}  // namespace report
