// One simulated data set, with or without planted influence, sent through the whole engine.
#ifndef TAVMAP_TESTS_CALIBRATION_SIMULATED_RUN_H
#define TAVMAP_TESTS_CALIBRATION_SIMULATED_RUN_H

#include <string>
#include <vector>

namespace calibration {

// What is simulated and how it is analysed.
struct Setting {
  bool calibrated = true;        // false: the plug-in's procedure
  int cvConstant = 1;
  int order = 1;
  int nrOfIntervals = 1;         // of equal length, covering the run
  double autocorrelation = 0;    // of every voxel: its own lag-1 coefficient
  double drivenShare = 0;        // share of voxels that the reference drives, at lag 1
  double coupling = 0.35;        // of the driven voxels, in units of the reference's innovations
  int voxels = 4000;             // a multiple of 100
  int volumes = 200;             // a multiple of nrOfIntervals
  int nrOfSurrogates = 1000;
  std::vector<float> qs = {0.01F, 0.05F, 0.1F};
};

// What passed in the map from the reference to the voxels, at one q.
struct Discoveries {
  int truly = 0;     // driven voxels that pass
  int falsely = 0;   // undriven voxels that pass
  int driven = 0;    // voxels driven
  [[nodiscard]] double falseShare() const {
    const int all = truly + falsely;
    return all == 0 ? 0.0 : static_cast<double>(falsely) / all;
  }
  [[nodiscard]] double power() const { return driven == 0 ? 0.0 : static_cast<double>(truly) / driven; }
};

// Simulates with `seed`, writes the run to `folder`, computes it through tav::Computer and reads
// the map that the host was given. One entry per q, ascending. The reference is a course of its
// own, in a source file whose voxels are not mapped. Throws std::runtime_error when the
// computation fails.
[[nodiscard]] std::vector<Discoveries> simulateRun(const Setting& setting, unsigned seed, const std::string& folder);

}  // namespace calibration

#endif
