#include "tav/raw_maps.h"

#include <gtest/gtest.h>

TEST(RawMaps, OneVoxelIsOneValuePerPlane) {
  tav::rawTAVMaps maps(1, 1, 1);
  EXPECT_EQ(maps.nrOfVoxels(), 1U);
  for (int measure = 0; measure < tav::kNrOfMeasures; ++measure) {
    maps.plane(measure)[0][0][0] = static_cast<float>(measure);
    EXPECT_EQ(*maps.values(measure), static_cast<float>(measure));
  }
}

TEST(RawMaps, AreIndexedByZThenYThenX) {
  tav::rawTAVMaps maps(3, 2, 4);
  EXPECT_EQ(maps.nrOfVoxels(), 24U);
  for (int measure = 0; measure < tav::kNrOfMeasures; ++measure) {
    EXPECT_EQ(&maps.plane(measure)[3][1][2], maps.values(measure) + 23);
    EXPECT_EQ(&maps.plane(measure)[1][0][0], maps.values(measure) + 6);
  }
}

TEST(RawMaps, OfAnEmptyGridHoldNothing) {
  EXPECT_EQ(tav::rawTAVMaps(0, 5, 5).nrOfVoxels(), 0U);
  EXPECT_EQ(tav::rawTAVMaps(5, 5, 0).nrOfVoxels(), 0U);
}

TEST(FurtherNulls, KeepDrawAfterDrawPerMeasure) {
  tav::FurtherNulls nulls(3);
  tav::FurtherNulls::Block& block = nulls.append(2);
  EXPECT_EQ(block.planeSize(), 6U);
  EXPECT_EQ(block.plane(1) - block.plane(0), 6);
  EXPECT_EQ(block.nrOfVoxels(), 2U);
  EXPECT_EQ(block.draw(2, 1) - block.plane(2), 2);
  nulls.append(0);
  EXPECT_EQ(nulls.blocks().size(), 2U);
  nulls.clear();
  EXPECT_TRUE(nulls.blocks().empty());
}
