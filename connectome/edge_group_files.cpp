#include <fmt/core.h>

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "connectome/edge_group.h"
#include "connectome/result_files.h"
#include "connectome/table_text.h"
#include "formats/atomic_file.h"
#include "formats/table.h"

namespace connectome {
namespace {

using Json = nlohmann::ordered_json;

struct GroupMap {
  const char *stat, *words;
  std::vector<float> inference::TestResult::*values;
  bool isSigned;  // changes its sign with the direction of an edge
};
constexpr std::array<GroupMap, 6> kMaps = {{
    {"effect", "estimate of the contrast", &inference::TestResult::effect, true},
    {"t", "t of the contrast", &inference::TestResult::t, true},
    {"z", "z of the same probability as t", &inference::TestResult::z, true},
    {"p", "p of each edge by itself, from shuffles", &inference::TestResult::p, false},
    {"q", "p adjusted for the rate of false discoveries over all edges", &inference::TestResult::qFdr, false},
    {"pfwe", "family-wise p by the largest z of all edges", &inference::TestResult::pFwe, false},
}};

EdgeMatrix matrixOf(const GroupMatrices& matrices, const std::vector<float>& values, bool isSigned) {
  EdgeMatrix matrix(matrices.nodes.size());
  const double back = isSigned && matrices.measure == Measure::kNet ? -1 : 1;
  for (std::size_t place = 0; place < matrices.edges.size(); ++place) {
    const auto row = static_cast<std::size_t>(matrices.edges[place].first),
               column = static_cast<std::size_t>(matrices.edges[place].second);
    const double value = static_cast<double>(values[place]);
    matrix.at(row, column) = value;
    if (matrices.measure != Measure::kInfluence) matrix.at(column, row) = back * value;
  }
  return matrix;
}

std::vector<Node> nodesNamed(const std::vector<std::string>& names) {
  std::vector<Node> nodes;
  for (const std::string& name : names) nodes.push_back({name, "", 0, {}});
  return nodes;
}

std::string componentTable(const GroupMatrices& matrices, const EdgeGroupResult& result) {
  std::string text = "component\tsign\tedges\tnodes\tmass\tpfwe\tfrom\tto\tt\n";
  for (std::size_t i = 0; i < result.components.size(); ++i) {
    const EdgeComponent& component = result.components[i];
    for (const std::size_t place : component.places) {
      const auto& [row, column] = matrices.edges[place];
      text += fmt::format("{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\n", i + 1,
                          component.sign > 0 ? "positive" : "negative", component.places.size(),
                          component.nodes, numberText(component.mass), numberText(component.pFwe),
                          formats::tsvCell(matrices.nodes[static_cast<std::size_t>(row)]),
                          formats::tsvCell(matrices.nodes[static_cast<std::size_t>(column)]),
                          numberText(static_cast<double>(result.test.t[place])));
    }
  }
  return text;
}

Json componentColumns() {
  return {{"Description",
           "components of edges that touch, all beyond the forming z on one side; a line per edge"},
          {"edges", {{"Description", "extent of the component"}}},
          {"mass", {{"Description", "sum of what the edges exceed the forming z by"}}},
          {"pfwe",
           {{"Description",
             "family-wise p of the component by the largest mass of each shuffle: it speaks of the "
             "component as a whole, not of its edges"}}}};
}

}  // namespace

std::vector<std::string> writeGroupEdges(const std::filesystem::path& folder, const std::string& stem,
                                         const std::string& question, const GroupMatrices& matrices,
                                         const EdgeGroupResult& result) {
  std::vector<std::string> written;
  const auto write = [&](const std::string& name, const std::string& text, Json sidecar) {
    sidecar["Question"] = question;
    sidecar["Participants"] = matrices.files.size();
    sidecar["EdgesTested"] = result.test.tested;
    sidecar["Shuffles"] = result.test.shuffles;
    formats::writeTextFile((folder / (name + ".tsv")).string(), text);
    formats::writeTextFile((folder / (name + ".json")).string(), sidecar.dump(2) + "\n");
    written.insert(written.end(), {name + ".tsv", name + ".json"});
  };
  const std::string begin = fmt::format("{}_meas-{}", stem, measureLabel(matrices.measure));
  const std::vector<Node> nodes = nodesNamed(matrices.nodes);
  for (const GroupMap& map : kMaps) {
    const EdgeMatrix matrix = matrixOf(matrices, result.test.*map.values, map.isSigned);
    const auto cell = [&](std::size_t row, std::size_t column) { return numberText(matrix.at(row, column)); };
    write(fmt::format("{}_stat-{}_relmat", begin, map.stat), matrixText(nodes, cell),
          {{"Description", map.words}, {"Shape", "Rows are sources, columns are targets"}});
  }
  write(begin + "_components", componentTable(matrices, result), componentColumns());
  return written;
}

}  // namespace connectome
