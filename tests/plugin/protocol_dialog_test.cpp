#include <climits>
#include <cstring>

#include "tests/plugin/plugin_test_case.h"

namespace {

using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kTimeWarning =
    "// TAV> \tWARNING: The specified protocol has millisecond resolution, TAV requires volumes";
constexpr const char* kConversionWarning =
    "// TAV> \tWARNING: Converting milliseconds to volumes (using current VTC's TR), please check intervals "
    "below or "
    "in written log-file";

class ProtocolDialog : public PluginTestCase {
 protected:
  void SetUp() override {
    PluginTestCase::SetUp();
    host.protocolFiles["run.prt"] = {kProtocolInVolumes,
                                     {{"rest", {1}, {10}}, {"faces", {11, 31}, {20, 40}}}};
  }

  int ask(int arOrder = 1) { return plugin.tavGetVtcIntvsFromUser(&set, "run.vtc", arOrder); }

  // Converts one interval in milliseconds.
  int convert(int start, int end, int trMs, int arOrder = 1) {
    host.linkedVtc.tr = trMs;
    host.protocolFiles["ms.prt"] = {kProtocolInMilliseconds, {{"faces", {start}, {end}}}};
    set.intervals.clear();
    host.answerOpen("ms.prt").answerInteger(1);
    return ask(arOrder);
  }

  // The converted interval; (0, 0) when it was refused.
  std::pair<int, int> converted(int start, int end, int trMs, int arOrder = 1) {
    if (convert(start, end, trMs, arOrder) != tav::kSuccess) return {0, 0};
    return {set.intervals.at(0).first, set.intervals.at(0).last};
  }

