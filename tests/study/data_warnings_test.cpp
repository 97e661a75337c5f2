#include "study/data_warnings.h"

#include <gmock/gmock.h>

#include "study/direction_check.h"

namespace study {
namespace {

using ::testing::ElementsAre;

TEST(DataWarnings, ATextOfAllConditionsIsSaidOnceWithoutTheirNames) {
  DataWarnings warnings;
  warnings.add("faces", {"spikes", "spikes", "drift"});
  warnings.add("houses", {"spikes", "period"});
  EXPECT_THAT(warnings.texts(),
              ElementsAre("spikes", "drift (condition 'faces')", "period (condition 'houses')"));
}

TEST(DataWarnings, ATextOfSomeConditionsNamesThem) {
  DataWarnings warnings;
  warnings.add("a", {"x"});
  warnings.add("b", {});
  warnings.add("c", {"x", "condition 'c': few samples"});
  EXPECT_THAT(warnings.texts(), ElementsAre("x (conditions 'a', 'c')", "condition 'c': few samples"));
}

TEST(DirectionCheck, TestsVoxelsThatPassAtTheLargestQOutsideTheReference) {
  const float values[] = {3, -3, 2, -1.9F, 0, 5};
  const auto inside = static_cast<std::uint8_t>(StatusCode::kInsideReference);
  const std::vector<std::uint8_t> codes = {1, 1, 1, 1, 1, inside};
  const std::vector<tav::MapOutcome> maps = {{tav::INST, values, {{0.1F, 0, 6}}},
                                             {tav::DTAV, values, {{0.05F, 3, 3}, {0.1F, 2, 4}}}};
  const auto tested = voxelsToTest(maps, {0.05, 0.1}, codes);
  ASSERT_TRUE(tested);
  EXPECT_EQ(tested->q, 0.1);
  EXPECT_THAT(tested->voxels, ElementsAre(0, 1, 2));
}

TEST(DirectionCheck, AThresholdThatNoVoxelMeetsTestsNone) {
  const float values[] = {3};
  const auto tested = voxelsToTest({{tav::DTAV, values, {{0.1F, 0, 0}}}}, {0.1}, {1});
  ASSERT_TRUE(tested);
  EXPECT_TRUE(tested->voxels.empty());
  EXPECT_FALSE(voxelsToTest({{tav::INST, values, {{0.1F, 0, 0}}}}, {0.1}, {1}));
}

}  // namespace
}  // namespace study
