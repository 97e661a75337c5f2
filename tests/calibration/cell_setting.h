// What the data sets of one cell of the calibration are like.
#ifndef TAVMAP_TESTS_CALIBRATION_CELL_SETTING_H
#define TAVMAP_TESTS_CALIBRATION_CELL_SETTING_H

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tests/calibration/noise_kinds.h"

namespace calibration {

// Three volumes with spikes of ten standard deviations.
enum class Spikes {
  kNone,
  kOwn,    // each course at volumes of its own
  kShared  // all courses at the same volumes
};

// Volumes that the confound table flags as moved; they carry an artefact that all courses share.
enum class Movement {
  kNone,
  kScattered,  // one volume in ten
  kBursts      // five bursts of six volumes
};

// The grid: eight by eight voxels in some slices to map, and a last slice for the reference.
inline constexpr int kCellAcross = 8;

struct CellSetting {
  std::string name;   // one word
  std::string words;  // for people
  int volumes = 200;
  int slices = 4;  // to map
  double trSeconds = 2;
  CourseKind reference, voxel;
  int regionVoxels = 1;      // of the reference: a mean of so many courses
  bool smoothField = false;  // voxels are smoothed in space and share a signal that the reference has not
  Spikes spikes = Spikes::kNone;
  bool oneSign = false;      // of spikes; else random
  double spikeMemory = 0;    // what is left of a spike one volume later, as a share
  bool jumpOfScale = false;  // the middle third of every course has four times the standard deviation
  int confounds = 0;         // regressed out; all courses contain them
  Movement movement = Movement::kNone;
  std::vector<std::pair<int, int>> intervals = {};  // volumes from 1, inclusive; none: the whole run
  // Influence of the reference one volume before on a share of the voxels, in units of their innovations,
  // with the memory (lag-1 coefficient) that voxels of order 1 have.
  double drivenShare = 0, coupling = 0, memory = 0;
  int order = 1;            // of the models when it is not chosen
  bool isUnrelated = true;  // false: the reference is related to the voxels, by influence or artefacts

  [[nodiscard]] std::size_t voxels() const {
    return static_cast<std::size_t>(kCellAcross) * kCellAcross * static_cast<std::size_t>(slices);
  }
};

}  // namespace calibration

#endif
