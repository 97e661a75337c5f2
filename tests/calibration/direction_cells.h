// Pairs of courses on which the control of direction is measured.
#ifndef TAVMAP_TESTS_CALIBRATION_DIRECTION_CELLS_H
#define TAVMAP_TESTS_CALIBRATION_DIRECTION_CELLS_H

#include <string>
#include <vector>

#include "tests/calibration/rates.h"

namespace calibration {

enum class Relation {
  kSameMoment,  // the same haemodynamic signal in both
  kDelay,       // the voxel's is 2 s late
  kInfluence    // the voxel's signal has a memory of .5 and is driven by the reference's, one volume before
};

struct DirectionCell {
  Relation relation;
  int volumes;
  double trSeconds;
  double referenceSnr, voxelSnr;  // standard deviation of signal over that of white noise
  int order;                      // of the models
};

[[nodiscard]] std::vector<DirectionCell> directionCells();
[[nodiscard]] std::string nameOf(const DirectionCell& cell);

// Shares of pairs.
struct DirectionRates {
  Mean referenceLeads, voxelLeads;  // supported, by sign
  Mean positive;                    // DTAV above 0, supported or not
};
[[nodiscard]] DirectionRates measureDirection(const DirectionCell& cell, int pairs, unsigned seed);

}  // namespace calibration

#endif
