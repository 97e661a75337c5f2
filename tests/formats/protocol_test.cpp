#include "formats/protocol.h"

#include <gtest/gtest.h>

#include "tests/fakes/vtc_file.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

using formats::Interval;
using formats::Protocol;
using formats::TimeUnit;
using Intervals = std::vector<Interval>;

Protocol parse(const std::string& text, double trMs = 2000) {
  return formats::parseProtocol(text, "p.tsv", trMs);
}

TEST(EventsProtocol, IsInMillisecondsInOrderOfFirstAppearance) {
  const Protocol p = parse("onset\tduration\ttrial_type\n10\t5\tface\n20.5\t4.25\tbody\n40\t5\tface\n");
  EXPECT_EQ(p.unit, TimeUnit::kMilliseconds);
  ASSERT_EQ(p.conditions.size(), 2U);
  EXPECT_EQ(p.conditions[0].name, "face");
  EXPECT_EQ(p.conditions[0].intervals, (Intervals{{10000, 15000}, {40000, 45000}}));
  EXPECT_EQ(p.conditions[1].name, "body");
  EXPECT_EQ(p.conditions[1].intervals, (Intervals{{20500, 24750}}));
}

TEST(EventsProtocol, RoundsToWholeMilliseconds) {
  const std::string head = "onset\tduration\ttrial_type\n";
  // 4.001 * 1000 is a little less than 4001.
  EXPECT_EQ(parse(head + "4.001\t0.0006\ta\n").conditions[0].intervals, (Intervals{{4001, 4002}}));
  EXPECT_EQ(parse(head + "0.0015\t0.0009\ta\n").conditions[0].intervals, (Intervals{{2, 2}}));
}

TEST(EventsProtocol, JoinsEventsWhoseGapIsShorterThanOneTr) {
  const std::string text = "onset\tduration\ttrial_type\n0\t1\ta\n2.999\t1\ta\n5.999\t1\ta\n";
  EXPECT_EQ(parse(text, 2000).conditions[0].intervals, (Intervals{{0, 3999}, {5999, 6999}}));
  EXPECT_EQ(parse(text, 2001).conditions[0].intervals, (Intervals{{0, 6999}}));
  EXPECT_EQ(parse(text, 500).conditions[0].intervals.size(), 3U);
}

TEST(EventsProtocol, JoinsAcrossEventsOfOtherTypesAndInAnyOrder) {
  const Protocol p = parse("onset\tduration\ttrial_type\n2\t1\ta\n1\t1\tb\n0\t1\ta\n");
  EXPECT_EQ(p.conditions[0].intervals, (Intervals{{0, 3000}}));
  EXPECT_EQ(p.conditions[1].intervals, (Intervals{{1000, 2000}}));
}

TEST(EventsProtocol, JoinsOverlappingEventsToTheirLatestEnd) {
  EXPECT_EQ(parse("onset\tduration\ttrial_type\n0\t10\ta\n2\t1\ta\n").conditions[0].intervals,
            (Intervals{{0, 10000}}));
}

TEST(EventsProtocol, PassesOverRowsWithoutOnsetOrType) {
  const Protocol p = parse("onset\tduration\ttrial_type\nn/a\t1\ta\n5\t1\tn/a\n9\tn/a\ta\n");
  ASSERT_EQ(p.conditions.size(), 1U);
  EXPECT_EQ(p.conditions[0].intervals, (Intervals{{9000, 9000}}));
}

TEST(EventsProtocol, TellsOfEveryRowThatIsNotWhatItSeems) {
  using formats::RowFlaw;
  const Protocol p =
      parse("onset\tduration\ttrial_type\nn/a\t1\ta\n5\t1\tn/a\n9\tn/a\ta\n-8\t2\ta\n-8\t9\ta\n10\t1\tb\n");
  EXPECT_EQ(p.flawed, (std::vector<formats::FlawedRow>{{RowFlaw::kNoOnset, 2},
                                                       {RowFlaw::kNoType, 3},
                                                       {RowFlaw::kNoDuration, 4},
                                                       {RowFlaw::kBeforeStart, 5}}));
}

TEST(EventsProtocol, JoinsNothingWithANegativeTr) {
  EXPECT_EQ(parse("onset\tduration\ttrial_type\n0\t10\ta\n2\t1\ta\n", -1e9).conditions[0].intervals,
            (Intervals{{0, 10000}, {2000, 3000}}));
}

