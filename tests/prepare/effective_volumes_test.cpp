#include "prepare/effective_volumes.h"

#include <gtest/gtest.h>

namespace study {
namespace {

// 36 confounds in a run of 100 volumes, of which 90 are kept.
constexpr double kCost = 36.0 / 90;

TEST(EffectiveVolumes, AWholeRunLosesTheRankOfItsConfounds) {
  EXPECT_EQ(effectiveAfterRegression({{1, 50}, {61, 100}}, 2, kCost), 90 - 2 * 2 - 36);
  for (int rank = 0; rank < 150; ++rank)
    EXPECT_EQ(effectiveAfterRegression({{1, 170}}, 1, rank / 170.0), 169 - rank) << rank;
}

TEST(EffectiveVolumes, APartOfARunLosesItsShareRoundedUp) {
  EXPECT_EQ(effectiveAfterRegression({{1, 45}}, 1, kCost), 44 - 18);
  EXPECT_EQ(effectiveAfterRegression({{1, 46}}, 1, kCost), 45 - 19);  // 18.4
}

TEST(EffectiveVolumes, NothingIsLostWithoutConfoundsAndNeverMoreThanThereIs) {
  EXPECT_EQ(effectiveAfterRegression({{1, 45}}, 1, 0), 44);
  EXPECT_EQ(effectiveAfterRegression({{1, 10}}, 5, 0.9), 0);
}

}  // namespace
}  // namespace study
