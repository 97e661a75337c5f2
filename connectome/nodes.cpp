#include "connectome/nodes.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace connectome {
namespace {

std::vector<std::size_t> byNetwork(const std::vector<Node>& nodes) {
  std::vector<std::string> networks;
  for (const Node& node : nodes)
    if (std::find(networks.begin(), networks.end(), node.network) == networks.end())
      networks.push_back(node.network);
  std::vector<std::size_t> order(nodes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto place = [&](std::size_t i) {  // those without a network come last
    const std::string& network = nodes[i].network;
    return network.empty() ? networks.end() : std::find(networks.begin(), networks.end(), network);
  };
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return place(a) < place(b); });
  return order;
}

// Clusters that still stand, and how like each other they are on average.
class Linkage {
 public:
  explicit Linkage(const EdgeMatrix& likeness) : likeness_(likeness.nodes) {
    for (std::size_t i = 0; i < likeness.nodes; ++i) {
      clusters_.push_back({i});
      for (std::size_t j = 0; j < likeness.nodes; ++j)
        likeness_.at(i, j) = std::isnan(likeness.at(i, j)) ? 0 : likeness.at(i, j);
    }
  }

  std::vector<std::size_t> order() {
    for (std::size_t merges = 1; merges < clusters_.size(); ++merges) mergeMostAlike();
    for (const auto& cluster : clusters_)
      if (!cluster.empty()) return cluster;
    return {};
  }

 private:
  void mergeMostAlike() {
    std::size_t first = 0, second = 0;
    double best = -1;
    for (std::size_t i = 0; i < clusters_.size(); ++i)
      for (std::size_t j = i + 1; j < clusters_.size() && !clusters_[i].empty(); ++j)
        if (!clusters_[j].empty() && likeness_.at(i, j) > best) best = likeness_.at(first = i, second = j);
    const double a = static_cast<double>(clusters_[first].size()),
                 b = static_cast<double>(clusters_[second].size());
    for (std::size_t i = 0; i < clusters_.size(); ++i)
      likeness_.at(first, i) = likeness_.at(i, first) =
          (a * likeness_.at(first, i) + b * likeness_.at(second, i)) / (a + b);
    clusters_[first].insert(clusters_[first].end(), clusters_[second].begin(), clusters_[second].end());
    clusters_[second].clear();
  }

  EdgeMatrix likeness_;
  std::vector<std::vector<std::size_t>> clusters_;
};

}  // namespace

std::string networkInName(std::string_view name) {
  const std::size_t digits = name.find_first_not_of("0123456789");
  if (digits == 0 || digits == std::string_view::npos || !name.substr(digits).starts_with("Networks_"))
    return "";
  name.remove_prefix(digits + std::string_view("Networks_").size());
  if (!name.starts_with("LH_") && !name.starts_with("RH_")) return "";
  name.remove_prefix(3);
  return std::string(name.substr(0, name.find('_')));
}

bool mostHaveNetworks(const std::vector<Node>& nodes) {
  const auto have =
      std::count_if(nodes.begin(), nodes.end(), [](const Node& node) { return !node.network.empty(); });
  return 2 * have > static_cast<std::ptrdiff_t>(nodes.size());
}

std::vector<std::size_t> pictureOrder(const std::vector<Node>& nodes, const EdgeMatrix& likeness) {
  return mostHaveNetworks(nodes) ? byNetwork(nodes) : Linkage(likeness).order();
}

}  // namespace connectome
