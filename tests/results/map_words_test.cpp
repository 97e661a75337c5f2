#include "results/map_words.h"

#include <gtest/gtest.h>

#include <set>

#include "tav/map_kinds.h"

namespace study {
namespace {

TEST(MapWords, SayWhichWayAnInfluenceGoes) {
  EXPECT_EQ(mapDescription(tav::REF2VOX, "V1"), "influence of V1 on each voxel");
  EXPECT_EQ(mapDescription(tav::VOX2REF, "V1"), "influence of each voxel on V1");
  EXPECT_EQ(
      mapDescription(tav::DTAV_IT, "V1"),
      "difference of the directed influences, V1 on the voxel minus the voxel on V1 (positive: V1 leads; "
      "negative: the voxel leads; unequal noise can feign both), where the instantaneous influence reaches "
      "its lower threshold, else 0");
  EXPECT_EQ(mapDescription(tav::DTAV_RC, "V1"),
            "share of the difference of the directed influences, V1 on the voxel minus the voxel on V1 "
            "(positive: V1 leads; negative: the voxel leads; unequal noise can feign both) in the sum of its "
            "magnitude and the instantaneous influence, -1 to 1");
}

TEST(MapWords, TakeTheNameOfAReferenceAsItIs) {
  EXPECT_EQ(mapDescription(tav::REF2VOX, "REFERENCE 2"), "influence of REFERENCE 2 on each voxel");
  EXPECT_EQ(mapDescription(tav::VOX2REF, "DIFFERENCE"), "influence of each voxel on DIFFERENCE");
}

TEST(MapWords, GiveEveryKindALabelOfItsOwn) {
  std::set<std::string> labels;
  for (int type = 0; type < tav::kNrOfMapTypes; ++type)
    labels.insert(mapLabel(static_cast<tav::MapType>(type)));
  EXPECT_EQ(labels.size(), static_cast<std::size_t>(tav::kNrOfMapTypes));
  EXPECT_STREQ(mapLabel(tav::DTAV_RC), "dTAVRC");
}

TEST(MapWords, SayWhatEitherSignMeans) {
  EXPECT_EQ(mapTitle(tav::VOX2REF, "V1"),
            "influence of the voxel on V1: what its past adds to predicting V1");
  EXPECT_EQ(mapTitle(tav::DTAV, "V1"), "influence of V1 on the voxel minus that of the voxel on V1");
  EXPECT_EQ(signWords(tav::DTAV, "V1").positive, "more from V1 to the voxel");
  EXPECT_EQ(signWords(tav::DTAV, "V1").negative, "more from the voxel to V1");
  EXPECT_EQ(signWords(tav::INST, "V1").positive, "shared within one volume");
  EXPECT_EQ(signWords(tav::INST, "V1").negative, "");
}

// A kind has a sign where a display has colours for it.
TEST(MapWords, KnowWhichKindsHaveASign) {
  for (const tav::MapKind& kind : tav::mapKinds())
    EXPECT_EQ(hasSign(kind.type), kind.negative.from != 0 || kind.negative.to != 0) << kind.keyword;
}

TEST(MapWords, NameTheUnits) {
  EXPECT_EQ(mapUnits(tav::INST, "100.0"), "natural logarithm of a ratio of error variances, times 100.0");
  EXPECT_EQ(mapUnits(tav::DTAV_RC, "100.0"), "share, -1 to 1");
}

}  // namespace
}  // namespace study
