#include "prepare/censor.h"

#include <gtest/gtest.h>

#include <limits>

namespace study {
namespace {

using Ranges = std::vector<VolumeRange>;
const double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(Censor, LeavesOutVolumesAboveTheThresholdOnly) {
  CensorSettings settings;
  settings.fdThresholdMm = 0.5;
  EXPECT_EQ(volumesBelowThreshold({kNan, 0.5, 0.51, 0.1}, settings),
            (std::vector<bool>{true, true, false, true}));
}

TEST(Censor, ZeroThresholdKeepsEverything) {
  EXPECT_EQ(volumesBelowThreshold({9.0, 9.0}, {}), (std::vector<bool>{true, true}));
}

TEST(Censor, NeighboursGoWithTheVolumeAndStopAtTheEnds) {
  CensorSettings settings;
  settings.fdThresholdMm = 0.5;
  settings.alsoBefore = 1;
  settings.alsoAfter = 2;
  EXPECT_EQ(volumesBelowThreshold({1.0, 0, 0, 0, 0, 1.0}, settings),
            (std::vector<bool>{false, false, false, true, false, false}));
}

TEST(Censor, SplitsARunIntoSegmentsAndDropsShortOnes) {
  const std::vector<bool> kept = {true, true, true, false, true, false, true, true};
  EXPECT_EQ(keptSegments(kept, 2), (Ranges{{1, 3}, {7, 8}}));
  EXPECT_EQ(keptSegments(kept, 1), (Ranges{{1, 3}, {5, 5}, {7, 8}}));
  EXPECT_TRUE(keptSegments({false, false}, 1).empty());
}

}  // namespace
}  // namespace study
