// The tables of nodes and of edges that pass.
#ifndef TAVMAP_CONNECTOME_NODE_TABLE_H
#define TAVMAP_CONNECTOME_NODE_TABLE_H

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "connectome/condition_result.h"
#include "connectome/nodes.h"

namespace connectome {

// A line per node: strengths, counts of edges that pass at the largest q, place in pictures.
[[nodiscard]] std::string nodeTable(const std::vector<Node>& nodes, const std::vector<std::size_t>& order,
                                    const ConditionResult& result, double q);
[[nodiscard]] nlohmann::ordered_json nodeColumns(double q);

// A line per pair of which any measure passes at the rate q, strongest influence first. `from` is the node
// with the larger influence on the other.
[[nodiscard]] std::string edgeTable(const std::vector<Node>& nodes, const ConditionResult& result, double q);
[[nodiscard]] nlohmann::ordered_json edgeColumns(double q);

}  // namespace connectome

#endif
