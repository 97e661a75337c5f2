// Shares of all draws of one node's surrogates with all nodes.
#ifndef TAVMAP_CONNECTOME_SURROGATE_SHARES_H
#define TAVMAP_CONNECTOME_SURROGATE_SHARES_H

#include <cstddef>
#include <memory>
#include <vector>

#include "connectome/lag_basis.h"
#include "connectome/node_bases.h"
#include "connectome/node_surrogates.h"
#include "connectome/null_tally.h"
#include "connectome/pair_solver.h"

namespace connectome {

// Nodes in the form that surrogates are multiplied with; shared by threads.
struct FixedNodes {
  FixedNodes(const NodeSeries& series, int order, Given given, int threads);
  LagBasis basis;
  std::vector<float> vectors;  // NodeBases::inSinglePrecision()
  std::vector<char> isDefined;
  std::size_t columns;  // nodes, padded
};

// Of one set of nodes; on one thread.
class SurrogateShares {
 public:
  SurrogateShares(const FixedNodes& nodes, int order, std::size_t draws);

  // surrogates: of a node that has begun.
  void compute(NodeSurrogates& surrogates);
  [[nodiscard]] const float* toOthers() const { return shares_.data(); }
  [[nodiscard]] const float* fromOthers() const { return shares_.data() + plane(); }
  [[nodiscard]] const float* instantaneous() const { return shares_.data() + 2 * plane(); }

 private:
  [[nodiscard]] std::size_t plane() const { return draws_ * nodes_.columns; }
  void load(NodeSurrogates& surrogates, std::size_t first, std::size_t count);
  void solve(std::size_t first, std::size_t count);
  void repair(std::size_t draw, std::size_t indexInChunk, std::size_t node);

  const FixedNodes& nodes_;
  std::size_t draws_;
  LagBasis basis_;
  PairSolver<float> solver_;
  PairSolver<double> exact_;
  std::vector<double> vectors_;        // of one surrogate
  std::vector<float> chunk_;           // [vector][draw of the chunk][sample]
  std::vector<char> isLoaded_;         // per draw of the chunk
  std::vector<float> products_;        // [vector][draw of the chunk][vector][node]
  std::vector<double> exactProducts_;  // of one pair, a lane of many
  std::vector<float> shares_;          // three planes of [draw][node]
};

}  // namespace connectome

#endif
