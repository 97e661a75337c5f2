// What the measures of unrelated nodes are like: surrogates of every node against every other node.
#ifndef TAVMAP_CONNECTOME_EDGE_NULL_H
#define TAVMAP_CONNECTOME_EDGE_NULL_H

#include <cstdint>
#include <functional>

#include "connectome/null_tally.h"

namespace connectome {

struct NullOptions {
  std::size_t draws = 1000;  // surrogates per node
  std::uint32_t seed = 1;
  int threads = 1;
  std::function<void(double)> progress{};  // 0 to 1; called on any thread, one call at a time
};

// Surrogates of each node, which went through what the node went through, are fitted with the series of all
// other nodes as these are with the node's own. In single precision, nearly singular pairs in double. Does
// not depend on the number of threads. About nodes^2 draws (p + 1)^2 passes over the samples; memory for (4
// nodes + 300 samples) draws values and the nodes' vectors, per thread.
[[nodiscard]] NullTally edgeNull(const NodeSeries& series, int order, const NullOptions& options);

}  // namespace connectome

#endif
