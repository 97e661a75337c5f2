// What is counted over the data sets of a cell.
#ifndef TAVMAP_TESTS_CALIBRATION_CELL_MEASURES_H
#define TAVMAP_TESTS_CALIBRATION_CELL_MEASURES_H

#include <array>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "tests/calibration/cell_setting.h"
#include "tests/calibration/library_run.h"
#include "tests/calibration/rates.h"

namespace calibration {

// The order of the models: that of the setting, or the one that the criterion of Schwarz chooses for each
// data set.
enum class Orders { kFixed, kChosen };

// By map and index of q: whether any voxel outside the reference passes.
using AnyRates = std::map<std::pair<tav::MapType, std::size_t>, Mean>;
void addAny(const std::vector<FoundMap>& maps, AnyRates& rates);

// Over data sets of seeds firstSeed, firstSeed + 1, ...; a rate for each of the orders asked for. `change`
// may change what the engine is asked for.
[[nodiscard]] std::vector<AnyRates> measureAny(const CellSetting& setting, int sets, unsigned firstSeed,
                                               const std::vector<Orders>& orders,
                                               const std::function<void(tav::RunOptions&)>& change = nullptr);

// By map: whether any voxel, and any cluster, has a family-wise p of .05 or less.
struct FamilyRates {
  Mean voxels, clusters;
};
using FamilyWiseRates = std::map<tav::MapType, FamilyRates>;
void addFamilyWise(const std::vector<FoundMap>& maps, FamilyWiseRates& rates);
// Models of the setting's order, whole maps of so many surrogates.
[[nodiscard]] FamilyWiseRates measureFamilyWise(const CellSetting& setting, int sets, unsigned firstSeed,
                                                int draws);

// By map: the share of voxels outside the reference whose own p is at most each of these.
inline constexpr std::array<double, 3> kPLevels = {0.05, 0.01, 0.001};
using PValueRates = std::map<tav::MapType, std::array<Mean, kPLevels.size()>>;
void addPValues(const std::vector<FoundMap>& maps, PValueRates& rates);
[[nodiscard]] PValueRates measurePValues(const CellSetting& setting, int sets, unsigned firstSeed);

// Of lagged influence of the reference on voxels, at one q.
struct PowerRates {
  Mean power, falseShare;
};
struct PowerComparison {
  std::vector<PowerRates> maps, leastSquares;  // per q
  AnyRates any;                                // of all maps; those of VOX2REF are false alarms
  double largestDifference = 0;  // of any voxel's REF2VOX and the measure of plain least squares
};
// Maps beside the F test of least squares with the procedure of Benjamini & Hochberg, on driven data, both
// with models of the setting's order.
[[nodiscard]] PowerComparison comparePower(const CellSetting& setting, int sets, unsigned firstSeed,
                                           const std::function<void(tav::RunOptions&)>& change = nullptr);

}  // namespace calibration

#endif
