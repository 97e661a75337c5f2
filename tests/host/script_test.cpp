#include "host/script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "host/run_ended.h"
#include "tests/host/ending.h"

namespace {

using host::AnswerKind;
using host::parseScript;
using host::Script;
using host_test::endingOf;
using testing::HasSubstr;

TEST(Script, ReadsOneAnswerPerLine) {
  const Script script =
      parseScript("# comment\n\ninteger 3\n  text  two words \r\nopen a b.vtc\ncancel\n", "dir/s.txt");
  ASSERT_EQ(script.answers.size(), 4U);
  EXPECT_EQ(script.answers[0].kind, AnswerKind::kInteger);
  EXPECT_EQ(script.answers[0].value, "3");
  EXPECT_EQ(script.answers[0].line, 3);
  EXPECT_EQ(script.answers[1].value, "two words");
  EXPECT_EQ(script.answers[2].value, "a b.vtc");
  EXPECT_EQ(script.answers[3].kind, AnswerKind::kCancel);
}

TEST(Script, StartsRelativePathsAtItsOwnFolder) {
  EXPECT_EQ(parseScript("", "/data/run/s.txt").folder, "/data/run");
  EXPECT_EQ(parseScript("", "s.txt").folder, std::filesystem::current_path().string());
}

TEST(Script, TakesAnEmptyText) {
  const Script script = parseScript("text", "s.txt");
  ASSERT_EQ(script.answers.size(), 1U);
  EXPECT_EQ(script.answers[0].value, "");
}

TEST(Script, IgnoresCommentsBehindAnswersButKeepsNumberSigns) {
  const Script script = parseScript(
      "integer 3   # the reference\ntext run #2\ntext a#b # c # d\n  #no blank\ntext\t#\n", "s.txt");
  ASSERT_EQ(script.answers.size(), 4U);
  EXPECT_EQ(script.answers[0].value, "3");
  EXPECT_EQ(script.answers[1].value, "run #2");
  EXPECT_EQ(script.answers[2].value, "a#b");
  EXPECT_EQ(script.answers[3].value, "");
}

TEST(Script, NamesLineAndKnownTagsForAnUnknownOne) {
  const auto end = endingOf([] { return parseScript("text a\nintger 3\n", "s.txt"); });
  EXPECT_EQ(end.exitCode, host::kExitBadInput);
  EXPECT_EQ(end.message,
            "s.txt:2: unknown answer \"intger\"; the answers are integer, text, float, open, save, yes, no, "
            "cancel, message");
}

TEST(Script, RefusesAMissingOrASuperfluousValue) {
  EXPECT_EQ(endingOf([] { return parseScript("integer", "s.txt"); }).message,
            "s.txt:1: \"integer\" needs a value after it");
  EXPECT_EQ(endingOf([] { return parseScript("yes please", "s.txt"); }).message,
            "s.txt:1: \"yes\" takes no value");
}

TEST(Script, SaysWhichFileCannotBeRead) {
  const auto end = endingOf([] { return host::readScript("no/such/script.txt"); });
  EXPECT_EQ(end.exitCode, host::kExitBadInput);
  EXPECT_EQ(end.message, "Cannot read the script no/such/script.txt: check the path and its permissions.");
  EXPECT_THAT(endingOf([] { return host::readScript("/"); }).message, HasSubstr("Cannot read the script /"));
}

TEST(Script, TakesANumberSignThatABackslashKeeps) {
  const Script script = parseScript("text run \\# 2 # of two\ntext \\\\# \\#\ntext a\\#\n", "s.txt");
  ASSERT_EQ(script.answers.size(), 3U);
  EXPECT_EQ(script.answers[0].value, "run # 2");
  EXPECT_EQ(script.answers[1].value, "\\# #");
  EXPECT_EQ(script.answers[2].value, "a\\#");
}

TEST(Script, WritesLinesThatItReadsAsTheyWereMeant) {
  for (const std::string value : {"faces", "# 1", "run #2", "a # b #", "\\# \\\\#", "a\\# b", "C:\\x"}) {
    const std::string line = host::scriptLine(AnswerKind::kText, value);
    EXPECT_EQ(parseScript(line, "s.txt").answers.at(0).value, value) << line;
  }
  EXPECT_EQ(host::scriptLine(AnswerKind::kText, ""), "text");
  EXPECT_EQ(host::scriptLine(AnswerKind::kText, "run #2"), "text run #2");
}

}  // namespace
