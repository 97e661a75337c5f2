// From what the shuffles gave to maps over all places.
#ifndef TAVMAP_INFERENCE_GROUP_RESULTS_H
#define TAVMAP_INFERENCE_GROUP_RESULTS_H

#include "inference/observed.h"
#include "inference/shuffles.h"
#include "inference/sweep.h"
#include "inference/test_result.h"

namespace inference {

struct Tested {
  const Model& model;
  const Values& values;
  const TestedPlaces& places;
  const Shuffles& shuffles;
  const TestOptions& options;
  const Observed& observed;
  const Swept& swept;
};

[[nodiscard]] TestResult groupResult(const Tested& tested);

}  // namespace inference

#endif
