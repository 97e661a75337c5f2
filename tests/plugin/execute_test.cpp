// Whole runs, from the checks of the workspace to the closing banner, with the real engine.
#include <algorithm>
#include <filesystem>

#include "tests/plugin/plugin_test_case.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kStars(64, '*');

std::vector<std::string> openingBanner() {
  return {"\n//" + kStars, "//  T A V M A P   M A P P I N G                 ",
          "//  <b>TAV</b> -  CNZQ Plugin Version 1.5",
          "//  The TAV Help Pages (via 'Description of Plugins...')", "//" + kStars + "\n"};
}

std::vector<std::string> closingBanner() {
  return {"\n//" + kStars, "//  End TAV-Plugin output", "//" + kStars + "\n"};
}

class Execute : public PluginTestCase {
 protected:
  void SetUp() override {
    PluginTestCase::SetUp();
    host.pluginsPath = folder.path();
    host.vois = {{"V1", {0, 0, 0, 1, 0, 0}}};
    writeSettings("NumSurrogateSimulations= 10\n");
  }

  void writeSettings(const std::string& text) const { folder.write("TAVPlugin.ini", text); }

  // Noise around 1000 on 3 x 3 x 2 cells.
  std::string writeRun(const std::string& name) const {
    const fakes::VtcSpec spec = fakes::cellGrid(3, 3, 2, kVolumes);
    std::vector<float> values(spec.nrOfVoxels() * kVolumes);
    unsigned state = 12345;
    for (float& value : values) {
      state = state * 1664525U + 1013904223U;
      value = 1000.0F + static_cast<float>(state >> 24);
    }
    fakes::writeVtc(folder.file(name), spec, values);
    return folder.file(name);
  }

  // Answers every prompt of a run over one condition and one file.
  void answerWholeRun(const std::string& vtc, int last = kVolumes) {
    host.answerInteger(2).answerInteger(1).answerText("faces");
    host.answerOpen(vtc).answerInteger(1).answerInteger(last).cancelNext();
    host.answerText("").answerSave(folder.file("map"));
  }

  // The log behind the last line that equals `line`.
  [[nodiscard]] std::vector<std::string> logBehind(const std::string& line) const {
    const auto found = std::find(host.log.rbegin(), host.log.rend(), line);
    return {found.base(), host.log.end()};
  }
  [[nodiscard]] std::vector<std::string> logBefore(const std::string& line) const {
    return {host.log.begin(), std::find(host.log.begin(), host.log.end(), line)};
  }
  [[nodiscard]] std::ptrdiff_t positionOfCall(const std::string& operation) const {
    return std::find(host.calls.begin(), host.calls.end(), operation) - host.calls.begin();
  }

  static constexpr int kVolumes = 60;
};

// What the log holds between the opening banner and the dialogs.
constexpr const char* kRunning = "// TAV> Running. Waiting for user selections...\n// TAV> ";

