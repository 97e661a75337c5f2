#include "cluster/shell_words.h"

#include <gtest/gtest.h>

#include "cluster/job_chain.h"
#include "cluster/run_command.h"

namespace {

using cluster::Command;
using cluster::quotedWord;

TEST(ShellWords, PlainWordsStayAsTheyAre) {
  for (const char* word : {"tavmap", "--jobs=4", "/a/b_c-1.nii.gz", "50%", "a:b,c+d@e"})
    EXPECT_EQ(quotedWord(word), word);
}

TEST(ShellWords, WhatAShellWouldTakeApartIsQuoted) {
  EXPECT_EQ(quotedWord(""), "''");
  EXPECT_EQ(quotedWord("a b"), "'a b'");
  EXPECT_EQ(quotedWord("it's"), R"('it'\''s')");
  EXPECT_EQ(quotedWord("$HOME;`ls`"), "'$HOME;`ls`'");
  EXPECT_EQ(quotedWord("a\nb"), R"($'a\012b')");
  EXPECT_EQ(quotedWord("\t'\\"), R"($'\011\'\\')");
}

TEST(ShellWords, AShellReadsEveryWordBack) {
  const Command words = {"",
                         " ",
                         "a b",
                         "it's",
                         "\"x\"",
                         "$HOME",
                         "`x`",
                         "\\",
                         "\\n",
                         "*",
                         "~",
                         "!",
                         "#x",
                         "a\nb",
                         "\n",
                         "tab\t",
                         "\x7f",
                         "\x01"
                         "1",
                         "umlaut \xc3\xa4",
                         "(a)",
                         "{a,b}",
                         "a&b|c<d>e;f",
                         "%s",
                         "--"};
  Command print = {"printf", "<%s>"};
  print.insert(print.end(), words.begin(), words.end());
  std::string expected;
  for (const std::string& word : words) expected += "<" + word + ">";
  const std::string line = cluster::shellLine(print);
  EXPECT_EQ(line.find('\n'), std::string::npos);
  EXPECT_EQ(cluster::run({"bash", "-c", line}).out, expected);
}

TEST(RunCommand, TellsOutputErrorsAndCode) {
  const cluster::Answer answer = cluster::run({"bash", "-c", "cat; echo out; echo err >&2; exit 3"});
  EXPECT_EQ(answer.exitCode, 3);
  EXPECT_EQ(answer.out, "out\n");
  EXPECT_EQ(answer.err, "err\n");
  EXPECT_EQ(cluster::run({"bash", "-c", "kill -9 $$"}).exitCode, 137);
  EXPECT_EQ(cluster::run({"no-such-program-anywhere"}).exitCode, 127);
}

TEST(RunCommand, TakesMoreThanAPipeHolds) {
  EXPECT_EQ(cluster::run({"bash", "-c", "head -c 300000 /dev/zero"}).out.size(), 300000U);
}

TEST(JobChain, BundlesKeepOrderAndFitAnArray) {
  std::vector<cluster::Task> tasks;
  for (int i = 0; i < 2500; ++i) tasks.push_back({std::to_string(i), {{"c", std::to_string(i)}}});
  const std::vector<cluster::Task> fitting = cluster::bundled(tasks, 1);
  EXPECT_EQ(fitting.size(), 834U);
  EXPECT_EQ(fitting[0].name, "0, 1, 2");
  EXPECT_EQ(fitting.back().commands, (std::vector<Command>{{"c", "2499"}}));
  tasks.resize(5);
  EXPECT_EQ(cluster::bundled(tasks, 1).size(), 5U);
  EXPECT_EQ(cluster::bundled(tasks, 2).size(), 3U);
  EXPECT_TRUE(cluster::bundled({}, 2).empty());
}

}  // namespace
