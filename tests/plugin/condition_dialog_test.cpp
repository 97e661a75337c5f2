#include "tests/plugin/plugin_test_case.h"

namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

class ConditionDialog : public PluginTestCase {
 protected:
  void SetUp() override {
    PluginTestCase::SetUp();
    host.vois = {{"V1", {1, 2, 3}}};
  }

  int ask() {
    VOIs_Header header{};
    header.nrOfVOIs = 1;
    return plugin.tavGetParametersFromUser(pars, header);
  }

  // Adds the file with the interval 1 - 50 and stops adding.
  void answerFile(const std::string& path) {
    host.answerOpen(path).answerInteger(1).answerInteger(50).cancelNext();
  }

  const std::string run1 = headerOnlyVtc("run1.vtc");
};

auto named(const std::string& name) {
  return Field(&tav::TAV_Cond_Pars::name, name);
}

TEST_F(ConditionDialog, AsksForReferencesMethodConditionsAndPrefix) {
  host.answerInteger(2).answerInteger(1).answerText("faces");
  answerFile(run1);
  host.answerText("").answerSave("/results/map");
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_EQ(pars.resultPathPrefix, "/results/map");
  EXPECT_THAT(pars.conds, ElementsAre(named("faces")));
  ASSERT_EQ(host.prompts.size(), 9U);

  EXPECT_EQ(host.prompts[1].text,
            "<b>Interval selection</b><br>How do you want to select the vtc-intervals (conditions) used to "
            "compute the "
            "TAVs?<br><br><b>Choose an option:</b><br>1. Manually specify a single interval per VTC<br>2. "
            "Specify a "
            "condition from a loaded protocol (.prt) for every VTC to define the intervals");
  EXPECT_EQ(host.prompts[1].initial, 1);
  EXPECT_EQ(host.prompts[1].min, 1);
  EXPECT_EQ(host.prompts[1].max, 2);

  EXPECT_EQ(host.prompts[2].text,
            "<b>Add a Condition</b><br> Give a name for a set of intervals (Condition) used to compute TAVs "
            "over (or "
            "press OK while empty to stop adding):");
  EXPECT_EQ(host.prompts[2].initialText, "");

  EXPECT_EQ(host.prompts[8].kind, fakes::PromptKind::kSave);
  EXPECT_EQ(host.prompts[8].text, "Choose path and name-prefix for results:");
  EXPECT_EQ(host.prompts[8].folder, "");
  EXPECT_EQ(host.prompts[8].filter, "");
}

TEST_F(ConditionDialog, EchoesTheStructure) {
  host.answerInteger(2).answerInteger(1).answerText("faces");
  answerFile(run1);
  host.answerText("").answerSave("map");
  ask();
  EXPECT_THAT(host.log, ElementsAre("// TAV> Selected VOI's:\n// TAV> ",
                                    "// TAV> Added <b>ALL</b> (other) VOI's in current VOI-list",
                                    "// TAV> \n// TAV> Selected condition structure:\n// TAV> ",
                                    "// TAV> <b>faces</b>", "// TAV> \t" + run1, "// TAV> \t\t1\t-\t50"));
}

TEST_F(ConditionDialog, ForgetsTheGeometryOfAnEarlierRun) {
  pars.vtcXStart = pars.vtcXEnd = pars.vtcYStart = pars.vtcYEnd = pars.vtcZStart = pars.vtcZEnd = 5;
  pars.vtcResolution = pars.vtcMaxNrOfVolumes = 5;
  host.cancelNext();
  EXPECT_EQ(ask(), tav::kCancelled);
  EXPECT_EQ(pars.vtcXStart, -1);
  EXPECT_EQ(pars.vtcXEnd, -1);
  EXPECT_EQ(pars.vtcYStart, -1);
  EXPECT_EQ(pars.vtcYEnd, -1);
  EXPECT_EQ(pars.vtcZStart, -1);
  EXPECT_EQ(pars.vtcZEnd, -1);
  EXPECT_EQ(pars.vtcResolution, -1);
  EXPECT_EQ(pars.vtcMaxNrOfVolumes, -1);
}

