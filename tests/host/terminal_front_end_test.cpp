#include "host/terminal_front_end.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/host/ending.h"
#include "tests/support/scratch.h"

namespace {

using host::TerminalFrontEnd;
using host_test::endingOf;
using testing::EndsWith;
using testing::HasSubstr;

struct Typed {
  explicit Typed(const std::string& typed) : in(typed), frontEnd(in, out) {}
  std::istringstream in;
  std::ostringstream out;
  TerminalFrontEnd frontEnd;
};

const host::IntegerQuestion kChoice{"<b>Choose</b><br>1. one<br>2. two", 1, 1, 2};
const host::FileQuestion kFile{"Pick a file", "", "Volume Time Course Files (*.vtc)", 260};

TEST(TerminalFrontEnd, ShowsADialogAsTextAndAsksForTheNumber) {
  Typed t("2\n");
  EXPECT_EQ(t.frontEnd.askInteger(kChoice), 2);
  EXPECT_EQ(t.out.str(), "\n" + std::string(78, '-') + "\nChoose\n1. one\n2. two\n\nNumber, 1 to 2 [1]: ");
}

TEST(TerminalFrontEnd, RepeatsInputThatNobodyTypes) {
  std::istringstream in("2\n\n");
  std::ostringstream out;
  TerminalFrontEnd frontEnd(in, out, true);
  EXPECT_EQ(frontEnd.askInteger(kChoice), 2);
  EXPECT_THAT(out.str(), EndsWith("Number, 1 to 2 [1]: 2\n"));
  frontEnd.showMessage("box");
  EXPECT_THAT(out.str(), EndsWith("Press Enter to go on: \n"));
}

TEST(TerminalFrontEnd, TakesTheInitialValueForEnter) {
  Typed t("\n\n\n");
  EXPECT_EQ(t.frontEnd.askInteger(kChoice), 1);
  EXPECT_EQ(t.frontEnd.askNumber({"q", 0.5F, 0.0F, 1.0F}), 0.5F);
  EXPECT_EQ(t.frontEnd.askText({"Name", "faces", 255}), "faces");
}

TEST(TerminalFrontEnd, AsksAgainUntilTheNumberIsInRange) {
  Typed t("0\nthree\n3\n 2 \n");
  EXPECT_EQ(t.frontEnd.askInteger(kChoice), 2);
  EXPECT_THAT(t.out.str(),
              HasSubstr("Please type a whole number from 1 to 2, or cancel.\nNumber, 1 to 2 [1]: "));
  Typed f("7\n0.25\n");
  EXPECT_EQ(f.frontEnd.askNumber({"q", 0.5F, 0.0F, 1.0F}), 0.25F);
  EXPECT_THAT(f.out.str(), HasSubstr("Number, 0 to 1 [0.5]: Please type a number from 0 to 1, or cancel.\n"));
}

TEST(TerminalFrontEnd, CancelsAnyQuestionByWordOrByTheEndOfTheInput) {
  for (const std::string typed : {"cancel\n", ""}) {
    EXPECT_EQ(Typed(typed).frontEnd.askInteger(kChoice), std::nullopt);
    EXPECT_EQ(Typed(typed).frontEnd.askNumber({"q", 0.5F, 0.0F, 1.0F}), std::nullopt);
    EXPECT_EQ(Typed(typed).frontEnd.askText({"Name", "", 255}), std::nullopt);
    EXPECT_EQ(Typed(typed).frontEnd.askFileToOpen(kFile), std::nullopt);
    EXPECT_EQ(Typed(typed).frontEnd.askFileToSave(kFile), std::nullopt);
    EXPECT_FALSE(Typed(typed).frontEnd.askYesNo("Sure?"));
  }
}

TEST(TerminalFrontEnd, EndsTheRunWhenAPluginKeepsAskingAfterTheEndOfTheInput) {
  Typed t("");
  EXPECT_EQ(t.frontEnd.askFileToOpen(kFile), std::nullopt);
  t.frontEnd.showMessage("You have select at least one VTC");
  const auto end = endingOf([&] { t.frontEnd.askFileToOpen(kFile); });
  EXPECT_EQ(end.exitCode, host::kExitFailed);
  EXPECT_EQ(end.message, "The input has ended, and the plug-in asks:\nPick a file");
}

TEST(TerminalFrontEnd, EndsTheRunAtQuit) {
  EXPECT_EQ(endingOf([] { Typed("quit\n").frontEnd.askInteger(kChoice); }).message, "Ended by \"quit\".");
  EXPECT_EQ(endingOf([] { Typed("quit\n").frontEnd.showMessage("box"); }).exitCode, host::kExitFailed);
}

TEST(TerminalFrontEnd, TakesCommandWordsAsTextAfterABackslash) {
  EXPECT_EQ(Typed("\\cancel\n").frontEnd.askText({"Name", "", 255}), "cancel");
  EXPECT_EQ(Typed("\\quit\n").frontEnd.askText({"Name", "", 255}), "quit");
}

TEST(TerminalFrontEnd, AsksAgainForATextThatIsTooLong) {
  Typed t("abcd\nabc\n");
  EXPECT_EQ(t.frontEnd.askText({"Name", "", 3}), "abc");
  EXPECT_THAT(t.out.str(), HasSubstr("At most 3 bytes, please.\n"));
}

TEST(TerminalFrontEnd, WaitsForEnterAtAMessage) {
  Typed t("\n2\n");
  t.frontEnd.showMessage("<b>Invalid selection</b><br>Try again");
  EXPECT_THAT(t.out.str(), EndsWith("\nInvalid selection\nTry again\n\nPress Enter to go on: "));
  EXPECT_EQ(t.frontEnd.askInteger(kChoice), 2);
}

TEST(TerminalFrontEnd, UnderstandsYesAndNo) {
  EXPECT_TRUE(Typed("maybe\ny\n").frontEnd.askYesNo("Sure?"));
  EXPECT_FALSE(Typed("no\n").frontEnd.askYesNo("Sure?"));
}

TEST(TerminalFrontEnd, AsksAgainForAFileThatDoesNotExist) {
  const Scratch folder;
  const std::string vtc = folder.write("run1.vtc", "x");
  Typed t((folder / "absent.vtc") + "\n\n" + vtc + "\n");
  EXPECT_EQ(t.frontEnd.askFileToOpen(kFile), vtc);
  EXPECT_THAT(t.out.str(),
              HasSubstr("Pick a file\nVolume Time Course Files (*.vtc)\n\nFile to open: Not possible: "
                        "there is no file " +
                        (folder / "absent.vtc") + "\n"));
}

TEST(TerminalFrontEnd, GivesAbsolutePathsFromTheStartFolder) {
  const Scratch folder;
  EXPECT_EQ(Typed("maps\n").frontEnd.askFileToSave({"Save", folder.path(), "", 260}), folder / "maps");
  EXPECT_EQ(Typed("maps\n").frontEnd.askFileToSave({"Save", "", "", 260}),
            (std::filesystem::current_path() / "maps").string());
}

TEST(TerminalFrontEnd, AsksAgainForAFolderThatDoesNotExist) {
  const Scratch folder;
  Typed t("absent/maps\n" + folder.path() + "/\nmaps\n");
  EXPECT_EQ(t.frontEnd.askFileToSave({"Save", folder.path(), "", 260}), folder / "maps");
  EXPECT_THAT(t.out.str(), HasSubstr("there is no folder " + (folder / "absent") + "\n"));
  EXPECT_THAT(t.out.str(), HasSubstr("a file name is missing after " + folder.path() + "/\n"));
}

}  // namespace
