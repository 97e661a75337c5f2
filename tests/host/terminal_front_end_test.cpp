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
  EXPECT_EQ(t.out.str(),
            "\n" + std::string(78, '-') + "\nChoose\n1. one\n2. two\n\nNumber or name, 1 to 2 [1]: ");
}

TEST(TerminalFrontEnd, RepeatsInputThatNobodyTypes) {
  std::istringstream in("2\n\n");
  std::ostringstream out;
  TerminalFrontEnd frontEnd(in, out, true);
  EXPECT_EQ(frontEnd.askInteger(kChoice), 2);
  EXPECT_THAT(out.str(), EndsWith("Number or name, 1 to 2 [1]: 2\n"));
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
  Typed t("0\nthree\n3\n 2 \n7\n2\n");
  EXPECT_EQ(t.frontEnd.askInteger(kChoice), 2);
  EXPECT_THAT(t.out.str(),
              HasSubstr("Please type a whole number from 1 to 2, or a name of the list or a part of it, or "
                        "cancel.\nNumber or name, 1 to 2 [1]: "));
  EXPECT_EQ(t.frontEnd.askInteger({"How many?", 1, 1, 2}), 2);
  EXPECT_THAT(t.out.str(),
              EndsWith("Please type a whole number from 1 to 2, or cancel.\nNumber, 1 to 2 [1]: "));
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

TEST(TerminalFrontEnd, TakesNamesOfAListAndPartsThatOneOfThemHas) {
  const host::IntegerQuestion regions{"0. Stop<br>1. LH_Vis<br>2. RH_Vis", 1, 0, 2};
  EXPECT_EQ(Typed("RH_Vis\n").frontEnd.askInteger(regions), 2);
  EXPECT_EQ(Typed("lh\n").frontEnd.askInteger(regions), 1);
  EXPECT_EQ(Typed("stop\n").frontEnd.askInteger(regions), 0);
  Typed t("vis\n2\n");
  EXPECT_EQ(t.frontEnd.askInteger(regions), 2);
  EXPECT_THAT(
      t.out.str(),
      HasSubstr("\"vis\" may be 1. LH_Vis, 2. RH_Vis. Please type more of the name, or the number.\n"));
}

const host::IntegerQuestion kVolume{"Last volume of the interval", 100, 1, 1000000, 120};

TEST(TerminalFrontEnd, PointsOutVolumesBeyondTheRunAndTakesThemFromAPipe) {
  Typed t("120\n121\n");
  EXPECT_EQ(t.frontEnd.askInteger(kVolume), 120);
  EXPECT_EQ(t.out.str().find("beyond"), std::string::npos);
  EXPECT_EQ(t.frontEnd.askInteger(kVolume), 121);
  EXPECT_THAT(t.out.str(), EndsWith("The run has 120 volumes; 121 lies beyond them.\n"));
  Typed other("500\n");
  EXPECT_EQ(other.frontEnd.askInteger({"How many surrogates?", 1, 1, 1000, 120}), 500);
  EXPECT_EQ(other.out.str().find("beyond"), std::string::npos);
}

// --- what a person is asked, and a pipe is not ---

struct Person {
  explicit Person(const std::string& typed, const std::string& vtc = "", const std::string& protocol = "")
      : in(typed),
        frontEnd(std::make_unique<host::StreamLines>(in, out, false), out, {true, vtc, protocol}) {}
  std::istringstream in;
  std::ostringstream out;
  TerminalFrontEnd frontEnd;
};

TEST(TerminalFrontEnd, MayTakeBackAVolumeBeyondTheRun) {
  Person p("500\n\n500\nno\n500\nyes\n");
  EXPECT_EQ(p.frontEnd.askInteger(kVolume), 500);
  EXPECT_THAT(p.out.str(), HasSubstr("Take 500 all the same? yes or no [no]: Number, 1 to 1000000 [100]: "));
  EXPECT_EQ(p.frontEnd.askInteger({"How many?", 7, 1, 9, 120}), std::nullopt);  // all was read
}

TEST(TerminalFrontEnd, ConfirmsACancelThatMayEndTheSession) {
  Person p("cancel\nno\ncancel\n\ncancel\nperhaps\ny\n");
  EXPECT_EQ(p.frontEnd.askText({"Name", "", 255}), std::nullopt);
  EXPECT_THAT(p.out.str(),
              HasSubstr("Cancelling this dialog can end the session. Cancel it? yes or no [no]: Text: "));
  EXPECT_THAT(p.out.str(),
              EndsWith("yes or no [no]: Type yes or no.\nCancelling this dialog can end the session. "
                       "Cancel it? yes or no [no]: "));
  EXPECT_EQ(endingOf([] {
              (void)Person("cancel\nquit\n").frontEnd.askText({"Name", "", 255});
            }).message,
            "Ended by \"quit\".");
}

TEST(TerminalFrontEnd, ConfirmsNoCancelOfADialogThatSaysWhatItDoes) {
  Person p("cancel\n");
  EXPECT_EQ(p.frontEnd.askFileToOpen({"Add a VTC (cancel to stop adding)", "", "", 260}), std::nullopt);
  EXPECT_EQ(p.out.str().find("Cancelling"), std::string::npos);
  Person target("cancel\nyes\n");
  EXPECT_EQ(target.frontEnd.askFileToOpen({"Add a VTC (mandatory, cancel only to exit)", "", "", 260}),
            std::nullopt);
  EXPECT_THAT(target.out.str(), HasSubstr("Cancelling this dialog"));
}

TEST(TerminalFrontEnd, TakesTheEndOfTheInputForAConfirmation) {
  EXPECT_EQ(Person("").frontEnd.askInteger(kChoice), std::nullopt);
}

TEST(TerminalFrontEnd, OffersTheFilesOfTheCommandLineWhereTheyAreAskedFor) {
  const Scratch folder;
  const std::string vtc = folder.write("run1.vtc", "x"), protocol = folder.write("p.tsv", "x");
  Person p("\n\ncancel\nyes\n\n\n", vtc, protocol);
  EXPECT_EQ(p.frontEnd.askFileToOpen(kFile), vtc);
  EXPECT_THAT(p.out.str(), EndsWith("File to open [" + vtc + "]: "));
  EXPECT_EQ(p.frontEnd.askFileToOpen(kFile),
            std::nullopt);  // once a dialog: Enter asks again, and is cancelled
  EXPECT_EQ(p.frontEnd.askFileToOpen({"Another file", "", kFile.filter, 260}), vtc);
  const host::FileQuestion protocols{"Protocol", "", "Protocol Files (*.prt)", 260};
  EXPECT_EQ(p.frontEnd.askFileToOpen(protocols), protocol);
  EXPECT_EQ(Person("\n" + protocol + "\n").frontEnd.askFileToOpen(protocols), protocol);  // nothing to offer
}

}  // namespace