TEST_F(ConditionDialog, AnEmptyNameWithoutConditionsIsRefusedNotTakenForCancel) {
  host.answerInteger(2).answerInteger(1).answerText("").answerText("faces");
  answerFile(run1);
  host.answerText("").answerSave("map");
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.messages,
              ElementsAre("<b>Invalid selection</b><br>You have select at least one Condition. Try "
                          "again after closing this dialog"));
}

TEST_F(ConditionDialog, ARepeatedNameIsRefused) {
  host.answerInteger(2).answerInteger(1).answerText("faces");
  answerFile(run1);
  host.answerText("faces").answerText("").answerSave("map");
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.messages,
              ElementsAre("<b>Invalid selection</b><br>You have already selected that condition-name. "
                          "Try again after closing this messagebox."));
  EXPECT_EQ(pars.conds.size(), 1U);
}

TEST_F(ConditionDialog, NamesThatDifferInCaseAreDistinctAndMayShareAFile) {
  host.answerInteger(2).answerInteger(1).answerText("faces");
  answerFile(run1);
  host.answerText("Faces");
  answerFile(run1);
  host.answerText("").answerSave("map");
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.messages, IsEmpty());
  EXPECT_THAT(pars.conds, ElementsAre(named("faces"), named("Faces")));
}

TEST_F(ConditionDialog, AFileOfAnotherResolutionIsRefusedInALaterConditionToo) {
  fakes::VtcSpec finer;
  finer.resolution = 1;
  host.answerInteger(2).answerInteger(1).answerText("faces");
  answerFile(run1);
  host.answerText("houses").answerOpen(headerOnlyVtc("fine.vtc", finer));
  answerFile(run1);
  host.answerText("").answerSave("map");
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_EQ(host.messages.size(), 1U);
  EXPECT_EQ(pars.conds[1].vtcIntvSets.size(), 1U);
}

TEST_F(ConditionDialog, SettingsDecideWhetherPairsAreAsked) {
  pars.separateSrcTrgVtcs = true;
  host.answerInteger(2).answerInteger(1).answerText("faces").answerOpen(run1);
  answerFile(run1);
  host.answerText("").answerSave("map");
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_EQ(host.prompts[3].text,
            "Add a SOURCE VTC (reference) for condition: faces (cancel to stop adding)");
}

TEST_F(ConditionDialog, EveryPromptCanBeCancelled) {
  const std::vector<fakes::PromptKind> kinds = {fakes::PromptKind::kInteger, fakes::PromptKind::kInteger,
                                                fakes::PromptKind::kText, fakes::PromptKind::kSave};
  for (std::size_t cancelled = 0; cancelled < kinds.size(); ++cancelled) {
    if (cancelled > 0) host.answerInteger(2);
    if (cancelled > 1) host.answerInteger(1);
    if (cancelled > 2) {
      host.answerText("faces");
      answerFile(run1);
      host.answerText("");
    }
    host.cancelNext();
    pars = {};
    EXPECT_EQ(ask(), tav::kCancelled) << cancelled;
    EXPECT_EQ(host.prompts.back().kind, kinds[cancelled]) << cancelled;
    EXPECT_EQ(pars.resultPathPrefix, "");
  }
}

TEST_F(ConditionDialog, ACancelledIntervalEndsTheSetUpAndKeepsTheCondition) {
  host.answerInteger(2).answerInteger(1).answerText("faces").answerOpen(run1).cancelNext();
  EXPECT_EQ(ask(), tav::kCancelled);
  ASSERT_EQ(pars.conds.size(), 1U);
  EXPECT_THAT(pars.conds[0].vtcIntvSets, testing::SizeIs(1));
}

TEST_F(ConditionDialog, ALongNameAndPrefixArriveWhole) {
  const std::string name(700, 'n');
  const std::string prefix = "/" + std::string(1000, 'p');
  host.answerInteger(2).answerInteger(1).answerText(name);
  answerFile(run1);
  host.answerText("").answerSave(prefix);
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(pars.conds, ElementsAre(named(name)));
  EXPECT_EQ(pars.resultPathPrefix, prefix);
}

}  // namespace
