// One simulated data set as a user would have it: NIfTI files whose truth is known.
#ifndef TAVMAP_TESTS_CALIBRATION_SIMULATED_DATA_H
#define TAVMAP_TESTS_CALIBRATION_SIMULATED_DATA_H

#include <filesystem>
#include <vector>

#include "tests/support/scratch.h"

namespace calibration {

inline constexpr int kMappedSlices = 10;  // a last slice, beyond them, holds the reference

struct DataSetting {
  double autocorrelation = 0;    // of every voxel's own noise: its lag-1 coefficient
  double drivenShare = 0;        // share of the voxels that the reference drives, at lag 1
  double coupling = 0.35;        // of the driven voxels, in units of the innovations
  bool referenceInside = false;  // the region lies in the mapped run itself, not in a run of its own
  int regionAcross = 3;          // the region's voxels along x and y, in one slice
  int across = 20;               // all voxels along x and y
  int volumes = 200;
  [[nodiscard]] int voxels() const { return across * across * kMappedSlices; }  // the region's not counted
};

// The region's mean course is an autoregressive one (lag-1 coefficient 0.5); its voxels add noise
// of their own, like every voxel's, which cancels in the mean. A driven voxel follows the mean
// course of one volume before. Which voxels are driven is drawn at random.
class SimulatedData {
 public:
  // Writes to a temporary folder, which goes with the object: target.nii (the voxels to map),
  // source.nii (the region, when it does not lie inside), reference.nii.gz (label 1: the region) and
  // mask.nii.gz (when it lies inside: the voxels to map and the region; without it, what is not to
  // be mapped is 0). Equal seeds give equal images.
  SimulatedData(const DataSetting& setting, unsigned seed);

  [[nodiscard]] const DataSetting& setting() const { return setting_; }
  [[nodiscard]] unsigned seed() const { return seed_; }
  [[nodiscard]] const std::filesystem::path& folder() const { return scratch_.folder(); }
  // One flag per voxel of the grid, x fastest.
  [[nodiscard]] const std::vector<bool>& driven() const { return driven_; }

 private:
  DataSetting setting_;
  unsigned seed_;
  std::vector<bool> driven_;
  Scratch scratch_;
};

}  // namespace calibration

#endif
