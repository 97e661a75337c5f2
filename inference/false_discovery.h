// p adjusted for the false discovery rate.
#ifndef TAVMAP_INFERENCE_FALSE_DISCOVERY_H
#define TAVMAP_INFERENCE_FALSE_DISCOVERY_H

#include <vector>

namespace inference {

// Of each p the smallest q at which it passes (Benjamini & Hochberg 1995); NaN stay, and count for nothing.
[[nodiscard]] std::vector<float> adjustedForDiscovery(const std::vector<float>& p);

}  // namespace inference

#endif
