#include <cstring>

#include "tests/plugin/plugin_test_case.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LifeCycle : public PluginTestCase {};

TEST_F(LifeCycle, TheOneFieldFollowsTheTablePointerAndIsSet) {
  EXPECT_EQ(sizeof(TAVPlugin), 2 * sizeof(void*));
  unsigned char field = 0;
  std::memcpy(&field, reinterpret_cast<const char*>(&plugin) + sizeof(void*), 1);
  EXPECT_EQ(field, 1);
  EXPECT_TRUE(plugin.logUserSelections);
}

TEST_F(LifeCycle, AHostOfVersion210IsEnough) {
  host.version = {2, 1, 0};
  EXPECT_TRUE(plugin.initPlugin());
  EXPECT_THAT(host.messages, IsEmpty());
}

TEST_F(LifeCycle, AnOlderHostIsRefusedWithAMessage) {
  host.version = {2, 0, 9};
  EXPECT_FALSE(plugin.initPlugin());
  EXPECT_THAT(
      host.messages,
      ElementsAre("Sorry, can not execute the TAV plugin - CorvaneZQ version 2.1.0 or higher required."));
  EXPECT_THAT(host.log, IsEmpty());
}

class LogText : public PluginTestCase {};

TEST_F(LogText, PutsThePromptBeforeEveryLineInOneCall) {
  plugin.tavLogText("one\ntwo");
  EXPECT_THAT(host.log, ElementsAre("// TAV> one\n// TAV> two"));
}

TEST_F(LogText, EndsInABarePromptAfterALineEnd) {
  plugin.tavLogText("one\n");
  EXPECT_THAT(host.log, ElementsAre("// TAV> one\n// TAV> "));
}

TEST_F(LogText, KeepsEmptyLines) {
  plugin.tavLogText("\n\n");
  EXPECT_THAT(host.log, ElementsAre("// TAV> \n// TAV> \n// TAV> "));
}

TEST_F(LogText, AnEmptyTextIsABarePrompt) {
  plugin.tavLogText("");
  EXPECT_THAT(host.log, ElementsAre("// TAV> "));
}

TEST_F(LogText, TheClosingBannerHasNoPrompt) {
  plugin.tavExit();
  const std::string stars(64, '*');
  EXPECT_THAT(host.log, ElementsAre("\n//" + stars, "//  End TAV-Plugin output", "//" + stars + "\n"));
}

}  // namespace
