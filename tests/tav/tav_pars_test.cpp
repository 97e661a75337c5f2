#include "tav/tav_pars.h"

#include <gtest/gtest.h>

#include "tav/vtc_cache.h"

TEST(TavPars, FreshRecordHoldsTheDefaults) {
  const tav::TAV_Pars pars;
  EXPECT_EQ(pars.mapTypes, (std::set<tav::MapType>{tav::REF2VOX, tav::VOX2REF, tav::INST, tav::DTAV,
                                                   tav::DTAV_IT, tav::DTAV_RC}));
  EXPECT_EQ(pars.qThresholds, (std::vector<float>{0.01F, 0.05F, 0.1F}));
  EXPECT_EQ(pars.cvConstant, 2);
  EXPECT_EQ(pars.arOrder, 1);
  EXPECT_EQ(pars.firstTpInclThres, 100);
  EXPECT_TRUE(pars.showVerboseProgress);
  EXPECT_EQ(pars.nSurrogateSims, 1000);
  EXPECT_EQ(pars.nDiscardedSimTps, 100);
  EXPECT_EQ(pars.instLowerThres, 0.05F);
  EXPECT_EQ(pars.rcUpperThres, 0.7F);
  EXPECT_FALSE(pars.separateSrcTrgVtcs);
  EXPECT_EQ(pars.mapScaleFactor, 100.0F);
  EXPECT_TRUE(pars.vois.empty());
  EXPECT_TRUE(pars.conds.empty());
  EXPECT_EQ(pars.resultPathPrefix, "");
}

TEST(TavPars, FreshRecordKnowsNoGeometry) {
  const tav::TAV_Pars pars;
  for (const std::int32_t value : {pars.vtcXStart, pars.vtcXEnd, pars.vtcYStart, pars.vtcYEnd, pars.vtcZStart,
                                   pars.vtcZEnd, pars.vtcResolution, pars.vtcMaxNrOfVolumes}) {
    EXPECT_EQ(value, -1);
  }
}

TEST(TavPars, MapTypesHaveTheirValues) {
  EXPECT_EQ(tav::REF2VOX, 0);
  EXPECT_EQ(tav::VOX2REF, 1);
  EXPECT_EQ(tav::INST, 2);
  EXPECT_EQ(tav::DTAV, 3);
  EXPECT_EQ(tav::DTAV_IT, 4);
  EXPECT_EQ(tav::DTAV_RC, 5);
}

TEST(TavPars, CopyOfAConditionOwnsItsIntervalsAndSharesTheFiles) {
  auto* const file = reinterpret_cast<tav::VtcFile*>(0x10);
  tav::TAV_Cond_Pars cond{"a", {{"s.vtc", "t.vtc", {{1, 5}}, file, file}}};
  tav::TAV_Cond_Pars copy = cond;
  copy.vtcIntvSets[0].intervals[0].last = 9;
  EXPECT_EQ(cond.vtcIntvSets[0].intervals[0].last, 5);
  EXPECT_EQ(copy.vtcIntvSets[0].srcVtc, file);
  EXPECT_EQ(copy.vtcIntvSets[0].trgVtc, file);
}
