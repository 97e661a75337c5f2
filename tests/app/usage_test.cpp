// What the program says of words that it does not know, and what it does when it cannot say anything.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/program.h"
#include "tests/support/scratch.h"

namespace {

using testing::HasSubstr;
using testing::Not;

std::string saidOf(const std::vector<std::string>& words) {
  const Scratch folder;
  const ProgramResult run = tavmap(words, folder.path());
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  return run.err;
}

TEST(Usage, AMisspeltVerbGetsTheNearestOne) {
  EXPECT_THAT(saidOf({"rnu", "study.toml"}),
              HasSubstr("tavmap: there is no verb 'rnu'; did you mean 'run'?\n"));
  EXPECT_THAT(saidOf({"simulat", "x", "--bids"}), HasSubstr("did you mean 'simulate'?"));
}

TEST(Usage, AVerbThatIsLikeNoneGetsTheListOfThem) {
  const std::string said = saidOf({"xylophone"});
  EXPECT_THAT(said, HasSubstr("there is no verb 'xylophone'; known are run, bids, group, "));
  EXPECT_THAT(said, Not(HasSubstr("worker")));
}

TEST(Usage, AMisspeltOptionGetsTheNearestOfItsVerb) {
  EXPECT_THAT(saidOf({"run", "s.toml", "--jbos", "3"}),
              HasSubstr("tavmap: there is no option '--jbos'; did you mean '--jobs'?\n"));
  EXPECT_THAT(saidOf({"bids", "--labls=V1"}), HasSubstr("'--labls=V1'; did you mean '--labels'?"));
  EXPECT_THAT(saidOf({"convert", "a.nii", "a.vtc", "--thresold", "1"}),
              HasSubstr("did you mean '--threshold'?"));
  EXPECT_THAT(saidOf({"--verison"}), HasSubstr("did you mean '--version'?"));
  EXPECT_THAT(saidOf({"run", "--qqqqqqqqqq"}), Not(HasSubstr("did you mean")));
}

TEST(Usage, OutputThatCannotBeWrittenIsAFailure) {
  const Scratch folder;
  const auto run = [&](const std::vector<std::string>& words, const char* redirection) {
    return tavmap(
        {words, folder.folder(), "", {"/bin/sh", "-c", std::string(R"(exec "$0" "$@" )") + redirection}});
  };
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"run", "--example"}, {"--version"}, {"run", "--help"}}) {
    const ProgramResult full = run(words, "> /dev/full");
    EXPECT_EQ(full.exitCode, 1) << words[0];
    EXPECT_THAT(full.err, HasSubstr("tavmap: cannot write to standard output ("));
    EXPECT_THAT(full.err, HasSubstr("); free some space or send it elsewhere, and repeat the command\n"));
    EXPECT_EQ(run(words, ">&-").exitCode, 1) << words[0];
  }
  EXPECT_EQ(run({"nothing"}, "> /dev/full").exitCode, 2);
}

}  // namespace