  tav::TAV_VTC_intv_set set;
};

TEST_F(ProtocolDialog, LinksTheProtocolAndAddsTheIntervalsOfTheChosenCondition) {
  host.answerOpen("run.prt").answerInteger(2);
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_STREQ(host.linkedVtc.protocolName, "run.prt");
  ASSERT_THAT(set.intervals, SizeIs(2));
  EXPECT_EQ(set.intervals[1].first, 31);
  EXPECT_EQ(set.intervals[1].last, 40);
  EXPECT_THAT(host.log, ElementsAre("// TAV> \t\t11\t-\t20", "// TAV> \t\t31\t-\t40"));

  EXPECT_EQ(host.prompts[0].text, "Specify a protocol file with VOLUME time-resolution");
  EXPECT_EQ(host.prompts[0].filter, "Protocol Files (*.prt)");
  EXPECT_EQ(host.prompts[0].folder, "");
  EXPECT_EQ(
      host.prompts[1].text,
      "<b>Select a PRT Condition</b><br>Select a single condition from the currently loaded protocol to "
      "specify "
      "the intervals for the current TAV condition in <i>run.vtc</i><br><br><b>Select:</b><br>1. rest<br>2. "
      "faces<br>");
  EXPECT_EQ(host.prompts[1].initial, 1);
  EXPECT_EQ(host.prompts[1].min, 1);
  EXPECT_EQ(host.prompts[1].max, 2);
}

TEST_F(ProtocolDialog, EitherPromptCanBeCancelled) {
  host.cancelNext();
  EXPECT_EQ(ask(), tav::kCancelled);
  EXPECT_EQ(host.callCount("zqSetVTCParametersOfCurrentVMR"), 0);
  host.answerOpen("run.prt").cancelNext();
  EXPECT_EQ(ask(), tav::kCancelled);
  EXPECT_THAT(set.intervals, IsEmpty());
}

TEST_F(ProtocolDialog, WithoutALinkedVtcIsATerminalError) {
  host.linkedVtc.dataOffset = -1;
  host.answerOpen("run.prt");
  EXPECT_EQ(ask(), tav::kTerminalError);
  EXPECT_THAT(host.log, ElementsAre("// TAV> ERROR: Could not get access to VTC"));
}

TEST_F(ProtocolDialog, AProtocolThatTheHostDoesNotLoadIsATerminalError) {
  host.answerOpen("unknown.prt");
  EXPECT_EQ(ask(), tav::kTerminalError);
  EXPECT_THAT(host.log, ElementsAre("// TAV> ERROR: Could not get access to protocol definition"));
}

TEST_F(ProtocolDialog, AProtocolWithoutConditionsIsATerminalError) {
  host.protocolFiles["none.prt"] = {};
  host.answerOpen("none.prt");
  EXPECT_EQ(ask(), tav::kTerminalError);
  EXPECT_THAT(host.log, ElementsAre("// TAV> ERROR: The protocol has no conditions: none.prt"));
}

TEST_F(ProtocolDialog, AConditionWithoutIntervalsYieldsAnEmptySet) {
  host.protocolFiles["empty.prt"] = {kProtocolInVolumes, {{"never", {}, {}}}};
  host.answerOpen("empty.prt").answerInteger(1);
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(set.intervals, IsEmpty());
}

TEST_F(ProtocolDialog, VolumesAreTakenAsTheyAreEvenWhenShorterThanTheOrder) {
  host.protocolFiles["short.prt"] = {kProtocolInVolumes, {{"blink", {7, 9}, {7, 8}}}};
  host.answerOpen("short.prt").answerInteger(1);
  EXPECT_EQ(ask(5), tav::kSuccess);
  EXPECT_THAT(set.intervals, SizeIs(2));
}

TEST_F(ProtocolDialog, AnUnknownTimeUnitIsATerminalError) {
  host.protocolFiles["odd.prt"] = {3, {{"faces", {1}, {10}}}};
  host.answerOpen("odd.prt").answerInteger(1);
  EXPECT_EQ(ask(), tav::kTerminalError);
  EXPECT_THAT(host.log, ElementsAre("// TAV> ERROR: Unknown protocol time-resolution: not volumes or msec"));
}

TEST_F(ProtocolDialog, AnUnknownTimeUnitDoesNotMatterWithoutIntervals) {
  host.protocolFiles["odd.prt"] = {3, {{"never", {}, {}}}};
  host.answerOpen("odd.prt").answerInteger(1);
  EXPECT_EQ(ask(), tav::kSuccess);
}

TEST_F(ProtocolDialog, MillisecondsAreConvertedWithWarnings) {
  EXPECT_EQ(converted(0, 19999, 2000), std::pair(1, 10));
  EXPECT_THAT(host.log, ElementsAre(kTimeWarning, kConversionWarning, "// TAV> \t\t1\t-\t10"));
}

TEST_F(ProtocolDialog, TheStartIsRoundedAndMovedOnAndTheEndOnlyRounded) {
  EXPECT_EQ(converted(999, 20000, 2000), std::pair(1, 10));
  EXPECT_EQ(converted(1000, 20999, 2000), std::pair(2, 10));
  EXPECT_EQ(converted(20000, 21000, 2000, 0), std::pair(11, 11));
  EXPECT_EQ(converted(0, INT_MAX, 1), std::pair(1, INT_MAX));
  EXPECT_EQ(converted(-3000, 9000, 2000), std::pair(0, 5));
}

TEST_F(ProtocolDialog, AnIntervalOfOneVolumeIsTooShortForOrderOne) {
  EXPECT_EQ(convert(1000, 1000, 2000), tav::kInvalidParameters);
  EXPECT_THAT(host.log,
              ElementsAre(kTimeWarning, kConversionWarning,
                          "// TAV> ERROR : The interval (2, 2) is invalid: last-first+1 must be greater than "
                          "AR-order(1)"));
}

TEST_F(ProtocolDialog, IntervalsBeforeATooShortOneStay) {
  host.protocolFiles["ms.prt"] = {kProtocolInMilliseconds,
                                  {{"faces", {0, 50000, 60000}, {20000, 50000, 90000}}}};
  host.answerOpen("ms.prt").answerInteger(1);
  EXPECT_EQ(ask(), tav::kInvalidParameters);
  EXPECT_THAT(set.intervals, SizeIs(1));
}

TEST_F(ProtocolDialog, MillisecondsWithoutARepetitionTimeAreATerminalError) {
  EXPECT_EQ(convert(0, 20000, 0), tav::kTerminalError);
  EXPECT_EQ(host.log.back(),
            "// TAV> ERROR: The current VTC has no repetition time (TR) to convert milliseconds to volumes: "
            "0 ms. Use a "
            "protocol in volumes or correct the VTC");
}

TEST_F(ProtocolDialog, APathThatTheHeaderCannotHoldIsRefused) {
  const std::string longest(260, 'p');
  host.protocolFiles[longest] = host.protocolFiles["run.prt"];
  host.answerOpen(longest + "p").answerOpen(longest).answerInteger(1);
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(
      host.messages,
      ElementsAre(
          "<b>Invalid selection</b><br>The path of the protocol file has more than 260 characters. Move "
          "the file to a folder with a shorter path. Try again after closing this dialog"));
  EXPECT_THAT(std::string(host.linkedVtc.protocolName), Eq(longest));
}

TEST_F(ProtocolDialog, ALongListOfConditionsIsShownWhole) {
  auto& protocol = host.protocolFiles["long.prt"];
  protocol.conditions.assign(300, {std::string(200, 'c'), {1}, {10}});
  host.answerOpen("long.prt").cancelNext();
  ask();
  EXPECT_NE(host.prompts[1].text.find("300. " + std::string(200, 'c') + "<br>"), std::string::npos);
  EXPECT_EQ(host.prompts[1].max, 300);
}

}  // namespace
