// A simulated data set through all that `tavmap run` does, from its request to the written files.
#ifndef TAVMAP_TESTS_CALIBRATION_CHAIN_RUN_H
#define TAVMAP_TESTS_CALIBRATION_CHAIN_RUN_H

#include <string>
#include <vector>

#include "tests/calibration/simulated_data.h"
#include "tests/calibration/written_results.h"

namespace calibration {

struct Analysis {
  std::string method = "calibrated";  // or "plugin"
  int cvConstant = 1;
  int order = 1;
  std::vector<int> intervals = {1, 4};  // one condition each: the run in so many intervals of equal length
  std::vector<double> qs = {0.01, 0.05, 0.1};
  int surrogates = 1000;
};

// The request that a user would write for it, with seed and file names.
[[nodiscard]] std::string requestText(const SimulatedData& data, const Analysis& analysis);

// Runs the request in the data's folder and reads what it has written for the map from the region
// to the voxels: one entry per condition and q, in the order of `analysis`. Imported runs are
// shared by all analyses of the data; results are removed once they are read. Throws
// std::runtime_error when the study fails.
[[nodiscard]] std::vector<Discoveries> analyse(const SimulatedData& data, const Analysis& analysis);

}  // namespace calibration

#endif
