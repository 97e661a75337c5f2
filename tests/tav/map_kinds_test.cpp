#include "tav/map_kinds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

using ::testing::ElementsAre;

TEST(MapKinds, KeepTheNumbersOfTheTypes) {
  EXPECT_THAT(
      (std::vector<int>{tav::REF2VOX, tav::VOX2REF, tav::INST, tav::DTAV, tav::DTAV_IT, tav::DTAV_RC}),
      ElementsAre(0, 1, 2, 3, 4, 5));
  for (std::size_t i = 0; i < tav::mapKinds().size(); ++i)
    EXPECT_EQ(static_cast<std::size_t>(tav::mapKinds()[i].type), i);
}

TEST(MapKinds, KeepTheDefaultSet) {
  EXPECT_THAT(tav::DEF_T_MAPTYPES,
              ElementsAre(tav::REF2VOX, tav::VOX2REF, tav::INST, tav::DTAV, tav::DTAV_IT, tav::DTAV_RC));
}

TEST(MapKinds, AreFoundByTheirKeywords) {
  for (const tav::MapKind& kind : tav::mapKinds()) EXPECT_EQ(tav::findMapType(kind.keyword), kind.type);
  EXPECT_EQ(tav::findMapType("DTAV_IT"), tav::DTAV_IT);
  EXPECT_EQ(tav::findMapType("dtav_it"), std::nullopt);
  EXPECT_EQ(tav::findMapType(""), std::nullopt);
}

TEST(MapKinds, HaveNamesOfTheirOwn) {
  std::set<std::string> keywords, labels;
  for (const tav::MapKind& kind : tav::mapKinds()) {
    keywords.insert(kind.keyword);
    labels.insert(kind.label);
  }
  EXPECT_EQ(keywords.size(), tav::mapKinds().size());
  EXPECT_EQ(labels.size(), tav::mapKinds().size());
  EXPECT_THAT(keywords, ::testing::UnorderedElementsAreArray(tav::MAPTYPE_NAMES));
}

TEST(MapKinds, KnowWhichTypesThereAre) {
  EXPECT_TRUE(tav::isKnown(tav::REF2VOX));
  EXPECT_TRUE(tav::isKnown(tav::DTAV_RC));
  EXPECT_FALSE(tav::isKnown(static_cast<tav::MapType>(tav::kNrOfMapTypes)));
  EXPECT_FALSE(tav::isKnown(static_cast<tav::MapType>(-1)));
}
