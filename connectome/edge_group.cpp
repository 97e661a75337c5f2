#include "connectome/edge_group.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>

#include "connectome/result_files.h"
#include "formats/file_error.h"
#include "inference/run_test.h"
#include "inference/space.h"

namespace connectome {
namespace {

void requireSameNodes(const std::vector<std::string>& first, const std::vector<std::string>& names,
                      const std::string& file, const std::string& firstFile) {
  const auto differ = std::mismatch(first.begin(), first.end(), names.begin(), names.end());
  if (differ.first == first.end() && differ.second == names.end()) return;
  const auto at = static_cast<std::size_t>(differ.first - first.begin());
  const auto nameAt = [at](const std::vector<std::string>& list) {
    return at < list.size() ? "'" + list[at] + "'" : std::string("nothing");
  };
  throw formats::FileError(
      file, fmt::format("node {} is {}, in {} it is {}", at + 1, nameAt(names), firstFile, nameAt(first)),
      "Compute all participants with the same regions");
}

std::vector<std::pair<int, int>> edgesOf(std::size_t nodes, Measure measure) {
  std::vector<std::pair<int, int>> edges;
  const int count = static_cast<int>(nodes);
  for (int row = 0; row < count; ++row)
    for (int column = measure == Measure::kInfluence ? 0 : row + 1; column < count; ++column)
      if (row != column) edges.emplace_back(row, column);
  return edges;
}

void refuseSignsOfMagnitudes(const GroupMatrices& matrices, const inference::TestOptions& options) {
  if (options.exchange != inference::Exchange::kSignFlips) return;
  const bool isAnyBelow =
      std::any_of(matrices.values.begin(), matrices.values.end(), [](float v) { return v < 0; });
  if (isAnyBelow) return;
  throw std::invalid_argument(
      fmt::format("{} is never below 0, so that its sign cannot be flipped; test NetInfluence, or "
                  "differences between conditions or "
                  "groups",
                  measureLabel(matrices.measure)));
}

EdgeComponent componentOf(const inference::Cluster& cluster, const GroupMatrices& matrices) {
  EdgeComponent component;
  std::set<int> nodes;
  for (const std::int32_t place : cluster.places) {
    component.places.push_back(static_cast<std::size_t>(place));
    nodes.insert(
        {matrices.edges[component.places.back()].first, matrices.edges[component.places.back()].second});
  }
  component.nodes = nodes.size();
  component.mass = cluster.mass;
  component.pFwe = cluster.pFwe;
  component.sign = cluster.sign;
  return component;
}

}  // namespace

GroupMatrices readGroupMatrices(const std::vector<std::string>& files, Measure measure) {
  GroupMatrices group;
  group.measure = measure;
  group.files = files;
  for (const std::string& file : files) {
    std::vector<std::string> names;
    const EdgeMatrix matrix = readMatrixFile(file, names);
    if (group.nodes.empty()) {
      group.nodes = names;
      group.edges = edgesOf(names.size(), measure);
    }
    requireSameNodes(group.nodes, names, file, files.front());
    for (const auto& [row, column] : group.edges)
      group.values.push_back(
          static_cast<float>(matrix.at(static_cast<std::size_t>(row), static_cast<std::size_t>(column))));
  }
  return group;
}

EdgeGroupResult testGroupEdges(const inference::Model& model, const GroupMatrices& matrices,
                               inference::TestOptions options) {
  refuseSignsOfMagnitudes(matrices, options);
  options.enhance = false;
  const inference::Values values{matrices.files.size(), matrices.edges.size(), matrices.values.data()};
  EdgeGroupResult result{
      inference::runTest(model, values, inference::spaceOfEdges(matrices.nodes.size(), matrices.edges),
                         options),
      {}};
  for (const inference::Cluster& cluster : result.test.clusters)
    result.components.push_back(componentOf(cluster, matrices));
  return result;
}

}  // namespace connectome
