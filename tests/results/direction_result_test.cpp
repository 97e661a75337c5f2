#include "results/direction_result.h"

#include <gtest/gtest.h>

namespace study {
namespace {

TEST(DirectionResult, SaysWhatWasTestedAndWhatIsSupported) {
  EXPECT_EQ(directionText({0.1, "f", {9000, 402, 215, 260, 7}}, "V1"),
            "of 884 voxels that pass DTAV at q = 0.1, 617 keep their direction when it is tested with "
            "reversed time: "
            "V1 leads 402 and follows 215; 7 could not be judged");
  EXPECT_EQ(directionText({0.05, "f", {9000, 0, 1, 0, 0}}, "V1"),
            "of 1 voxel that passes DTAV at q = 0.05, 1 keeps its direction when it is tested with reversed "
            "time: V1 "
            "leads 0 and follows 1");
  EXPECT_EQ(
      directionText({0.05, "f", {9000, 0, 0, 3, 0}}, "V1"),
      "of 3 voxels that pass DTAV at q = 0.05, 0 keep their direction when it is tested with reversed time");
  EXPECT_EQ(directionText({0.05, "f", {9000, 0, 0, 0, 0}}, "V1"),
            "no voxel passes DTAV at q = 0.05, so that no direction was tested");
}

}  // namespace
}  // namespace study
