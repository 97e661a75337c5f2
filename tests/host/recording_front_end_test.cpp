#include "host/recording_front_end.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "host/script_front_end.h"
#include "tests/host/ending.h"
#include "tests/support/scratch.h"

namespace {

using host::RecordingFrontEnd;
using host::ScriptFrontEnd;
using host_test::endingOf;
using testing::HasSubstr;

struct Recorded : testing::Test {
  Scratch folder;
  std::string path = folder.file("answers.txt");
  std::ostringstream log;

  std::unique_ptr<ScriptFrontEnd> answers(const std::string& script) {
    return std::make_unique<ScriptFrontEnd>(host::parseScript(script, "s.txt"), log);
  }
  // The record without the line that says what it is.
  std::string lines() const {
    const std::string text = contentOf(path);
    return text.substr(std::min(text.find('\n') + 1, text.size()));
  }
};

// Asks one dialog of every kind; the answers in words.
std::string answersOf(host::FrontEnd& frontEnd) {
  std::ostringstream said;
  frontEnd.showMessage("<b>Invalid selection</b><br>You have select at least one VOI # again");
  said << frontEnd.askYesNo("Sure?") << frontEnd.askYesNo("Sure?");
  said << ' ' << frontEnd.askInteger({"n", 1, 0, 5}).value();
  said << ' ' << frontEnd.askInteger({"n", 1, 0, 5}).has_value();
  said << ' ' << frontEnd.askNumber({"x", 0, 0, 1}).value();
  for (int text = 0; text < 4; ++text) said << " <" << frontEnd.askText({"t", "", 255}).value() << ">";
  said << ' ' << frontEnd.askFileToOpen({"o", "", "", 260}).value();
  said << ' ' << frontEnd.askFileToSave({"s", "", "", 260}).value();
  return said.str();
}

TEST_F(Recorded, GivesTheSameAnswersAgain) {
  const std::string vtc = folder.write("a b.vtc", "");
  RecordingFrontEnd first(answers("message VOI\nyes\nno\ninteger 3\ncancel\nfloat 0.1\ntext\ntext run #2\n"
                                  "text two \\# half\ntext \\\\# \\#\nopen " +
                                  vtc + "\nsave " + folder.file("maps") + "\n"),
                          path);
  const std::string said = answersOf(first);
  EXPECT_THAT(said, HasSubstr("<> <run #2> <two # half> <\\# #>"));
  ScriptFrontEnd again(host::readScript(path), log);
  EXPECT_EQ(answersOf(again), said);
  EXPECT_EQ(again.finish(), "");
}

TEST_F(Recorded, NamesTheLongestLineOfAMessage) {
  RecordingFrontEnd frontEnd(answers("message Invalid\n"), path);
  frontEnd.showMessage("<b>Invalid selection</b><br>You have select at least one VOI.<br>Again");
  EXPECT_EQ(lines(), "message You have select at least one VOI.\n");
}

TEST_F(Recorded, HasWhatWasAnsweredBeforeTheSessionEnded) {
  RecordingFrontEnd frontEnd(answers("integer 3\n"), path);
  (void)frontEnd.askInteger({"n", 1, 0, 5});
  EXPECT_EQ(lines(), "integer 3\n");
  endingOf([&] { (void)frontEnd.askInteger({"n", 1, 0, 5}); });
  EXPECT_EQ(lines(), "integer 3\n");
}

TEST_F(Recorded, RefusesAFileThatIsThere) {
  folder.write("answers.txt", "integer 1\n");
  const auto end = endingOf([&] { RecordingFrontEnd(answers(""), path); });
  EXPECT_EQ(end.exitCode, host::kExitBadInput);
  EXPECT_EQ(end.message,
            path +
                " is there already, perhaps with the answers of an earlier session. Give --record "
                "another name, or remove the file.");
  EXPECT_EQ(contentOf(path), "integer 1\n");
}

TEST_F(Recorded, RefusesAFolderThatIsNotThere) {
  const auto end = endingOf([&] { RecordingFrontEnd(answers(""), folder.file("no/answers.txt")); });
  EXPECT_EQ(end.exitCode, host::kExitBadInput);
  EXPECT_EQ(end.message, "There is no folder " + folder.file("no") + " for the answers. Check --record.");
}

TEST_F(Recorded, ComplainsOnceAndAtTheEndWhenItCannotBeWritten) {
  std::filesystem::create_directory(folder.folder() / "gone");
  RecordingFrontEnd frontEnd(answers("yes\nno\n"), folder.file("gone/answers.txt"));
  std::filesystem::remove(folder.folder() / "gone");
  EXPECT_TRUE(frontEnd.askYesNo("Sure?"));
  EXPECT_FALSE(frontEnd.askYesNo("Sure?"));
  const std::string warning = "WARNING: The answers cannot be recorded: ";
  EXPECT_THAT(log.str(), HasSubstr(warning));
  EXPECT_EQ(log.str().find(warning), log.str().rfind(warning));
  EXPECT_THAT(frontEnd.finish(), HasSubstr("The answers could not be recorded: "));
}

TEST_F(Recorded, HandsOnWhatItsFrontEndComplainsOf) {
  RecordingFrontEnd frontEnd(answers("yes\n"), path);
  EXPECT_THAT(frontEnd.finish(), HasSubstr("1 answer was not asked for"));
}

}  // namespace
