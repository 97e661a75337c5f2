#include "inference/false_discovery.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace inference {

std::vector<float> adjustedForDiscovery(const std::vector<float>& p) {
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < p.size(); ++i)
    if (!std::isnan(p[i])) order.push_back(i);
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return p[a] > p[b]; });
  std::vector<float> q = p;
  double least = 1;
  for (std::size_t i = 0; i < order.size(); ++i) {
    const auto rank = static_cast<double>(order.size() - i);
    least = std::min(least, static_cast<double>(p[order[i]]) * static_cast<double>(order.size()) / rank);
    q[order[i]] = static_cast<float>(least);
  }
  return q;
}

}  // namespace inference
