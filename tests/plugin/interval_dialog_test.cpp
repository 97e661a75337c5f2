#include "tests/plugin/plugin_test_case.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class IntervalDialog : public PluginTestCase {
 protected:
  int ask(int arOrder = 1) { return plugin.tavGetVtcBeginEndFromUser(&set, "run.vtc", arOrder); }
  tav::TAV_VTC_intv_set set;
};

TEST_F(IntervalDialog, AsksForFirstAndLastVolume) {
  host.answerInteger(5).answerInteger(100);
  EXPECT_EQ(ask(), tav::kSuccess);
  ASSERT_THAT(set.intervals, SizeIs(1));
  EXPECT_EQ(set.intervals[0].first, 5);
  EXPECT_EQ(set.intervals[0].last, 100);
  EXPECT_THAT(promptTexts(),
              ElementsAre("Specify <b>first</b> time-point(volume) of interval in<br><i>run.vtc</i>",
                          "Specify <b>last</b> time-point(volume) of interval in<br><i>run.vtc</i>"));
  EXPECT_EQ(host.prompts[0].initial, 5);
  EXPECT_EQ(host.prompts[1].initial, 100);
  for (const fakes::FakePrompt& prompt : host.prompts) {
    EXPECT_EQ(prompt.min, 1);
    EXPECT_EQ(prompt.max, 1000000);
  }
  EXPECT_THAT(host.log, ElementsAre("// TAV> \t\t5\t-\t100"));
}

TEST_F(IntervalDialog, EitherPromptCanBeCancelled) {
  host.cancelNext();
  EXPECT_EQ(ask(), tav::kCancelled);
  host.answerInteger(5).cancelNext();
  EXPECT_EQ(ask(), tav::kCancelled);
  EXPECT_THAT(set.intervals, IsEmpty());
}

TEST_F(IntervalDialog, AnIntervalOfOrderPlusOneVolumesIsTheShortest) {
  host.answerInteger(10).answerInteger(12).answerInteger(10).answerInteger(13);
  EXPECT_EQ(ask(3), tav::kSuccess);
  EXPECT_THAT(host.messages,
              ElementsAre("<b>Invalid selection</b><br>The interval (10, 12) is too short: last-first+1 "
                          "must be greater than AR-order(3)<br><br>Try again after closing this dialog"));
  ASSERT_THAT(set.intervals, SizeIs(1));
  EXPECT_EQ(set.intervals[0].last, 13);
}

TEST_F(IntervalDialog, AnInvertedIntervalIsRefusedForEveryOrder) {
  for (const int order : {0, 1, 20}) {
    host.answerInteger(10).answerInteger(9).cancelNext();
    EXPECT_EQ(ask(order), tav::kCancelled);
  }
  EXPECT_THAT(host.messages, SizeIs(3));
}

TEST_F(IntervalDialog, EchoesNothingWhenChoicesAreNotLogged) {
  plugin.logUserSelections = false;
  host.answerInteger(5).answerInteger(100);
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.log, IsEmpty());
}

}  // namespace
