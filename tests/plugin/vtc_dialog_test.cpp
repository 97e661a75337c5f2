#include <filesystem>

#include "tests/plugin/plugin_test_case.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kNotUsable =
    "<b>Invalid selection</b><br>Either could not open vtc or the selected vtc is not of the same dimensions "
    "as "
    "previously selected ones. Resolution (3mm, 2mm, or 1mm) and reference space (un-transformed, ACPC, or "
    "TAL) must "
    "be the same for all VTCs.";
constexpr const char* kPairNotUsable =
    "<b>Invalid selection</b><br>Either could not open (one of) the (source or target) vtcs or (one of) the "
    "selected "
    "vtc is not of the same dimensions as previously selected ones. Resolution (3mm, 2mm, or 1mm) and "
    "reference space "
    "(un-transformed, ACPC, or TAL) must be the same for all VTCs.";

class VtcDialog : public PluginTestCase {
 protected:
  VtcDialog() { cond.name = "faces"; }

  int ask(int method = 1) { return plugin.tavGetVtcsForConditionFromUser(pars, cond, method); }
  void answerInterval() { host.answerInteger(5).answerInteger(60); }

  tav::TAV_Cond_Pars cond;
  const std::string run1 = headerOnlyVtc("run1.vtc");
  const std::string run2 = headerOnlyVtc("run2.vtc");
};

TEST_F(VtcDialog, AsksForFilesUntilCancelled) {
  host.answerOpen(run1);
  answerInterval();
  host.answerOpen(run2);
  answerInterval();
  host.cancelNext();
  EXPECT_EQ(ask(), tav::kSuccess);
  ASSERT_THAT(cond.vtcIntvSets, SizeIs(2));
  EXPECT_EQ(cond.vtcIntvSets[0].srcVtcName, run1);
  EXPECT_EQ(cond.vtcIntvSets[0].trgVtcName, run1);
  EXPECT_EQ(cond.vtcIntvSets[1].srcVtcName, run2);
  ASSERT_THAT(cond.vtcIntvSets[1].intervals, SizeIs(1));
  EXPECT_EQ(cond.vtcIntvSets[1].intervals[0].first, 5);
  EXPECT_EQ(cond.vtcIntvSets[1].intervals[0].last, 60);
  EXPECT_EQ(host.prompts[0].text, "Add a VTC for condition: faces (cancel to stop adding)");
  EXPECT_EQ(host.prompts[0].filter, "Volume Time Course Files (*.vtc)");
  EXPECT_EQ(host.prompts[0].folder, "");
  EXPECT_EQ(host.log[0], "// TAV> \t" + run1);
}

TEST_F(VtcDialog, CancelWithoutAFileIsRefused) {
  host.cancelNext().answerOpen(run1);
  answerInterval();
  host.cancelNext();
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.messages,
              ElementsAre("<b>Invalid selection</b><br>You have select at least one VTC and an interval "
                          "within that VTC. Try again after closing this dialog"));
}

TEST_F(VtcDialog, ARepeatWithinTheConditionIsRefused) {
  host.answerOpen(run1);
  answerInterval();
  host.answerOpen(run1).cancelNext();
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.messages,
              ElementsAre("<b>Invalid selection</b><br>You have already selected that VTC for this "
                          "condition. Try again after closing this messagebox."));
  EXPECT_THAT(cond.vtcIntvSets, SizeIs(1));
}

TEST_F(VtcDialog, AMissingFileIsRefused) {
  host.answerOpen(folder.file("missing.vtc")).answerOpen(run1);
  answerInterval();
  host.cancelNext();
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.messages, ElementsAre(kNotUsable));
}

TEST_F(VtcDialog, AFileOfOtherGeometryIsRefused) {
  fakes::VtcSpec spec;
  spec.zEnd = 71;
  host.answerOpen(run1);
  answerInterval();
  host.answerOpen(headerOnlyVtc("larger.vtc", spec)).cancelNext();
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.messages, ElementsAre(kNotUsable));
}

TEST_F(VtcDialog, ACancelledIntervalKeepsTheSetAndIsPassedOn) {
  host.answerOpen(run1).cancelNext();
  EXPECT_EQ(ask(), tav::kCancelled);
  EXPECT_THAT(cond.vtcIntvSets, SizeIs(1));
}

TEST_F(VtcDialog, MethodTwoAsksForAProtocol) {
  host.answerOpen(run1).cancelNext();
  EXPECT_EQ(ask(2), tav::kCancelled);
  EXPECT_EQ(host.prompts[1].filter, "Protocol Files (*.prt)");
}

TEST_F(VtcDialog, AnUnknownMethodIsATerminalError) {
  host.answerOpen(run1);
  EXPECT_EQ(ask(3), tav::kTerminalError);
  EXPECT_EQ(host.log.back(), "// TAV> ERROR: Unknown VTC interval specification method");
  EXPECT_THAT(cond.vtcIntvSets, SizeIs(1));
}

TEST_F(VtcDialog, TheOrderOfTheSettingsLimitsTheIntervals) {
  pars.arOrder = 20;
  host.answerOpen(run1).answerInteger(1).answerInteger(20).answerInteger(1).answerInteger(21).cancelNext();
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.messages, SizeIs(1));
  ASSERT_THAT(cond.vtcIntvSets, SizeIs(1));
  ASSERT_THAT(cond.vtcIntvSets[0].intervals, SizeIs(1));
  EXPECT_EQ(cond.vtcIntvSets[0].intervals[0].last, 21);
}