TEST(EventsProtocol, CutsWhatLiesBeforeTheFirstVolume) {
  const Protocol p = parse("onset\tduration\ttrial_type\n-9\t1\ta\n-2\t5\ta\n");
  EXPECT_EQ(p.conditions[0].intervals, (Intervals{{0, 3000}}));
}

TEST(EventsProtocol, HasOneConditionWithoutTrialTypes) {
  const Protocol p = parse("onset\tduration\n1\t2\n30\t2\n");
  ASSERT_EQ(p.conditions.size(), 1U);
  EXPECT_EQ(p.conditions[0].name, "events");
  EXPECT_EQ(p.conditions[0].intervals.size(), 2U);
}

TEST(EventsProtocol, FindsTwelveBlocksInTheExample) {
  const Protocol p = formats::readProtocol(FORMATS_TEST_EXAMPLES "/oneback-small/events.tsv", 2000);
  ASSERT_EQ(p.conditions.size(), 6U);
  EXPECT_EQ(p.conditions[0].name, "face");
  for (const auto& condition : p.conditions) EXPECT_EQ(condition.intervals.size(), 2U) << condition.name;
  EXPECT_EQ(p.conditions[0].intervals[0].start, 12028);
}

TEST(VolumeProtocol, IsTakenAsItIs) {
  const Protocol p = parse("condition\tfirst_volume\tlast_volume\nrest\t11\t20\ntask\t1\t10\nrest\t1\t3\n");
  EXPECT_EQ(p.unit, TimeUnit::kVolumes);
  EXPECT_EQ(p.conditions[0].name, "rest");
  EXPECT_EQ(p.conditions[0].intervals, (Intervals{{1, 3}, {11, 20}}));
  EXPECT_EQ(p.conditions[1].intervals, (Intervals{{1, 10}}));
}

struct Wrong {
  const char* text;
  const char* message;
};
class WrongProtocol : public testing::TestWithParam<Wrong> {};
TEST_P(WrongProtocol, EndsWithItsMessage) {
  EXPECT_EQ(reasonOf([&] { (void)parse(GetParam().text); }), GetParam().message);
}
INSTANTIATE_TEST_SUITE_P(
    Protocol, WrongProtocol,
    testing::Values(
        Wrong{"a\tb\n1\t2\n",
              "it is neither an events table nor a table of volumes. Name the columns onset, duration, "
              "trial_type or "
              "condition, first_volume, last_volume."},
        Wrong{
            "onset\ttrial_type\n1\ta\n",
            "there is no column \"duration\" among: onset, trial_type. Name the columns in the first line."},
        Wrong{"onset\tduration\n", "it holds no events. Give at least one."},
        Wrong{"onset\tduration\n1\t-2\n", "line 2: the duration is negative. Correct the duration."},
        Wrong{"onset\tduration\n1e9\t1\n",
              "line 2: the time is out of range. Give onset and duration in seconds."},
        Wrong{"onset\tduration\nten\t1\n",
              "line 2: \"ten\" under onset is no number. Write a number, or n/a."},
        Wrong{"condition\tfirst_volume\tlast_volume\na\t0\t5\n",
              "line 2: the first volume is below 1. Count volumes from 1."},
        Wrong{"condition\tfirst_volume\tlast_volume\na\t6\t5\n",
              "line 2: the last volume comes before the first. Correct the interval."},
        Wrong{"condition\tfirst_volume\tlast_volume\n\t1\t5\n",
              "line 2: the condition has no name. Name the condition."},
        Wrong{"condition\tfirst_volume\tlast_volume\na\t1.5\t5\n",
              "line 2: \"1.5\" under first_volume is no whole number. Write a whole number."}));

TEST(Protocol, ComesBackAsWritten) {
  const Scratch folder;
  for (const char* text : {"onset\tduration\ttrial_type\n10\t5\tface\n20.5\t4.25\tbody part\n",
                           "condition\tfirst_volume\tlast_volume\nrest\t1\t3\nrest\t11\t20\ntask\t1\t10\n"}) {
    const Protocol before = parse(text);
    formats::writeProtocol(folder.file("p.prt"), before);
    const Protocol after = formats::readProtocol(folder.file("p.prt"), 2000);
    EXPECT_EQ(after.unit, before.unit);
    ASSERT_EQ(after.conditions.size(), before.conditions.size());
    for (std::size_t i = 0; i < before.conditions.size(); ++i) {
      EXPECT_EQ(after.conditions[i].name, before.conditions[i].name);
      EXPECT_EQ(after.conditions[i].intervals, before.conditions[i].intervals);
    }
  }
}

}  // namespace
