#include "connectome/node_table.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "connectome/table_text.h"
#include "formats/table.h"

namespace connectome {
namespace {

// Sums and counts over all other nodes.
struct Strengths {
  double out = 0, in = 0, netOut = 0, netIn = 0, instantaneous = 0;
  int edgesOut = 0, edgesIn = 0, leads = 0, follows = 0;
};

Strengths strengthsOf(std::size_t node, const ConditionResult& result, double q) {
  Strengths sums;
  const MeasureResult &influence = result.of(Measure::kInfluence), &net = result.of(Measure::kNet);
  const std::size_t nodes = influence.values.nodes;
  for (std::size_t other = 0; other < nodes; ++other) {
    const double to = influence.values.at(node, other), from = influence.values.at(other, node);
    if (std::isnan(to) || std::isnan(from)) continue;
    const double difference = net.values.at(node, other);
    sums.out += to;
    sums.in += from;
    sums.netOut += std::max(difference, 0.0);
    sums.netIn += std::max(-difference, 0.0);
    sums.instantaneous += result.of(Measure::kInstantaneous).values.at(node, other);
    sums.edgesOut += influence.tests.q.at(node, other) <= q ? 1 : 0;
    sums.edgesIn += influence.tests.q.at(other, node) <= q ? 1 : 0;
    const EdgeDirection direction = result.directions[node * nodes + other];
    sums.leads += direction == EdgeDirection::kRowLeads ? 1 : 0;
    sums.follows += direction == EdgeDirection::kColumnLeads ? 1 : 0;
  }
  return sums;
}

}  // namespace

std::string nodeTable(const std::vector<Node>& nodes, const std::vector<std::size_t>& order,
                      const ConditionResult& result, double q) {
  std::string text =
      "index\tname\tnetwork\tvoxels\tx_mm\ty_mm\tz_mm\tout\tin\tnet\tnet_out\tnet_in\tinstantaneous\tedges_"
      "out\tedges_in"
      "\tleads\tfollows\tplace\n";
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const Node& node = nodes[i];
    const Strengths sums = strengthsOf(i, result, q);
    const auto place = std::find(order.begin(), order.end(), i) - order.begin() + 1;
    text += fmt::format("{}\t{}\t{}\t{}", i + 1, formats::tsvCell(node.name),
                        node.network.empty() ? "n/a" : formats::tsvCell(node.network), node.voxels);
    for (const double value : {node.centreMm[0], node.centreMm[1], node.centreMm[2]})
      text += fmt::format("\t{:.1f}", value);
    for (const double value :
         {sums.out, sums.in, sums.out - sums.in, sums.netOut, sums.netIn, sums.instantaneous})
      text += "\t" + numberText(value);
    text +=
        fmt::format("\t{}\t{}\t{}\t{}\t{}\n", sums.edgesOut, sums.edgesIn, sums.leads, sums.follows, place);
  }
  return text;
}

nlohmann::ordered_json nodeColumns(double q) {
  nlohmann::ordered_json json;
  const auto put = [&](const char* column, const std::string& words) { json[column]["Description"] = words; };
  put("index", "row and column of the node in the matrices, from 1");
  put("name", "the region");
  put("network", "of the label table, or of the region's name; n/a when none is known");
  put("voxels", "whose mean is the node's series");
  for (const char* column : {"x_mm", "y_mm", "z_mm"})
    put(column, "centre of gravity, scanner coordinates (RAS+)");
  put("out", "sum of the influences of this node on all others");
  put("in", "sum of the influences of all others on this node");
  put("net", "out - in");
  put("net_out", "sum of the net influences on others that are above 0");
  put("net_in", "sum of the net influences of others on this node that are above 0");
  put("instantaneous", "sum over all others");
  put("edges_out", fmt::format("influences of this node that pass at q = {}", q));
  put("edges_in", fmt::format("influences on this node that pass at q = {}", q));
  put("leads", "pairs in which the lead of this node is supported with reversed time");
  put("follows", "pairs in which the lead of the other is supported");
  put("place", "of the node in pictures, from 1");
  return json;
}

}  // namespace connectome
