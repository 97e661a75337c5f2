#include "tests/plugin/plugin_test_case.h"

namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

class VoiDialog : public PluginTestCase {
 protected:
  void SetUp() override {
    PluginTestCase::SetUp();
    host.vois = {{"V1", {1, 2, 3}}, {"MT left", {4, 5, 6, 7, 8, 9}}, {"FEF", {10, 11, 12}}};
  }

  int ask() {
    VOIs_Header header{};
    header.nrOfVOIs = static_cast<std::int32_t>(host.vois.size());
    header.talCoords = 7;
    return plugin.tavGetVOIParametersFromUser(pars, header);
  }
};

auto named(const std::string& name) {
  return Field(&tav::TAV_VOI_Pars::name, name);
}

TEST_F(VoiDialog, ShowsTheListAsANumberedMenu) {
  host.cancelNext();
  ask();
  ASSERT_EQ(host.prompts.size(), 1U);
  const fakes::FakePrompt& prompt = host.prompts[0];
  EXPECT_EQ(
      prompt.text,
      "<b>Welcome to the TAV-Plugin</b><br><br><b>Select VOIs</b><br>Each TAV is computed with respect to a "
      "selectable reference region (VOI). You can select multiple VOIs to compute multiple TAVs in one run "
      "of "
      "the TAV-plugin.<br><br><b>Add a VOI as a reference region:</b><br>0. <i>Stop selecting</i><br>1. "
      "V1<br>2. MT left<br>3. FEF<br>4. <i>Add all</i>");
  EXPECT_EQ(prompt.initial, 1);
  EXPECT_EQ(prompt.min, 0);
  EXPECT_EQ(prompt.max, 4);
}

TEST_F(VoiDialog, FillsARecordPerChoiceInTheOrderOfSelection) {
  host.answerInteger(3).answerInteger(2).answerInteger(0);
  EXPECT_EQ(ask(), tav::kSuccess);
  ASSERT_EQ(pars.vois.size(), 2U);
  EXPECT_EQ(pars.vois[0].name, "FEF");
  EXPECT_EQ(pars.vois[1].name, "MT left");
  EXPECT_EQ(pars.vois[1].voiIndex, 1);
  EXPECT_EQ(pars.vois[1].nVoxels, 2);
  EXPECT_EQ(pars.vois[1].voxels, host.vois[1].voxels.data());
  EXPECT_EQ(pars.vois[1].talCoords, 7);
  EXPECT_THAT(host.log, ElementsAre("// TAV> Selected VOI's:\n// TAV> ", "// TAV> <b>FEF</b>",
                                    "// TAV> <b>MT left</b>"));
}

TEST_F(VoiDialog, AddAllDiscardsSingleChoicesAndKeepsTheListsOrder) {
  host.answerInteger(2).answerInteger(4);
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(pars.vois, ElementsAre(named("V1"), named("MT left"), named("FEF")));
  EXPECT_EQ(pars.vois[2].voiIndex, 2);
  EXPECT_EQ(host.log.back(), "// TAV> Added <b>ALL</b> (other) VOI's in current VOI-list");
}

TEST_F(VoiDialog, StoppingWithoutAChoiceIsRefused) {
  host.answerInteger(0).answerInteger(1).answerInteger(0);
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.messages,
              ElementsAre("<b>Invalid selection</b><br>You have select at least one VOI. Try again "
                          "after closing this dialog"));
  EXPECT_THAT(pars.vois, ElementsAre(named("V1")));
}

TEST_F(VoiDialog, ARepeatedChoiceIsRefused) {
  host.answerInteger(1).answerInteger(1).answerInteger(0);
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.messages,
              ElementsAre("<b>Invalid selection</b><br>You have already selected that VOI. Try again "
                          "after closing this messagebox."));
  EXPECT_THAT(pars.vois, ElementsAre(named("V1")));
}

TEST_F(VoiDialog, CancelKeepsWhatWasChosen) {
  host.answerInteger(1).cancelNext();
  EXPECT_EQ(ask(), tav::kCancelled);
  EXPECT_THAT(pars.vois, ElementsAre(named("V1")));
}

TEST_F(VoiDialog, AListOfOneOffersStopTheVoiAndAll) {
  host.vois.resize(1);
  host.answerInteger(2);
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_EQ(host.prompts[0].max, 2);
  EXPECT_THAT(pars.vois, ElementsAre(named("V1")));
}

TEST_F(VoiDialog, ALongListIsShownWhole) {
  host.vois.assign(500, {std::string(255, 'x'), {1, 2, 3}});
  host.cancelNext();
  ask();
  const std::string& menu = host.prompts[0].text;
  EXPECT_GT(menu.size(), 500U * 255U);
  EXPECT_NE(menu.find("500. " + std::string(255, 'x') + "<br>501. <i>Add all</i>"), std::string::npos);
}

TEST_F(VoiDialog, LogsNothingWhenChoicesAreNotEchoed) {
  plugin.logUserSelections = false;
  host.answerInteger(1).answerInteger(4);
  EXPECT_EQ(ask(), tav::kSuccess);
  EXPECT_THAT(host.log, IsEmpty());
}

}  // namespace
