// Whose lead is supported, of pairs whose net influence passes.
#ifndef TAVMAP_CONNECTOME_EDGE_DIRECTIONS_H
#define TAVMAP_CONNECTOME_EDGE_DIRECTIONS_H

#include <cstdint>
#include <vector>

#include "connectome/edge_tests.h"
#include "connectome/node_series.h"

namespace connectome {

// Of an ordered pair; codes of files.
enum class EdgeDirection : std::uint8_t {
  kNotTested = 0,
  kRowLeads = 1,
  kColumnLeads = 2,
  kNotSupported = 3,
  kNoVerdict = 4
};

// nodes x nodes, row-major, antisymmetric in who leads. Tested are the pairs whose net q is at most `q`, with
// reversed time (direction/control.h), each with random numbers of its own from the seed and its names'
// places: of the pair alone, whatever else the measures are conditional on. About half a millisecond per pair
// and 300 volumes. Independent of threads.
[[nodiscard]] std::vector<EdgeDirection> edgeDirections(const NodeSeries& series, int order,
                                                        const EdgeTests& net, double q, std::uint32_t seed,
                                                        int threads);

}  // namespace connectome

#endif
