// The measures of every node with every node.
#ifndef TAVMAP_CONNECTOME_EDGE_SHARES_H
#define TAVMAP_CONNECTOME_EDGE_SHARES_H

#include <array>
#include <cstddef>
#include <vector>

#include "connectome/node_series.h"

namespace connectome {

enum class Measure { kInfluence, kInstantaneous, kNet };
inline constexpr std::array<Measure, 3> kMeasures = {Measure::kInfluence, Measure::kInstantaneous,
                                                     Measure::kNet};

// nodes x nodes, row-major: rows are sources, columns targets. NaN where there is nothing, as on the
// diagonal.
struct EdgeMatrix {
  explicit EdgeMatrix(std::size_t size = 0);
  std::size_t nodes;
  std::vector<double> values;
  [[nodiscard]] double& at(std::size_t row, std::size_t column) { return values[row * nodes + column]; }
  [[nodiscard]] double at(std::size_t row, std::size_t column) const { return values[row * nodes + column]; }
};

// Each measure as a number that orders edges as the measure does: shares (pair_solver.h) of influence and of
// the instantaneous measure; of the net influence tanh(net / 2), which has its sign.
struct EdgeShares {
  explicit EdgeShares(std::size_t nodes = 0) : influence(nodes), instantaneous(nodes), net(nodes) {}
  EdgeMatrix influence, instantaneous, net;
  [[nodiscard]] const EdgeMatrix& of(Measure measure) const;
};

// (t_xy - t_yx) / (2 - t_xy - t_yx) = tanh((F(x -> y) - F(y -> x)) / 2).
template <typename T>
[[nodiscard]] T netShare(T toY, T toX) {
  return (toY - toX) / (T(2) - toY - toX);
}

// In double precision, from one fit per pair (two when something is given: influence is conditional on the
// past of what is given, the instantaneous measure on its present as well). A node whose series is
// degenerate, or that is given itself, has no edges; neither has a pair whose models are. Independent of
// threads. nodes^2 (p + 1)^2 / 2 passes over the samples.
[[nodiscard]] EdgeShares edgeShares(const NodeSeries& series, int order, int threads);

// Geweke's measures from the shares: -ln(1 - share), and 2 artanh of the net one.
[[nodiscard]] EdgeMatrix measureOf(const EdgeShares& shares, Measure measure);

}  // namespace connectome

#endif
