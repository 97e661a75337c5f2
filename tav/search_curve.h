// How the step-up rule's search for thresholds went: p over rank, at some ranks.
#ifndef TAVMAP_TAV_SEARCH_CURVE_H
#define TAVMAP_TAV_SEARCH_CURVE_H

#include <cstddef>
#include <vector>

#include "tav/map_source.h"

namespace tav {

struct SearchPoint {
  std::size_t rank;  // 1: the largest observed magnitude
  float magnitude;
  double p;  // (1 + null magnitudes that reach it) / (1 + null magnitudes)
};

struct SearchCurve {
  std::size_t voxels = 0;  // m: observed magnitudes, those that are not numbers included
  double constant = 1;     // that divides every q: a point meets q when p <= (rank / m) (q / constant);
                           // whoever searches sets it
  std::vector<SearchPoint> points = {};  // by ascending rank
  [[nodiscard]] bool empty() const { return points.empty(); }
};

inline constexpr std::size_t kMostSearchPoints = 200;

// The p of fdr_thresholds.h (kStepUp) at ranks that are spread evenly over the logarithm from the first to
// the last number, and at the ranks `alsoAt`, of which those beyond are left out; kMostSearchPoints together
// when alsoAt has fewer than half as many. Empty without an observed number. Cost: a sort of the observed
// magnitudes and a search among the points per null value.
[[nodiscard]] SearchCurve searchCurve(const MapSource& observed, const MapSource& null,
                                      const std::vector<std::size_t>& alsoAt);

}  // namespace tav

#endif
