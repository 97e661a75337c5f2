#include "prepare/event_blocks.h"

#include <gtest/gtest.h>

namespace study {
namespace {

using Ranges = std::vector<VolumeRange>;

BlockSettings settings(std::vector<std::string> types, double delay = 0, double gap = 2) {
  return {std::move(types), delay, gap};
}

TEST(EventBlocks, JoinsPicturesOfABlock) {
  std::vector<TimedEvent> events;
  for (int i = 0; i < 16; ++i) events.push_back({12.0 + i, 0.9, "face"});
  events.push_back({60, 0.9, "face"});
  EXPECT_EQ(eventBlocks(events, settings({"face"}), 2.0, 156), (Ranges{{7, 14}, {31, 31}}));
}

TEST(EventBlocks, KeepsEventsApartWhoseGapIsTheLimit) {
  EXPECT_EQ(eventBlocks({{0, 4, "a"}, {6, 4, "a"}}, settings({"a"}), 2.0, 100), (Ranges{{1, 2}, {4, 5}}));
  EXPECT_EQ(eventBlocks({{0, 4, "a"}, {5.9, 4, "a"}}, settings({"a"}), 2.0, 100), (Ranges{{1, 5}}));
}

TEST(EventBlocks, RoundsLikeTheConversionOfProtocols) {
  EXPECT_EQ(eventBlocks({{0, 19.999, "a"}}, settings({"a"}), 2.0, 100), (Ranges{{1, 10}}));
  EXPECT_EQ(eventBlocks({{1.0, 0, "a"}}, settings({"a"}), 2.0, 100), (Ranges{{2, 2}}));
}

TEST(EventBlocks, TheDelayMovesBothEnds) {
  EXPECT_EQ(eventBlocks({{10, 20, "a"}}, settings({"a"}, 4), 2.0, 100), (Ranges{{8, 17}}));
}

TEST(EventBlocks, CutsWhatLiesOutsideTheRun) {
  EXPECT_EQ(eventBlocks({{-10, 14, "a"}, {190, 30, "a"}}, settings({"a"}), 2.0, 100),
            (Ranges{{1, 2}, {96, 100}}));
  EXPECT_TRUE(eventBlocks({{300, 30, "a"}}, settings({"a"}), 2.0, 100).empty());
}

TEST(EventBlocks, SeveralTypesFormOneCondition) {
  const std::vector<TimedEvent> events = {{20, 10, "b"}, {0, 20, "a"}, {40, 10, "c"}};
  EXPECT_EQ(eventBlocks(events, settings({"a", "b"}), 2.0, 100), (Ranges{{1, 15}}));
  EXPECT_EQ(trialTypesOf(events), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(EventBlocks, AnEventInsideAnotherDoesNotShortenIt) {
  EXPECT_EQ(eventBlocks({{0, 40, "a"}, {10, 4, "b"}}, settings({"a", "b"}), 2.0, 100), (Ranges{{1, 20}}));
}

// Both round to begin at volume 3; the first has its one volume.
TEST(EventBlocks, AVolumeBelongsToOneBlockOnly) {
  EXPECT_EQ(eventBlocks({{3, 0.2, "a"}, {3.5, 5, "a"}}, settings({"a"}, 0, 0.1), 2.0, 100),
            (Ranges{{3, 3}, {4, 4}}));
  EXPECT_EQ(eventBlocks({{3, 0.2, "a"}, {3.5, 0.2, "a"}}, settings({"a"}, 0, 0.1), 2.0, 100),
            (Ranges{{3, 3}}));
}

TEST(EventBlocks, WithoutADurationAnEventIsItsVolume) {
  EXPECT_EQ(eventBlocks({{10, -4, "a"}}, settings({"a"}), 2.0, 100), (Ranges{{6, 6}}));
  // The gap to the next one is 1.5 s, not 5.5 s.
  EXPECT_EQ(eventBlocks({{10, -4, "a"}, {11.5, 2, "a"}}, settings({"a"}), 2.0, 100), (Ranges{{6, 7}}));
}

}  // namespace
}  // namespace study
