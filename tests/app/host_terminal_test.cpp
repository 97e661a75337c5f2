// Sessions at a terminal that can move its cursor, and their records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/app/noise_data.h"
#include "tests/app/pseudo_terminal.h"
#include "tests/support/program.h"
#include "tests/support/scratch.h"

namespace {

using namespace app_test;
using testing::HasSubstr;

const std::string kList = "Number or name, 0 to 3 [1]: ";

struct HostTerminal : testing::Test {
  NoiseData data;

  static std::vector<std::string> arguments(const std::vector<std::string>& more = {}) {
    std::vector<std::string> all = {
        "host",   TAVMAP_PLUGIN, "--anatomy",        "t1.nii", "--vtc",  "run1.vtc",
        "--vois", "vois.json",   "--plugins-folder", ".",      "--seed", "7"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }
  std::string folder() const { return data.folder.path(); }
  std::string content(const std::string& name) const { return contentOf(data.folder / name); }
};

struct Session : PseudoTerminal {
  Session(const HostTerminal& test, const std::vector<std::string>& more = {})
      : PseudoTerminal(HostTerminal::arguments(more), test.folder(), "xterm") {}
  void answer(const std::string& prompt, const std::string& keys) {
    ASSERT_TRUE(shows(prompt)) << prompt;
    ASSERT_TRUE(takesSingleKeys()) << prompt;
    type(keys);
  }
  // Up to the name of the first condition.
  void chooseTheDriver() {
    answer(kList, "driver\n");
    answer(kList, "0\n");
    answer("Number or name, 1 to 2 [1]: ", "\n");
  }
};

TEST_F(HostTerminal, EditsALineInItsMiddle) {
  Session session(*this);
  session.chooseTheDriver();
  session.answer("Text: ",
                 std::string("llx") + kBackspace + kControlA + "al" + kLeft + kBackspace + "a\x06\x7f\n");
  EXPECT_TRUE(session.shows("Add a VTC for condition: all (cancel"));
}

TEST_F(HostTerminal, BringsAnEarlierLineBack) {
  Session session(*this);
  session.answer(kList, "driver\n");
  session.answer(kList, std::string(kUp) + "\n");
  EXPECT_TRUE(session.shows("You have already selected that VOI."));
}

TEST_F(HostTerminal, CompletesNamesOfListsAndFiles) {
  Session session(*this);
  session.answer(kList, std::string("dri") + kTab + "\n");
  session.answer(kList, "stop\n");
  session.answer("Number or name, 1 to 2 [1]: ", "\n");
  session.answer("Text: ", "all\n");
  session.answer("File to open [run1.vtc]: ", std::string("ru") + kTab + kTab);
  EXPECT_TRUE(session.shows("run1.vtc\r\nrun2.vtc\r\n"));  // what both begin with, and then the choice
  session.type(std::string("2") + kTab + "\n");
  EXPECT_TRUE(session.shows("run2.vtc"));
  EXPECT_TRUE(
      session.shows("Specify first time-point(volume) of interval in\r\n" + (data.folder / "run2.vtc")));
}

TEST_F(HostTerminal, OffersTheLinkedRunAndPointsOutVolumesBeyondIt) {
  Session session(*this);
  session.chooseTheDriver();
  session.answer("Text: ", "all\n");
  session.answer("File to open [run1.vtc]: ", "\n");
  session.answer("Number, 1 to 1000000 [5]: ", "\n");
  session.answer("Number, 1 to 1000000 [100]: ", "121\n");
  EXPECT_TRUE(session.shows("The run has 120 volumes; 121 lies beyond them."));
  session.answer("Take 121 all the same? yes or no [no]: ", "\n");
  session.answer("Number, 1 to 1000000 [100]: ", "120\n");
  EXPECT_TRUE(session.shows("File to open: "));  // the run is offered once a condition
}

TEST_F(HostTerminal, ConfirmsACancelThatMayEndTheSession) {
  Session session(*this);
  session.answer(kList, kControlD);
  session.answer("Cancel it? yes or no [no]: ", "\n");
  session.answer(kList, "cancel\n");
  session.answer("Cancel it? yes or no [no]: ", "yes\n");
  EXPECT_TRUE(session.shows("// TAV> Canceled by user."));
  EXPECT_EQ(session.exitCode(), 1);
}

TEST_F(HostTerminal, KeepsWhatWasTypedWhenItIsInterrupted) {
  Session session(*this, {"--record", "answers.txt"});
  session.chooseTheDriver();
  session.answer("Text: ", kControlC);
  EXPECT_EQ(session.exitCode(), 130);
  EXPECT_EQ(content("answers.txt"),
            "# Answers of a session of tavmap host.\ninteger 1\ninteger 0\ninteger 1\n");
}

// --- records ---

// With a box, a cancelled dialog and intervals of a protocol.
const std::string kTyped =
    "other\ndriver\nother\n\n0\n2\nface # "
    "1\ncancel\n\nrun1.vtc\nevents.tsv\nhouse\nrun2.vtc\nvolumes.tsv\n1\n"
    "cancel\n\nmaps\n";

TEST_F(HostTerminal, ARecordReplaysToTheSameFiles) {
  const ProgramResult typed = tavmap(ProgramStart{arguments({"--record", "answers.txt"}), folder(), kTyped});
  ASSERT_EQ(typed.exitCode, 0) << typed.out << typed.err;
  const std::vector<std::string> names = {"maps_driver.tav", "maps_driver.log", "maps_other.tav",
                                          "maps_other.log"};
  std::vector<std::string> before;
  for (const std::string& name : names) {
    before.push_back(content(name));
    EXPECT_FALSE(before.back().empty()) << name;
    std::filesystem::remove(data.folder / name);
  }
  const ProgramResult replayed =
      tavmap(arguments({"--script", "answers.txt", "--record", "again.txt"}), folder());
  EXPECT_EQ(replayed.exitCode, 0) << replayed.out << replayed.err;
  for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(content(names[i]), before[i]) << names[i];
  EXPECT_EQ(content("again.txt"), content("answers.txt"));
}

TEST_F(HostTerminal, ARecordIsKeptWhenTheSessionFails) {
  const ProgramResult run =
      tavmap(ProgramStart{arguments({"--record", "answers.txt"}), folder(), "1\n0\nquit\n"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(content("answers.txt"), "# Answers of a session of tavmap host.\ninteger 1\ninteger 0\n");
}

TEST_F(HostTerminal, ARecordReplacesNoFile) {
  data.folder.write("answers.txt", "integer 1\n");
  const ProgramResult run =
      tavmap(arguments({"--script", "answers.txt", "--record", "answers.txt"}), folder());
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, HasSubstr("answers.txt is there already"));
  EXPECT_EQ(content("answers.txt"), "integer 1\n");
}

}  // namespace
