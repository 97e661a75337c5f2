// The promise of the calibrated thresholds on simulated runs: a share of false runs, or of false
// voxels, of at most q, up to two standard errors. The full table is made by calibration_table.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/calibration/simulated_run.h"
#include "tests/fakes/vtc_file.h"

namespace calibration {
namespace {

constexpr int kRuns = 40;
constexpr double kQ = 0.05;

Setting smallSetting() {
  Setting setting;
  setting.voxels = 1000;
  setting.volumes = 120;
  setting.qs = {static_cast<float>(kQ)};
  return setting;
}

double standardError(double share) { return std::sqrt(share * (1 - share) / kRuns); }

TEST(CalibratedThresholds, LetAVoxelPassInAtMostAShareQOfNullRuns) {
  const fakes::TempFolder folder;
  int withDiscovery = 0;
  for (unsigned run = 0; run < kRuns; ++run) {
    const Discoveries found = simulateRun(smallSetting(), 100 + run, folder.path()).at(0);
    if (found.falsely > 0) ++withDiscovery;
  }
  EXPECT_LE(static_cast<double>(withDiscovery) / kRuns, kQ + 2 * standardError(kQ));
}

TEST(CalibratedThresholds, HoldTheFalseDiscoveryRateAndFindDrivenVoxels) {
  Setting setting = smallSetting();
  setting.drivenShare = 0.1;
  setting.coupling = 0.6;
  const fakes::TempFolder folder;
  double falseShares = 0, power = 0;
  for (unsigned run = 0; run < kRuns; ++run) {
    const Discoveries found = simulateRun(setting, 200 + run, folder.path()).at(0);
    falseShares += found.falseShare();
    power += found.power();
  }
  EXPECT_LE(falseShares / kRuns, kQ + 2 * standardError(kQ));
  EXPECT_GT(power / kRuns, 0.8);
}

}  // namespace
}  // namespace calibration
