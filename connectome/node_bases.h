// The vectors of all nodes (lag_basis.h), as both precisions want them.
#ifndef TAVMAP_CONNECTOME_NODE_BASES_H
#define TAVMAP_CONNECTOME_NODE_BASES_H

#include <cstddef>
#include <vector>

#include "connectome/lag_basis.h"

namespace connectome {

struct NodeBases {
  // Computes them on several threads.
  NodeBases(const NodeSeries& series, int order, Given given, int threads);

  [[nodiscard]] const double* of(std::size_t node) const { return values.data() + node * vectors * samples; }
  // [vector][node, padded with zeros][sample]; a node that is not defined has zeros.
  [[nodiscard]] std::vector<float> inSinglePrecision() const;

  std::size_t nodes, vectors = 0, samples = 0;
  std::vector<double> values;   // [node][vector][sample]
  std::vector<char> isDefined;  // per node; no vector<bool>, which threads cannot share
};

}  // namespace connectome

#endif