TEST_F(VtcDialog, EchoesNothingWhenChoicesAreNotLogged) {
  plugin.logUserSelections = false;
  host.answerOpen(run1);
  answerInterval();
  host.cancelNext();
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(VtcDialog, ALongPathAndConditionNameArriveWhole) {
  std::string deep = folder.path();
  for (int level = 0; level < 4; ++level) deep += "/" + std::string(120, 'd');
  std::filesystem::create_directories(deep);
  const std::string path = deep + "/run.vtc";
  fakes::writeBytes(path, fakes::vtcHeaderBytes({}));
  cond.name = std::string(400, 'c');
  host.answerOpen(path);
  answerInterval();
  host.cancelNext();
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_EQ(cond.vtcIntvSets[0].srcVtcName, path);
  EXPECT_EQ(host.prompts[0].text, "Add a VTC for condition: " + cond.name + " (cancel to stop adding)");
  EXPECT_EQ(host.prompts[1].text,
            "Specify <b>first</b> time-point(volume) of interval in<br><i>" + path + "</i>");
}

class VtcPairDialog : public VtcDialog {
 protected:
  int askPairs(int method = 1) { return plugin.tavGetVtcPairsForConditionFromUser(pars, cond, method); }
};

TEST_F(VtcPairDialog, AsksForSourceAndTargetAndShowsTheSourceInTheIntervalPrompt) {
  host.answerOpen(run1).answerOpen(run2);
  answerInterval();
  host.cancelNext();
  EXPECT_EQ(askPairs(), tav::kSuccess);
  ASSERT_THAT(cond.vtcIntvSets, SizeIs(1));
  EXPECT_EQ(cond.vtcIntvSets[0].srcVtcName, run1);
  EXPECT_EQ(cond.vtcIntvSets[0].trgVtcName, run2);
  EXPECT_THAT(promptTexts(),
              ElementsAre("Add a SOURCE VTC (reference) for condition: faces (cancel to stop adding)",
                          "Add a TARGET VTC (voxels) for condition: faces (mandatory, cancel only to exit)",
                          "Specify <b>first</b> time-point(volume) of interval in<br><i>" + run1 + "</i>",
                          "Specify <b>last</b> time-point(volume) of interval in<br><i>" + run1 + "</i>",
                          "Add a SOURCE VTC (reference) for condition: faces (cancel to stop adding)"));
  EXPECT_EQ(host.prompts[1].filter, "Volume Time Course Files (*.vtc)");
  EXPECT_EQ(host.log[0], "// TAV> \tsrc: " + run1 + "\n// TAV> \ttrg: " + run2);
}

TEST_F(VtcPairDialog, CancelOfTheTargetCancelsTheRun) {
  host.answerOpen(run1).answerOpen(run2);
  answerInterval();
  host.answerOpen(run1).cancelNext();
  EXPECT_EQ(askPairs(), tav::kCancelled);
}

TEST_F(VtcPairDialog, CancelWithoutAPairIsRefused) {
  host.cancelNext().answerOpen(run1).answerOpen(run2);
  answerInterval();
  host.cancelNext();
  EXPECT_EQ(askPairs(), tav::kSuccess);
  EXPECT_THAT(
      host.messages,
      ElementsAre(
          "<b>Invalid selection</b><br>You have select at least one VTC-Pair (source and target) and an "
          "interval within those VTCs. Try again after closing this dialog"));
}

TEST_F(VtcPairDialog, OnlyTheSamePairIsARepeat) {
  host.answerOpen(run1).answerOpen(run2);
  answerInterval();
  host.answerOpen(run2).answerOpen(run1);
  answerInterval();
  host.answerOpen(run1).answerOpen(run2).cancelNext();
  EXPECT_EQ(askPairs(), tav::kSuccess);
  EXPECT_THAT(cond.vtcIntvSets, SizeIs(2));
  EXPECT_THAT(host.messages,
              ElementsAre("<b>Invalid selection</b><br>You have already selected that source-target "
                          "VTC-pair for this condition. Try again after closing this messagebox."));
}

TEST_F(VtcPairDialog, EitherUnusableFileRefusesThePair) {
  const std::string missing = folder.file("missing.vtc");
  host.answerOpen(missing).answerOpen(run1).answerOpen(run1).answerOpen(missing);
  host.answerOpen(run1).answerOpen(run2);
  answerInterval();
  host.cancelNext();
  EXPECT_EQ(askPairs(), tav::kSuccess);
  EXPECT_THAT(host.messages, ElementsAre(kPairNotUsable, kPairNotUsable));
}

TEST_F(VtcPairDialog, TheTargetIsNotLookedAtWhenTheSourceFails) {
  host.answerOpen(folder.file("missing.vtc")).answerOpen(run1).cancelNext().answerOpen(run1).cancelNext();
  EXPECT_EQ(askPairs(), tav::kCancelled);
  EXPECT_EQ(pars.vtcResolution, -1);
}

TEST_F(VtcPairDialog, AnUnknownMethodIsATerminalError) {
  host.answerOpen(run1).answerOpen(run2);
  EXPECT_EQ(askPairs(0), tav::kTerminalError);
}

}  // namespace
