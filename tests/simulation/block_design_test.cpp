#include "simulation/block_design.h"

#include <gtest/gtest.h>

namespace {

using formats::Interval;
using simulation::blockDesign;

TEST(BlockDesign, ConditionsTakeTurnsWithRestBetween) {
  const formats::Protocol design = blockDesign(1, 160);
  ASSERT_EQ(design.conditions.size(), 2U);
  EXPECT_EQ(design.conditions[0].name, "faces");
  EXPECT_EQ(design.conditions[0].intervals, (std::vector<Interval>{{11, 30}, {71, 90}, {131, 150}}));
  EXPECT_EQ(design.conditions[1].name, "houses");
  EXPECT_EQ(design.conditions[1].intervals, (std::vector<Interval>{{41, 60}, {101, 120}}));
}

TEST(BlockDesign, EvenRunsBeginWithHouses) {
  EXPECT_EQ(blockDesign(2, 160).conditions[0].name, "houses");
  EXPECT_EQ(blockDesign(2, 160).conditions[0].intervals[0], (Interval{11, 30}));
}

TEST(BlockDesign, ShortestRunHasOneWholeBlockOfEither) {
  for (const auto& condition : blockDesign(1, simulation::kFewestVolumes).conditions) {
    ASSERT_EQ(condition.intervals.size(), 1U);
    EXPECT_LE(condition.intervals[0].end, simulation::kFewestVolumes);
  }
}

TEST(BlockDesign, EventsTableIsInSecondsByOnset) {
  EXPECT_EQ(simulation::eventsTable(blockDesign(2, 70), 2500),
            "onset\tduration\ttrial_type\n"
            "25.000\t50.000\thouses\n"
            "100.000\t50.000\tfaces\n");
}

TEST(BlockDesign, EventsTableReadsBackAsTheSameVolumes) {
  const double trMs = 1500;
  const auto read =
      formats::parseProtocol(simulation::eventsTable(blockDesign(1, 160), trMs), "events.tsv", trMs);
  const auto design = blockDesign(1, 160);
  ASSERT_EQ(read.conditions.size(), 2U);
  for (std::size_t c = 0; c < 2; ++c) {
    EXPECT_EQ(read.conditions[c].name, design.conditions[c].name);
    ASSERT_EQ(read.conditions[c].intervals.size(), design.conditions[c].intervals.size());
    for (std::size_t i = 0; i < read.conditions[c].intervals.size(); ++i) {
      EXPECT_EQ(read.conditions[c].intervals[i].start / trMs + 1, design.conditions[c].intervals[i].start);
      EXPECT_EQ(read.conditions[c].intervals[i].end / trMs, design.conditions[c].intervals[i].end);
    }
  }
}

TEST(BlockDesign, SecondsHaveThreeDecimals) {
  EXPECT_EQ(simulation::secondsText(0), "0.000");
  EXPECT_EQ(simulation::secondsText(12005), "12.005");
  EXPECT_EQ(simulation::secondsText(719.6), "0.720");
}

}  // namespace