std::vector<std::string> operator+(std::vector<std::string> a, const std::vector<std::string>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

TEST_F(Execute, WithoutAVmrShowsThatBoxAlone) {
  host.hasVmr = false;
  host.linkedVtc.dataOffset = -1;
  host.vois.clear();
  EXPECT_FALSE(plugin.execute());
  EXPECT_THAT(host.messages,
              ElementsAre("<b>No VMR</b><br>The TAV-plugin requires a VMR to operate. Make sure that a "
                          "VMR is open and that its window is selected."));
  EXPECT_THAT(host.log, IsEmpty());
  EXPECT_EQ(host.callCount("zqShowLogTab"), 0);
}

TEST_F(Execute, WithoutALinkedVtcStopsBeforeTheVois) {
  host.linkedVtc.dataOffset = -1;
  host.vois.clear();
  EXPECT_FALSE(plugin.execute());
  EXPECT_THAT(host.messages,
              ElementsAre("<b>No VTC</b><br>The TAV-plugin requires a referenced VTC to correctly access "
                          "VOI-definitions.\n Make sure that a VTC is linked."));
  EXPECT_EQ(host.callCount("zqGetVOIs"), 0);
  EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(Execute, WithoutVoisShowsThatBox) {
  host.vois.clear();
  EXPECT_FALSE(plugin.execute());
  EXPECT_THAT(host.messages,
              ElementsAre("<b>No VOI file</b><br>The TAV-plugin requires definitions of VOIs to "
                          "operate.\n Make sure that an appropriate VOI-file is loaded (Shift+R after "
                          "closing this message)."));
  EXPECT_THAT(host.log, IsEmpty());
}

TEST_F(Execute, ShowsTheLogTabBeforeTheBanner) {
  host.cancelNext();
  plugin.execute();
  EXPECT_LT(positionOfCall("zqShowLogTab"), positionOfCall("zqLogText"));
}

TEST_F(Execute, CancelOfTheFirstDialogLeavesBannersAndTheReason) {
  host.cancelNext();
  EXPECT_FALSE(plugin.execute());
  const std::vector<std::string> between = {kRunning, "// TAV> Selected VOI's:\n// TAV> ", "// TAV> ",
                                            "// TAV> Canceled by user."};
  EXPECT_THAT(host.log, ElementsAreArray(openingBanner() + between + closingBanner()));
  EXPECT_EQ(host.callCount("zqShowBusyCursor"), 0);
}

TEST_F(Execute, WithoutEchoTheBarePromptIsLeftOutToo) {
  plugin.logUserSelections = false;
  host.cancelNext();
  EXPECT_FALSE(plugin.execute());
  const std::vector<std::string> between = {kRunning, "// TAV> Canceled by user."};
  EXPECT_THAT(host.log, ElementsAreArray(openingBanner() + between + closingBanner()));
}

TEST_F(Execute, AMissingSettingsFileIsThreeWarnings) {
  std::filesystem::remove(folder.file("TAVPlugin.ini"));
  host.cancelNext();
  EXPECT_FALSE(plugin.execute());
  EXPECT_THAT(
      logBefore(kRunning),
      ElementsAreArray(openingBanner() +
                       std::vector<std::string>{
                           "// TAV> WARNING: Could not find or open " + folder.path() + "/TAVPlugin.ini",
                           "// TAV> WARNING: Dismissing .ini-file: it was invalid or could not be found",
                           "// TAV> WARNING: Using default global parameters, see written .log files\n"
                           "// TAV> "}));
  EXPECT_THAT(host.log, Contains("// TAV> Canceled by user."));
}

TEST_F(Execute, AnInvalidSettingsFileIsExplainedAndTheRunGoesOn) {
  writeSettings("CVConstantForFDR= 3\n");
  host.cancelNext();
  EXPECT_FALSE(plugin.execute());
  EXPECT_THAT(logBefore(kRunning),
              ElementsAreArray(
                  openingBanner() +
                  std::vector<std::string>{
                      "// TAV> WARNING: Invalid value for 'CVConstantForFDR=' in TAVPlugin.ini: 3 (must be "
                      "1 or 2)",
                      "// TAV> WARNING: Dismissing .ini-file: it was invalid or could not be found",
                      "// TAV> WARNING: Using default global parameters, see written .log files\n"
                      "// TAV> "}));
  EXPECT_THAT(host.prompts, SizeIs(1));
}

TEST_F(Execute, ComputesAndSavesAndSaysSo) {
  answerWholeRun(writeRun("run1.vtc"));
  EXPECT_TRUE(plugin.execute());
  EXPECT_THAT(host.log, Contains("// TAV> Computing..."));
  EXPECT_THAT(logBehind("// TAV> \n// TAV> Done, all computations succesful"),
              ElementsAreArray(closingBanner()));
  EXPECT_FALSE(host.busyCursor);
  EXPECT_EQ(host.callCount("zqShowBusyCursor"), 1);
  ASSERT_THAT(host.savedMaps, SizeIs(1));
  EXPECT_EQ(host.savedMaps[0].path, folder.file("map_V1.tav"));
  EXPECT_THAT(host.savedMaps[0].set.maps, SizeIs(6));
  EXPECT_TRUE(std::filesystem::exists(folder.file("map_V1.log")));
}

// The order of the last calls: cursor, message, closing banner.
TEST_F(Execute, StopsTheBusyCursorBeforeTheMessageOfASuccess) {
  answerWholeRun(writeRun("run1.vtc"));
  ASSERT_TRUE(plugin.execute());
  const std::vector<std::string> last(host.calls.end() - 5, host.calls.end());
  EXPECT_THAT(last, ElementsAre("zqStopBusyCursor", "zqLogText", "zqLogText", "zqLogText", "zqLogText"));
}

TEST_F(Execute, SettingsReachTheComputation) {
  writeSettings("MapTypesComputed= INST\nNumSurrogateSimulations= 10\n");
  answerWholeRun(writeRun("run1.vtc"));
  EXPECT_TRUE(plugin.execute());
  ASSERT_THAT(host.savedMaps, SizeIs(1));
  EXPECT_THAT(host.savedMaps[0].set.maps, SizeIs(1));
}

TEST_F(Execute, ARunRemembersNothingOfTheOneBefore) {
  const std::string run1 = writeRun("run1.vtc");
  answerWholeRun(run1);
  ASSERT_TRUE(plugin.execute());
  writeSettings("MapTypesComputed= INST\nNumSurrogateSimulations= 10\n");
  answerWholeRun(run1);
  ASSERT_TRUE(plugin.execute());
  ASSERT_THAT(host.savedMaps, SizeIs(2));
  EXPECT_THAT(host.savedMaps[0].set.maps, SizeIs(6));
  EXPECT_THAT(host.savedMaps[1].set.maps, SizeIs(1));
}

TEST_F(Execute, InvalidParametersAreExplained) {
  answerWholeRun(writeRun("run1.vtc"), kVolumes + 1);
  EXPECT_FALSE(plugin.execute());
  const auto behind = logBehind("// TAV> Computing...");
  const std::vector<std::string> last(behind.end() - 6, behind.end());
  EXPECT_EQ(last[0], "// TAV> ");
  EXPECT_THAT(last[1], HasSubstr("61"));
  EXPECT_EQ(last[2],
            "// TAV> An invalid input parameter-set caused computation to terminate.\n"
            "// TAV> Try again with a different parameter-set. Exiting...");
  EXPECT_THAT(std::vector(last.begin() + 3, last.end()), ElementsAreArray(closingBanner()));
  EXPECT_FALSE(host.busyCursor);
  EXPECT_THAT(host.savedMaps, IsEmpty());
}

// The order of the last calls: messages, cursor, closing banner.
TEST_F(Execute, StopsTheBusyCursorBehindTheMessagesOfAFailure) {
  answerWholeRun(writeRun("run1.vtc"), kVolumes + 1);
  ASSERT_FALSE(plugin.execute());
  const std::vector<std::string> last(host.calls.end() - 5, host.calls.end());
  EXPECT_THAT(last, ElementsAre("zqLogText", "zqStopBusyCursor", "zqLogText", "zqLogText", "zqLogText"));
}

TEST_F(Execute, AFailureRepeatsWhatTheSettingsReaderSaid) {
  writeSettings("NumSurrogateSimulations= 10\nNonsense= 1\n");
  answerWholeRun(writeRun("run1.vtc"), kVolumes + 1);
  EXPECT_FALSE(plugin.execute());
  const auto behind = logBehind("// TAV> Computing...");
  EXPECT_THAT(behind, Contains(HasSubstr("// TAV> Unknown entry in TAVPlugin.ini: 'Nonsense='")));
}

TEST_F(Execute, ATerminalErrorOfTheComputationIsExplained) {
  const std::string run1 = writeRun("run1.vtc");
  std::filesystem::resize_file(run1, std::filesystem::file_size(run1) / 2);
  answerWholeRun(run1);
  EXPECT_FALSE(plugin.execute());
  const auto behind = logBehind("// TAV> Computing...");
  const std::vector<std::string> last(behind.end() - 6, behind.end());
  EXPECT_EQ(last[0], "// TAV> ");
  EXPECT_THAT(last[1], HasSubstr("Could not read data from vtc '" + run1 + "'"));
  EXPECT_EQ(last[2], "// TAV> Terminal error, sorry. Exiting...");
  EXPECT_THAT(std::vector(last.begin() + 3, last.end()), ElementsAreArray(closingBanner()));
  EXPECT_FALSE(host.busyCursor);
}

TEST_F(Execute, ATerminalErrorOfADialogIsSaidOnce) {
  host.answerInteger(2)
      .answerInteger(2)
      .answerText("faces")
      .answerOpen(writeRun("run1.vtc"))
      .answerOpen("no.prt");
  EXPECT_FALSE(plugin.execute());
  EXPECT_THAT(
      logBehind("// TAV> ERROR: Could not get access to protocol definition"),
      ElementsAreArray(std::vector<std::string>{"// TAV> ", "// TAV> Terminal error, sorry. Exiting..."} +
                       closingBanner()));
}

TEST_F(Execute, ATooShortIntervalOfAProtocolEndsTheRunWithoutAFurtherMessage) {
  host.protocolFiles["ms.prt"] = {kProtocolInMilliseconds, {{"faces", {1000}, {1000}}}};
  host.answerInteger(2).answerInteger(2).answerText("faces").answerOpen(writeRun("run1.vtc"));
  host.answerOpen("ms.prt").answerInteger(1);
  EXPECT_FALSE(plugin.execute());
  const auto behind = logBehind(
      "// TAV> ERROR : The interval (2, 2) is invalid: last-first+1 must be greater than AR-order(1)");
  EXPECT_THAT(behind, ElementsAreArray(std::vector<std::string>{"// TAV> "} + closingBanner()));
}

}  // namespace
