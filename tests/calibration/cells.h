// The cells of the calibration: which data it is measured on.
#ifndef TAVMAP_TESTS_CALIBRATION_CELLS_H
#define TAVMAP_TESTS_CALIBRATION_CELLS_H

#include <vector>

#include "tests/calibration/cell_setting.h"

namespace calibration {

// The reference influences no voxel; where artefacts relate the two, isUnrelated is false.
[[nodiscard]] std::vector<CellSetting> nullCells();

// The reference influences a tenth of the voxels.
[[nodiscard]] std::vector<CellSetting> drivenCells();

// Null data that the short calibration needs: many confounds for the volumes.
[[nodiscard]] CellSetting confoundCell(int confounds);
// Driven data whose intervals are one of 100 volumes and five of 8.
[[nodiscard]] CellSetting piecesCell();

}  // namespace calibration

#endif
