// All shuffles of a test, and what is kept of each.
#ifndef TAVMAP_INFERENCE_SWEEP_H
#define TAVMAP_INFERENCE_SWEEP_H

#include <cstdint>
#include <vector>

#include "inference/observed.h"
#include "inference/shuffles.h"
#include "inference/space.h"
#include "inference/test_options.h"
#include "inference/tested_places.h"

namespace inference {

// Per shuffle but the first, which is the data as they are: the largest value of each statistic anywhere;
// those that were not asked for stay empty.
struct Swept {
  std::vector<float> z, enhanced, mass;
  std::vector<std::int32_t> reached;  // per slot: how many of them reach what was observed there
};

struct SweepSetting {
  const Model& model;
  const TestedPlaces& places;
  const Shuffles& shuffles;
  const Space& slots;  // as renumbered to the slots of the places
  const TestOptions& options;
  const Observed& observed;
};

// The same on any number of threads.
[[nodiscard]] Swept sweep(const SweepSetting& setting);

}  // namespace inference

#endif
