#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "connectome/node_table.h"
#include "connectome/result_files.h"
#include "connectome/table_text.h"
#include "formats/table.h"

namespace connectome {
namespace {

using EdgePlace = std::pair<std::size_t, std::size_t>;  // from, to

bool passes(const ConditionResult& result, std::size_t a, std::size_t b, double q) {
  return std::any_of(kMeasures.begin(), kMeasures.end(), [&](Measure measure) {
    const EdgeMatrix& levels = result.of(measure).tests.q;
    return levels.at(a, b) <= q || levels.at(b, a) <= q;
  });
}

std::vector<EdgePlace> passingPairs(const ConditionResult& result, double q) {
  const EdgeMatrix& influence = result.of(Measure::kInfluence).values;
  std::vector<EdgePlace> pairs;
  for (std::size_t a = 0; a < influence.nodes; ++a) {
    for (std::size_t b = a + 1; b < influence.nodes; ++b) {
      if (!passes(result, a, b, q)) continue;
      const bool isForwards = !(influence.at(b, a) > influence.at(a, b));
      pairs.emplace_back(isForwards ? a : b, isForwards ? b : a);
    }
  }
  std::stable_sort(pairs.begin(), pairs.end(), [&](const EdgePlace& x, const EdgePlace& y) {
    return influence.at(x.first, x.second) > influence.at(y.first, y.second);
  });
  return pairs;
}

std::string cellsOf(const MeasureResult& measure, std::size_t row, std::size_t column) {
  return fmt::format("\t{}\t{}\t{}\t{}", numberText(measure.values.at(row, column)),
                     numberText(measure.tests.p.at(row, column)), numberText(measure.tests.q.at(row, column)),
                     numberText(measure.tests.pFamilyWise.at(row, column)));
}

struct ColumnGroup {
  const char *name, *words;
};
constexpr std::array<ColumnGroup, 4> kGroups = {
    {{"influence", "influence of `from` on `to`"},
     {"back", "influence of `to` on `from`"},
     {"net", "net influence of `from` on `to`"},
     {"instantaneous", "instantaneous influence between the two"}}};

}  // namespace

std::string edgeTable(const std::vector<Node>& nodes, const ConditionResult& result, double q) {
  std::string text = "from\tto";
  for (const ColumnGroup& group : kGroups) text += fmt::format("\t{0}\t{0}_p\t{0}_q\t{0}_pfwe", group.name);
  text += "\tdirection\n";
  for (const auto& [from, to] : passingPairs(result, q)) {
    text += fmt::format("{}\t{}", formats::tsvCell(nodes[from].name), formats::tsvCell(nodes[to].name));
    text +=
        cellsOf(result.of(Measure::kInfluence), from, to) + cellsOf(result.of(Measure::kInfluence), to, from);
    text +=
        cellsOf(result.of(Measure::kNet), from, to) + cellsOf(result.of(Measure::kInstantaneous), from, to);
    const EdgeDirection direction = result.directions[from * nodes.size() + to];
    const char* words = directionWords(direction);
    if (direction == EdgeDirection::kRowLeads) words = "from leads";
    if (direction == EdgeDirection::kColumnLeads) words = "to leads";
    text += fmt::format("\t{}\n", words);
  }
  return text;
}

nlohmann::ordered_json edgeColumns(double q) {
  nlohmann::ordered_json json;
  json["Description"] = fmt::format(
      "One line per pair of which any measure passes at q = {}. `from` is the node with the larger estimate; "
      "that alone "
      "says nothing about who leads, since unequal noise makes the cleaner series seem to lead: see "
      "`direction`",
      q);
  json["from"]["Description"] = "the node with the larger influence on the other";
  json["to"]["Description"] = "the other node";
  for (const auto& [name, words] : kGroups) {
    const std::string column = name;
    json[column]["Description"] = words;
    json[column + "_p"]["Description"] = "p of this edge by itself";
    json[column + "_q"]["Description"] =
        "the smallest rate of false discoveries at which it passes, over all edges";
    json[column + "_pfwe"]["Description"] = "family-wise p over all edges";
  }
  json["direction"]["Description"] =
      "with reversed time: whose lead is supported; not supported, not tested (the net influence does not "
      "pass) or not "
      "judged";
  return json;
}

}  // namespace connectome
