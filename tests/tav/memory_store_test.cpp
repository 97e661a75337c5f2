#include "tav/memory_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

class MemoryStore : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(store.create({2, {10, 16, 0, 9, 0, 6, 3}, {"a", "b"}}, errors)); }

  std::ostringstream errors;
  tav::MemoryStore store;
};

}  // namespace

TEST_F(MemoryStore, HoldsAValuePerCellOfTheBox) {
  ASSERT_THAT(store.maps(), SizeIs(2));
  EXPECT_THAT(store.maps()[1].values, SizeIs(2 * 3 * 2));
  EXPECT_THAT(store.maps()[1].values, Each(0.0F));
  store.values(1)[11] = 7.0F;
  EXPECT_EQ(store.maps()[1].values[11], 7.0F);
}

TEST_F(MemoryStore, HasNoOtherMaps) {
  EXPECT_EQ(store.values(2), nullptr);
  EXPECT_EQ(store.values(-1), nullptr);
}

TEST_F(MemoryStore, KeepsWhatDescribesAMap) {
  tav::MapHeader header;
  header.name = "rest: Inst";
  header.upperThreshold = 3.0F;
  header.thresholds = {1.0F, 2.0F};
  store.describe(0, header);
  EXPECT_EQ(store.maps()[0].header.name, "rest: Inst");
  EXPECT_EQ(store.maps()[0].header.upperThreshold, 3.0F);
  EXPECT_THAT(store.maps()[0].header.thresholds, ElementsAre(1.0F, 2.0F));
}

TEST_F(MemoryStore, GivesAMapWithoutThresholdsZeros) {
  store.describe(1, {});
  EXPECT_THAT(store.maps()[1].header.thresholds, ElementsAre(0.0F, 0.0F));
}

TEST_F(MemoryStore, IsEmptyOnceDiscarded) {
  EXPECT_EQ(store.discard(), 1);
  EXPECT_THAT(store.maps(), IsEmpty());
  EXPECT_EQ(store.values(0), nullptr);
}
