#include "host/log_pane.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/script_front_end.h"
#include "tests/host/ending.h"
#include "tests/support/scratch.h"

namespace {

using host::LogPane;
using host::reportsFailure;
using host_test::endingOf;

struct Pane {
  explicit Pane(bool quiet = false) : frontEnd(host::parseScript("", "s.txt"), out), pane(frontEnd, quiet) {}
  std::ostringstream out;
  host::ScriptFrontEnd frontEnd;
  LogPane pane;
};

TEST(LogPane, ShowsEveryBlockAndWritesItIntoTheLogFile) {
  const Scratch folder;
  Pane p;
  p.pane.writeTo(folder / "host.log");
  p.pane.append("// TAV> <b>one</b>\n// TAV> two");
  p.pane.append("");
  EXPECT_TRUE(p.pane.close());
  EXPECT_EQ(p.out.str(), "// TAV> one\n// TAV> two\n\n");
  EXPECT_EQ(contentOf(folder / "host.log"), p.out.str());
}

TEST(LogPane, ShowsNothingWhenQuietButStillWritesTheFile) {
  const Scratch folder;
  Pane p(true);
  p.pane.writeTo(folder / "host.log");
  p.pane.append("text");
  EXPECT_TRUE(p.pane.close());
  EXPECT_EQ(p.out.str(), "");
  EXPECT_EQ(contentOf(folder / "host.log"), "text\n");
}

TEST(LogPane, SaysWhichLogFileCannotBeWritten) {
  Pane p;
  const auto end = endingOf([&] { p.pane.writeTo("/no/such/folder/host.log"); });
  EXPECT_EQ(end.exitCode, host::kExitBadInput);
  EXPECT_EQ(
      end.message,
      "Cannot write the log file /no/such/folder/host.log: check that its folder exists and is writable.");
}

TEST(LogPane, TellsWhenTheLogFileCouldNotBeWrittenToTheEnd) {
  Pane p;
  p.pane.writeTo("/dev/full");
  p.pane.append("text");
  EXPECT_FALSE(p.pane.close());
}

TEST(LogPane, RemembersThatAFailureWasReported) {
  Pane p;
  p.pane.append("// TAV> Computing...\n// TAV> WARNING: Could not find or open TAVPlugin.ini");
  EXPECT_FALSE(p.pane.reportedFailure());
  p.pane.append("// TAV> Written data: a\n// TAV> WARNING: Could not write the log a.log");
  p.pane.append("// TAV> Done");
  EXPECT_TRUE(p.pane.reportedFailure());
}

TEST(ReportsFailure, RecognisesErrorsAndUnwritableFiles) {
  EXPECT_TRUE(reportsFailure("ERROR: Cannot write x.tav"));
  EXPECT_TRUE(reportsFailure("// TAV> ERROR : The interval (1, 1) is invalid"));
  EXPECT_TRUE(reportsFailure("// TAV> \tERROR: x"));
  EXPECT_TRUE(reportsFailure("WARNING: Could not write x.log"));
}

TEST(ReportsFailure, PassesOtherLines) {
  EXPECT_FALSE(reportsFailure(""));
  EXPECT_FALSE(reportsFailure("// TAV> "));
  EXPECT_FALSE(reportsFailure("// TAV> no ERROR: here"));
  EXPECT_FALSE(reportsFailure("// several words> ERROR: x"));
  EXPECT_FALSE(reportsFailure("WARNING: Dismissing .ini-file"));
}

}  // namespace
