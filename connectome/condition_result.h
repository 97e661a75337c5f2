// The connectome of one condition.
#ifndef TAVMAP_CONNECTOME_CONDITION_RESULT_H
#define TAVMAP_CONNECTOME_CONDITION_RESULT_H

#include <array>
#include <functional>
#include <vector>

#include "connectome/edge_directions.h"
#include "connectome/edge_tests.h"

namespace connectome {

struct ConnectomeOptions {
  int order = 1;
  std::size_t surrogates = 1000;
  bool givenAllOthers = false;             // instead of what the series have as given
  std::vector<double> q{0.01, 0.05, 0.1};  // ascending; the largest decides whose direction is tested
  double fdrConstant = 1.5;                // multiplies every adjusted p
  std::uint32_t seed = 1;
  int threads = 1;
  std::function<void(double)> progress{};
};

struct MeasureResult {
  EdgeMatrix values;  // Geweke's F, or the difference of two
  EdgeTests tests;
};

struct ConditionResult {
  std::array<MeasureResult, kMeasures.size()> measures;
  std::vector<EdgeDirection> directions;
  [[nodiscard]] const MeasureResult& of(Measure measure) const {
    return measures[static_cast<std::size_t>(measure)];
  }
};

// Edges of the family whose adjusted p, or family-wise p, is at most `level`; pairs count once in symmetric
// measures.
[[nodiscard]] std::size_t edgesWithin(const EdgeMatrix& levels, Measure measure, double level);

// Throws std::runtime_error (conditioning.h).
[[nodiscard]] ConditionResult computeCondition(const NodeSeries& series, const ConnectomeOptions& options);

}  // namespace connectome

#endif
