// Choices of a computation that are no part of the request record. The defaults are what the
// plug-in computes.
#ifndef TAVMAP_TAV_RUN_OPTIONS_H
#define TAVMAP_TAV_RUN_OPTIONS_H

#include <cstdint>
#include <vector>

#include "simo/lag_pair_form.h"

namespace tav {

// How a threshold is found from observed and null magnitudes.
enum class ThresholdRule {
  kWalk,   // from the strongest voxel down to the first violation of the bound
  kStepUp  // the smallest magnitude that meets the bound (Benjamini & Hochberg 1995)
};

struct RunOptions {
  simo::LagPairForm lagPairForm = simo::LagPairForm::kWritten;
  // True: each surrogate model sees the averages of all courses fitted before it in the run.
  bool poolSurrogateModels = true;
  int nullDraws = 1;  // surrogates per voxel, 1 ... 100
  ThresholdRule thresholdRule = ThresholdRule::kWalk;
  // True: the reference's own voxels, which are related to their mean by construction, are mapped but
  // take no part in the search for thresholds.
  bool searchOutsideReference = false;
  // Empty: one sequence of random numbers for the whole run. Else a time base per reference of the
  // request, from which alone its surrogates and draws follow, whatever the other references are.
  std::vector<std::int64_t> voiTimeBases;

  friend bool operator==(const RunOptions&, const RunOptions&) = default;
};

}  // namespace tav

#endif
