#include "host/script_front_end.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/host/ending.h"
#include "tests/support/scratch.h"

namespace {

using host::ScriptFrontEnd;
using host_test::endingOf;
using testing::HasSubstr;

struct Scripted {
  explicit Scripted(const std::string& text, const std::string& path = "s.txt")
      : frontEnd(host::parseScript(text, path), out) {}
  std::ostringstream out;
  ScriptFrontEnd frontEnd;
};

const host::IntegerQuestion kChoice{"<b>Choose</b><br>1. one<br>2. two", 1, 1, 2};

TEST(ScriptFrontEnd, AnswersEachKindOfDialog) {
  Scripted s("integer 2\nfloat 0.25\ntext faces\nyes\nno\nmessage already selected\n");
  EXPECT_EQ(s.frontEnd.askInteger(kChoice), 2);
  EXPECT_EQ(s.frontEnd.askNumber({"q", 0.5F, 0.0F, 1.0F}), 0.25F);
  EXPECT_EQ(s.frontEnd.askText({"Name", "", 255}), "faces");
  EXPECT_TRUE(s.frontEnd.askYesNo("Sure?"));
  EXPECT_FALSE(s.frontEnd.askYesNo("Sure?"));
  s.frontEnd.showMessage("<b>Invalid selection</b><br>You have already selected that VOI.");
  EXPECT_EQ(s.frontEnd.finish(), "");
}

TEST(ScriptFrontEnd, CancelsAnyQuestion) {
  Scripted s("cancel\ncancel\ncancel\ncancel\ncancel\ncancel\n");
  EXPECT_EQ(s.frontEnd.askInteger(kChoice), std::nullopt);
  EXPECT_EQ(s.frontEnd.askNumber({"q", 0.5F, 0.0F, 1.0F}), std::nullopt);
  EXPECT_EQ(s.frontEnd.askText({"Name", "", 255}), std::nullopt);
  EXPECT_FALSE(s.frontEnd.askYesNo("Sure?"));
  EXPECT_EQ(s.frontEnd.askFileToOpen({"Open", "", "", 260}), std::nullopt);
  EXPECT_EQ(s.frontEnd.askFileToSave({"Save", "", "", 260}), std::nullopt);
}

TEST(ScriptFrontEnd, EndsTheRunAtADialogThatTheAnswerDoesNotFit) {
  Scripted s("text faces\n");
  const auto end = endingOf([&] { s.frontEnd.askInteger(kChoice); });
  EXPECT_EQ(end.exitCode, host::kExitBadInput);
  EXPECT_EQ(
      end.message,
      "s.txt:1: \"text faces\" does not answer this dialog, which expects \"integer\" with a whole number "
      "from 1 to 2:\nChoose\n1. one\n2. two");
}

TEST(ScriptFrontEnd, EndsTheRunAtAnAnswerOutOfRange) {
  for (const std::string answer :
       {"integer 3", "integer 0", "integer 1.5", "integer two", "integer 99999999999"}) {
    Scripted s(answer);
    EXPECT_EQ(endingOf([&] { s.frontEnd.askInteger(kChoice); }).exitCode, host::kExitBadInput) << answer;
  }
  for (const std::string answer : {"float 1.5", "float nan", "float inf", "float 0,5"}) {
    Scripted s(answer);
    const auto end = endingOf([&] { s.frontEnd.askNumber({"q", 0.5F, 0.0F, 1.0F}); });
    EXPECT_THAT(end.message, HasSubstr("expects \"float\" with a number from 0 to 1:\nq")) << answer;
  }
}

TEST(ScriptFrontEnd, EndsTheRunAtATextThatIsTooLong) {
  Scripted s("text abcd");
  EXPECT_EQ(endingOf([&] { s.frontEnd.askText({"Name", "", 3}); }).exitCode, host::kExitBadInput);
}

TEST(ScriptFrontEnd, EndsTheRunWhenNoAnswerIsLeft) {
  Scripted s("# nothing\n");
  const auto end = endingOf([&] { s.frontEnd.askText({"<b>Add a Condition</b>", "", 255}); });
  EXPECT_EQ(end.exitCode, host::kExitBadInput);
  EXPECT_EQ(end.message,
            "s.txt: no answer is left for this dialog, which expects \"text\" with at most 255 bytes:\n"
            "Add a Condition");
}

TEST(ScriptFrontEnd, EndsTheRunAtAMessageThatWasNotAnnounced) {
  Scripted other("integer 1\n");
  EXPECT_THAT(endingOf([&] { other.frontEnd.showMessage("<b>No VMR</b>"); }).message,
              HasSubstr("expects \"message\" with a part of the text:\nNo VMR"));
  Scripted wrong("message No VTC\n");
  EXPECT_EQ(endingOf([&] { wrong.frontEnd.showMessage("<b>No VMR</b>"); }).exitCode, host::kExitBadInput);
}

TEST(ScriptFrontEnd, ResolvesPathsAgainstTheScriptsFolder) {
  const Scratch folder;
  const std::string vtc = folder.write("run1.vtc", "x");
  Scripted s("open ./run1.vtc\nsave maps\n", folder / "s.txt");
  EXPECT_EQ(s.frontEnd.askFileToOpen({"Open", "", "", 260}), vtc);
  EXPECT_EQ(s.frontEnd.askFileToSave({"Save", "", "", 260}), folder / "maps");
}

TEST(ScriptFrontEnd, RefusesFilesThatADialogCouldNotGive) {
  const Scratch folder;
  const auto openEnding = [&](const std::string& answer) {
    Scripted s(answer, folder / "s.txt");
    return endingOf([&] { s.frontEnd.askFileToOpen({"Open", "", "", 260}); });
  };
  EXPECT_THAT(openEnding("open absent.vtc").message,
              HasSubstr("(there is no file " + (folder / "absent.vtc") + ")"));
  EXPECT_THAT(openEnding("open .").message, HasSubstr("this is a folder, not a file"));
  Scripted s("save absent/maps", folder / "s.txt");
  EXPECT_THAT(endingOf([&] {
                s.frontEnd.askFileToSave({"Save", "", "", 260});
              }).message,
              HasSubstr("(there is no folder " + (folder / "absent") + ")"));
}

TEST(ScriptFrontEnd, RefusesAPathThatIsTooLongForPlugins) {
  const Scratch folder;
  const std::string path = folder.write(std::string(250, 'x'), "");
  Scripted s("open " + path, folder / "s.txt");
  EXPECT_THAT(endingOf([&] {
                s.frontEnd.askFileToOpen({"Open", "", "", 260});
              }).message,
              HasSubstr("bytes, plug-ins take 260: " + path));
}

TEST(ScriptFrontEnd, ReportsAnswersThatNobodyAskedFor) {
  Scripted one("integer 1");
  EXPECT_EQ(one.frontEnd.finish(), "s.txt:1: 1 answer was not asked for, beginning with \"integer 1\"");
  Scripted two("text a\n\nyes\nno\n");
  (void)two.frontEnd.askText({"Name", "", 255});
  EXPECT_EQ(two.frontEnd.finish(), "s.txt:3: 2 answers were not asked for, beginning with \"yes\"");
}

TEST(ScriptFrontEnd, WritesTheLogAsPlainText) {
  Scripted s("");
  s.frontEnd.log("// TAV> <b>LH-V1</b>");
  EXPECT_EQ(s.out.str(), "// TAV> LH-V1\n");
}

}  // namespace
