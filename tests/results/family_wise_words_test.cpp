#include "results/family_wise_words.h"

#include <gtest/gtest.h>

namespace study {
namespace {

std::string textOf(const FamilyWiseLevel& level) {
  FamilyWiseResult result;
  result.draws = 10;
  result.levels = {{0.01, 9, 1, 1, 1}, level, {0.1, 1, 99, 99, 99}};
  return familyWiseText(result);
}

TEST(FamilyWiseWords, SayWhatPasses) {
  EXPECT_EQ(textOf({0.05, 5, 12, 2, 340}),
            "family-wise p of 0.05 or less: 12 voxels; 2 clusters of 340 voxels");
  EXPECT_EQ(textOf({0.05, 5, 1, 0, 0}), "family-wise p of 0.05 or less: 1 voxel; no cluster");
  EXPECT_EQ(textOf({0.05, 5, 0, 1, 1}), "family-wise p of 0.05 or less: no voxel; 1 cluster of 1 voxel");
  EXPECT_EQ(textOf({0.05, 5, 0, 0, 0}), "family-wise p of 0.05 or less: none");
}

TEST(FamilyWiseWords, SayWhenThereAreTooFewDraws) {
  EXPECT_EQ(textOf({0.05, std::nullopt, 0, 0, 0}),
            "family-wise p of 0.05 or less: out of reach with 10 draws");
}

}  // namespace
}  // namespace study
