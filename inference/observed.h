// The statistics of the data as they are.
#ifndef TAVMAP_INFERENCE_OBSERVED_H
#define TAVMAP_INFERENCE_OBSERVED_H

#include <vector>

#include "inference/lane_vector.h"
#include "inference/space.h"
#include "inference/test_options.h"
#include "inference/test_result.h"
#include "inference/tested_places.h"

namespace inference {

// Per slot; empty slots have 0 and a bound that nothing reaches.
struct Observed {
  std::vector<double> t;  // with smoothed variances: their pseudo-t
  LaneFloats z;           // of pseudo-t: itself
  LaneFloats bounds;      // what a shuffle's correlation or pseudo-t must reach to count, rounding forgiven
  std::vector<float> enhanced;    // empty unless asked for
  std::vector<Cluster> clusters;  // of slots; none unless asked for
};

[[nodiscard]] Observed observe(const TestedPlaces& places, const Space& slots, const TestOptions& options);

}  // namespace inference

#endif
