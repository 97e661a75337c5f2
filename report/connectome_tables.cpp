#include <fmt/core.h>

#include <algorithm>

#include "formats/table.h"
#include "report/connectome_outputs.h"
#include "report/html.h"
#include "report/quotes.h"
#include "report/sections.h"

namespace report {
namespace {

// A column of a file and its heading.
struct ShownColumn {
  const char *column, *heading;
  Digits digits;
  bool isText;
};

std::string headOf(const std::vector<ShownColumn>& columns) {
  std::string row;
  for (const ShownColumn& column : columns)
    row +=
        element("th", {{"scope", "col"}, {"data-sort", column.isText ? "text" : "number"}}, column.heading);
  return element("thead", element("tr", row));
}

std::string rowOf(const formats::Table& table, std::size_t row, const std::vector<ShownColumn>& columns) {
  std::string cells;
  for (const ShownColumn& column : columns) {
    const std::string& cell = table.cell(row, table.require(column.column));
    if (column.isText) {
      cells += element("td", formats::isMissing(cell) ? "n/a" : name(cell));
    } else {
      cells += element("td", {{"data-value", cell}}, quotedCell(row, column.column, cell, column.digits));
    }
  }
  return element("tr", cells);
}

struct TableWords {
  std::string caption;
  std::size_t most;
};

std::string tableOf(const ConnectomeOutputs& outputs, const std::string& file,
                    const std::vector<ShownColumn>& columns, const TableWords& words) {
  const formats::Table table = formats::Table::read(outputs.path(file));
  std::string body;
  for (std::size_t row = 0; row < std::min(words.most, table.rows()); ++row)
    body += rowOf(table, row, columns);
  const std::string left =
      table.rows() > words.most
          ? element("p", fmt::format("The file {} has all.", element("code", text(file))))
          : "";
  return element("div", {{"class", "table-scroll"}},
                 element("table", {{"class", "sortable"}, {"data-file", file}},
                         element("caption", words.caption) + headOf(columns) + element("tbody", body))) +
         left;
}

std::string measureRow(const Quotes& measure, const connectome::MeasureRecord& record, std::size_t levels) {
  std::string cells =
      element("th", {{"scope", "row"}}, text(record.measure)) + element("td", measure.number("/EdgesTested"));
  for (std::size_t i = 0; i < levels; ++i)
    cells += element("td", measure.number(fmt::format("/EdgesPassing/{}", i)));
  return element("tr", cells + element("td", measure.number("/EdgesFamilyWise")) +
                           element("td", measure.number("/LargestMagnitude", Digits::kFour)));
}

std::string conditionSummary(const ConnectomeOutputs& outputs, std::size_t index) {
  const connectome::ConditionRecord& condition = outputs.record.conditions[index];
  const Quotes quotes = Quotes(outputs.json, outputs.file).at(fmt::format("/Conditions/{}", index));
  std::string head =
      element("th", {{"scope", "col"}}, "Measure") + element("th", {{"scope", "col"}}, "Edges");
  for (const double q : outputs.record.q)
    head += element("th", {{"scope", "col"}}, fmt::format("at q = {}", q));
  head += element("th", {{"scope", "col"}}, "family-wise .05") + element("th", {{"scope", "col"}}, "Largest");
  std::string rows;
  for (std::size_t i = 0; i < condition.measures.size(); ++i)
    rows +=
        measureRow(quotes.at(fmt::format("/Measures/{}", i)), condition.measures[i], outputs.record.q.size());
  return element("h3", name(condition.name)) +
         element(
             "p",
             fmt::format(
                 "{} volumes, {} effective. Of {} pairs whose net influence passes, the direction of {} "
                 "survives reversed time.",
                 quotes.number("/Volumes"), quotes.number("/EffectiveVolumes"),
                 quotes.number("/PairsTestedForDirection"), quotes.number("/PairsWithSupportedDirection"))) +
         element("div", {{"class", "table-scroll"}},
                 element("table", element("thead", element("tr", head)) + element("tbody", rows)));
}

}  // namespace

std::string connectomeSummary(const ConnectomeOutputs& outputs) {
  std::string html;
  for (std::size_t i = 0; i < outputs.record.conditions.size(); ++i) html += conditionSummary(outputs, i);
  return section("summary", "part", 2, "Summary", html);
}

std::string connectomeNodes(const ConnectomeOutputs& outputs) {
  const std::vector<ShownColumn> columns = {{"name", "Region", Digits::kAll, true},
                                            {"network", "Network", Digits::kAll, true},
                                            {"voxels", "Voxels", Digits::kAll, false},
                                            {"out", "Out", Digits::kFour, false},
                                            {"in", "In", Digits::kFour, false},
                                            {"net", "Net", Digits::kFour, false},
                                            {"edges_out", "Edges out", Digits::kAll, false},
                                            {"edges_in", "Edges in", Digits::kAll, false},
                                            {"leads", "Leads", Digits::kAll, false},
                                            {"follows", "Follows", Digits::kAll, false}};
  std::string html;
  for (const connectome::ConditionRecord& condition : outputs.record.conditions)
    html += element("h3", name(condition.name)) +
            tableOf(outputs, condition.nodesFile, columns,
                    {"Sums of influences on all others (out) and of all others (in); edges that pass at the "
                     "largest q; "
                     "pairs in which a lead is supported with reversed time",
                     500});
  return section("nodes", "part", 2, "Regions", html);
}

std::string connectomeEdges(const ConnectomeOutputs& outputs) {
  const std::vector<ShownColumn> columns = {{"from", "From", Digits::kAll, true},
                                            {"to", "To", Digits::kAll, true},
                                            {"influence", "Influence", Digits::kFour, false},
                                            {"influence_q", "q", Digits::kFour, false},
                                            {"influence_pfwe", "family-wise p", Digits::kFour, false},
                                            {"net", "Net", Digits::kFour, false},
                                            {"net_q", "q of net", Digits::kFour, false},
                                            {"instantaneous", "Instantaneous", Digits::kFour, false},
                                            {"direction", "Direction", Digits::kAll, true}};
  std::string html;
  for (const connectome::ConditionRecord& condition : outputs.record.conditions)
    html += element("h3", name(condition.name)) +
            tableOf(outputs, condition.edgesFile, columns,
                    {"Pairs of which any measure passes at the largest q, the strongest influence first. "
                     "That the larger "
                     "estimate is shown as from and to says nothing about who leads; the last column does",
                     50});
  return section("edges", "part", 2, "Edges", html);
}

}  // namespace report
