#include "connectome/edge_tests.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace connectome {
namespace {

// Edges of the family, as places in a matrix: of a symmetric measure each once.
std::vector<std::size_t> family(const EdgeMatrix& p, Measure measure) {
  std::vector<std::size_t> places;
  for (std::size_t row = 0; row < p.nodes; ++row)
    for (std::size_t column = measure == Measure::kInfluence ? 0 : row + 1; column < p.nodes; ++column)
      if (!std::isnan(p.at(row, column))) places.push_back(row * p.nodes + column);
  return places;
}

double familyWise(const std::vector<float>& ascending, double value) {
  const auto reach =
      ascending.end() - std::lower_bound(ascending.begin(), ascending.end(), static_cast<float>(value));
  return (1 + static_cast<double>(reach)) / (1 + static_cast<double>(ascending.size()));
}

}  // namespace

std::vector<double> adjustedQ(std::span<const double> p, double constant) {
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < p.size(); ++i)
    if (!std::isnan(p[i])) order.push_back(i);
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return p[a] > p[b]; });
  std::vector<double> q(p.size(), std::nan(""));
  const double all = static_cast<double>(order.size());
  double smallest = 1, rank = all;
  for (const std::size_t i : order) {
    smallest = std::min(smallest, p[i] * all / rank * constant);
    q[i] = smallest;
    rank -= 1;
  }
  return q;
}

void adjustEdges(Measure measure, double constant, EdgeTests& tests) {
  const std::vector<std::size_t> places = family(tests.p, measure);
  tests.edges = places.size();
  std::vector<double> p;
  for (const std::size_t place : places) p.push_back(tests.p.values[place]);
  const std::vector<double> q = adjustedQ(p, constant);
  for (std::size_t i = 0; i < places.size(); ++i) {
    const std::size_t row = places[i] / tests.p.nodes, column = places[i] % tests.p.nodes;
    tests.q.at(row, column) = q[i];
    if (measure != Measure::kInfluence) tests.q.at(column, row) = q[i];
  }
}

EdgeTests testEdges(const EdgeShares& shares, Measure measure, const NullTally& null, double constant) {
  const EdgeMatrix& values = shares.of(measure);
  EdgeTests tests(values.nodes);
  std::vector<float> maxima = null.maxima(measure);
  std::sort(maxima.begin(), maxima.end());
  const MagnitudeCounts& counts = null.counts(measure);
  for (std::size_t row = 0; row < values.nodes; ++row) {
    for (std::size_t column = 0; column < values.nodes; ++column) {
      const double scaled = std::abs(values.at(row, column)) / null.scale(measure, row, column);
      if (std::isnan(scaled)) continue;
      tests.p.at(row, column) = (1 + static_cast<double>(counts.atLeast(static_cast<float>(scaled)))) /
                                (1 + static_cast<double>(counts.total()));
      tests.pFamilyWise.at(row, column) = familyWise(maxima, scaled);
    }
  }
  adjustEdges(measure, constant, tests);
  return tests;
}

}  // namespace connectome
