#include "tav/map_values.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// The value of one map at one voxel with these raw measures.
float valueOf(tav::MapType type, float ref2vox, float vox2ref, float inst, const tav::TAV_Pars& pars = {}) {
  float out = -1.0F;
  tav::computeMapValues(type, {{&ref2vox, &vox2ref, &inst}, 1}, pars, &out);
  return out;
}

}  // namespace

TEST(MapValues, MeasuresAreScaled) {
  EXPECT_EQ(valueOf(tav::REF2VOX, 0.25F, 0.5F, 0.125F), 25.0F);
  EXPECT_EQ(valueOf(tav::VOX2REF, 0.25F, 0.5F, 0.125F), 50.0F);
  EXPECT_EQ(valueOf(tav::INST, 0.25F, 0.5F, 0.125F), 12.5F);
  EXPECT_EQ(valueOf(tav::DTAV, 0.25F, 0.5F, 0.0F), -25.0F);
}

TEST(MapValues, ThresholdedDifferenceIsZeroBelowTheInstantaneousThreshold) {
  EXPECT_EQ(valueOf(tav::DTAV_IT, 9.0F, 0.5F, 0.049F), 0.0F);
  EXPECT_EQ(valueOf(tav::DTAV_IT, 0.75F, 0.5F, 0.05F), 25.0F) << "at the threshold it stays";
  EXPECT_EQ(valueOf(tav::DTAV_IT, 0.25F, 0.5F, 0.5F), -25.0F);
}

TEST(MapValues, RelativeDifferenceIsCutAboveOnly) {
  EXPECT_EQ(valueOf(tav::DTAV_RC, 0.3F, 0.0F, 0.1F), 0.0F) << "0.75 is above 0.7";
  EXPECT_FLOAT_EQ(valueOf(tav::DTAV_RC, 0.0F, 0.3F, 0.1F), -0.75F);
  EXPECT_FLOAT_EQ(valueOf(tav::DTAV_RC, 0.1F, 0.0F, 0.1F), 0.5F) << "not scaled";
}

TEST(MapValues, RelativeDifferenceAtTheUpperThresholdStays) {
  tav::TAV_Pars pars;
  pars.rcUpperThres = 0.75F;
  EXPECT_EQ(valueOf(tav::DTAV_RC, 0.375F, 0.0F, 0.125F, pars), 0.75F);
}

TEST(MapValues, RelativeDifferenceOfNothingIsZero) {
  tav::TAV_Pars pars;
  pars.instLowerThres = 0.0F;
  EXPECT_EQ(valueOf(tav::DTAV_RC, 0.0F, 0.0F, 0.0F, pars), 0.0F);
  EXPECT_EQ(valueOf(tav::DTAV_RC, 0.0F, 0.0F, 0.0F), 0.0F);
  EXPECT_EQ(valueOf(tav::DTAV_RC, 0.4F, 0.0F, 0.01F), 0.0F) << "below the instantaneous threshold";
}

TEST(MapValues, WhatIsNotANumberStaysSo) {
  EXPECT_TRUE(std::isnan(valueOf(tav::REF2VOX, kNaN, 0.0F, 0.0F)));
  EXPECT_TRUE(std::isnan(valueOf(tav::DTAV_IT, kNaN, 0.0F, 0.1F)));
  EXPECT_TRUE(std::isnan(valueOf(tav::DTAV_RC, 0.1F, 0.0F, kNaN))) << "NaN is not below and not above";
  EXPECT_TRUE(std::isnan(valueOf(tav::DTAV_RC, kNaN, 0.0F, 0.1F)));
}

TEST(MapValues, SkippedVoxelIsZeroInEveryMap) {
  for (int type = tav::REF2VOX; type <= tav::DTAV_RC; ++type) {
    EXPECT_EQ(valueOf(static_cast<tav::MapType>(type), 0.0F, 0.0F, 0.0F), 0.0F) << type;
  }
}
