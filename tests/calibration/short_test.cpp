// A short calibration: few data sets with fixed seeds and wide bounds, and faults planted in what the engine
// is asked for, which these bounds must see. The long one is made by scripts/calibrate.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/calibration/cell_measures.h"
#include "tests/calibration/cells.h"
#include "tests/calibration/direction_cells.h"

namespace calibration {
namespace {

constexpr std::size_t kFivePercent = 1;
// Of 40 data sets at q = .05: more than six have a probability below .01.
constexpr int kSets = 40;
constexpr double kMostAny = 0.15;
// Floats hold the maps; what models over other samples differ by is above .01.
constexpr double kSameMeasure = 1e-4;

// Any map's, at q = .05.
double worstAny(const AnyRates& rates) {
  double worst = 0;
  for (const auto& [what, rate] : rates)
    if (what.second == kFivePercent) worst = std::max(worst, rate.mean());
  return worst;
}

double worstAny(const CellSetting& setting, Orders order = Orders::kFixed,
                const std::function<void(tav::RunOptions&)>& change = nullptr) {
  return worstAny(measureAny(setting, kSets, 9000000, {order}, change)[0]);
}

CellSetting cellNamed(const std::string& name) {
  for (const auto& cells : {nullCells(), drivenCells()})
    for (const CellSetting& cell : cells)
      if (cell.name == name) return cell;
  throw std::invalid_argument(name);
}

PowerComparison comparePieces(const std::function<void(tav::RunOptions&)>& change = nullptr) {
  return comparePower(piecesCell(), 20, 9100000, change);
}

class NullData : public ::testing::TestWithParam<const char*> {};

TEST_P(NullData, LetsFewMapsHaveAnyVoxelThatPasses) {
  EXPECT_LE(worstAny(cellNamed(GetParam())), kMostAny);
}

INSTANTIATE_TEST_SUITE_P(Short, NullData,
                         ::testing::Values("ar9", "heavy", "spikes-own-random", "jump", "confounds60",
                                           "censored-scattered", "wave-ar"),
                         [](const auto& test) {
                           std::string name = test.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

TEST(NullDataOfAChosenOrder, LetsFewMapsHaveAnyVoxelThatPasses) {
  EXPECT_LE(worstAny(cellNamed("haemo-2-300-noise"), Orders::kChosen), kMostAny);
}

TEST(NullData, OfManyConfoundsFailsWhenSurrogatesSkipThem) {
  const auto skip = [](tav::RunOptions& options) { options.treatments.clear(); };
  EXPECT_GT(worstAny(confoundCell(60), Orders::kFixed, skip), 2 * kMostAny);
}

// What the reference's past says of a voxel is what least squares say, over all samples of long and short
// intervals alike, each counted once.
TEST(DrivenVoxels, HaveTheMeasureOfPlainLeastSquares) {
  EXPECT_LT(comparePieces().largestDifference, kSameMeasure);
}

TEST(DrivenVoxels, HaveAnotherMeasureWhenModelsUseDifferentSamples) {
  const auto written = [](tav::RunOptions& options) { options.fitForm = tav::FitForm::kWritten; };
  EXPECT_GT(comparePieces(written).largestDifference, 100 * kSameMeasure);
}

// At q = .1, the level of the F test; maps at the same q are held to a third less.
TEST(DrivenVoxels, AreFoundInPiecesNearlyAsOftenAsByLeastSquaresOnAll) {
  const PowerComparison found = comparePieces();
  EXPECT_GT(found.maps.back().power.mean(), 0.6 * found.leastSquares.back().power.mean());
  EXPECT_GT(found.leastSquares.back().power.mean(), 0.4);
  EXPECT_LE(found.maps.back().falseShare.mean(), 0.2);
}

// At order 2 models over different samples let a driven voxel look like a driver.
TEST(DrivenVoxels, DriveNothing) {
  const PowerComparison found = comparePower(cellNamed("driven-order2"), kSets, 9200000);
  EXPECT_LE(found.any.at({tav::VOX2REF, kFivePercent}).mean(), kMostAny);
  EXPECT_LT(found.largestDifference, kSameMeasure);
}

TEST(Direction, IsSupportedWhereThereIsADelayAndNotWhereNoiseIsUnequal) {
  for (const DirectionCell& cell : directionCells()) {
    if (cell.volumes != 300 || cell.order != 1) continue;
    const DirectionRates rates = measureDirection(cell, 30, 9300000);
    SCOPED_TRACE(nameOf(cell) + ", signal to noise " + std::to_string(cell.referenceSnr));
    EXPECT_LE(rates.voxelLeads.mean(), 0.2);
    if (cell.relation == Relation::kSameMoment) {
      EXPECT_LE(rates.referenceLeads.mean(), 0.2);
    } else {
      EXPECT_GE(rates.referenceLeads.mean(), 0.7);
    }
  }
}

}  // namespace
}  // namespace calibration
