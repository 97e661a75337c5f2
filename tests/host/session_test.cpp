// Sessions with test plug-ins: every way in which a run can end, with message and exit code.
#include "host/session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "host/script_front_end.h"
#include "tests/host/sample_workspace.h"
#include "tests/support/scratch.h"

namespace {

using host::SessionOptions;
using host_test::SampleFiles;
using testing::EndsWith;
using testing::HasSubstr;

struct Sessions : testing::Test {
  SampleFiles files;
  SessionOptions options;
  std::string out, err;

  void SetUp() override {
    options.pluginPath = HOST_TEST_ACTING_PLUGIN;
    setenv("HOST_TEST_DESTROYED", (files.folder / "destroyed").c_str(), 1);
  }
  void TearDown() override {
    unsetenv("HOST_TEST_ACT");
    unsetenv("HOST_TEST_DESTROYED");
    unsetenv("TAV_TIME_BASE");
  }

  int run(const std::string& act, const std::string& script = "") {
    setenv("HOST_TEST_ACT", act.c_str(), 1);
    std::ostringstream outStream, errStream;
    host::ScriptFrontEnd frontEnd(host::parseScript(script, files.folder / "s.txt"), outStream);
    const int exitCode = host::runSession(options, frontEnd, outStream, errStream);
    out = outStream.str();
    err = errStream.str();
    return exitCode;
  }
  bool destroyed() const { return std::filesystem::exists(files.folder / "destroyed"); }
};

TEST_F(Sessions, IntroduceAndRunThePlugin) {
  EXPECT_EQ(run("nothing"), 0);
  EXPECT_EQ(out, "Acting plug-in\nDoes what it is told.\nThe authors\n\n");
  EXPECT_EQ(err, "");
  EXPECT_TRUE(destroyed());
}

TEST_F(Sessions, SayNothingWhenQuiet) {
  options.quiet = true;
  EXPECT_EQ(run("log-warning"), 0);
  EXPECT_EQ(out, "");
}

TEST_F(Sessions, RunInTheSameProcessAgain) {
  EXPECT_EQ(run("fail"), 1);
  EXPECT_EQ(run("nothing"), 0);
}

// --- loading ---

TEST_F(Sessions, SayThatThePluginDoesNotExist) {
  options.pluginPath = files.folder / "absent.so";
  EXPECT_EQ(run(""), 2);
  EXPECT_EQ(err, "tavmap: Cannot load the plug-in " + (files.folder / "absent.so") +
                     ": there is no such file. Check the path.\n");
}

TEST_F(Sessions, SayThatAFolderIsNoPlugin) {
  options.pluginPath = files.folder.path();
  EXPECT_EQ(run(""), 2);
  EXPECT_EQ(err, "tavmap: Cannot load the plug-in " + files.folder.path() +
                     ": it is not a file. Give the path of the .so itself.\n");
}

TEST_F(Sessions, SayThatAFileIsNoLibrary) {
  for (const std::string content : {"", "#!/bin/sh\n"}) {
    options.pluginPath = files.folder.write("text.so", content);
    EXPECT_EQ(run(""), 2);
    EXPECT_EQ(err,
              "tavmap: Cannot load the plug-in " + options.pluginPath +
                  ": it is not a shared library. Give a plug-in built for Linux, such as TAVPlugin.so.\n");
  }
}

TEST_F(Sessions, PassOnWhyALibraryCannotBeLoaded) {
  options.pluginPath = files.folder.write("cut.so",
                                          "\x7f"
                                          "ELF and nothing else");
  EXPECT_EQ(run(""), 2);
  EXPECT_THAT(err, HasSubstr("Cannot load the plug-in " + options.pluginPath + ": "));
  EXPECT_THAT(err,
              EndsWith(". It must be built for this machine and need no library that is not installed.\n"));
}

TEST_F(Sessions, ResolveEverySymbolAtOnce) {
  options.pluginPath = HOST_TEST_UNRESOLVED_PLUGIN;
  EXPECT_EQ(run(""), 2);
  EXPECT_THAT(err, HasSubstr("functionThatNobodyHas"));
}

TEST_F(Sessions, NameMissingExports) {
  options.pluginPath = HOST_TEST_NO_PLUGIN;
  EXPECT_EQ(run(""), 2);
  EXPECT_THAT(
      err, EndsWith(": it does not export getPluginDescription, getHelpFile, getGUIScript, "
                    "getRegistrationOfGenericComponentLoader, createPlugin. It is no plug-in of this kind, "
                    "or was built without its exports.\n"));
}

TEST_F(Sessions, TakeANullTextAsEmpty) {
  EXPECT_EQ(run("null-text"), 0);
}

TEST_F(Sessions, RefuseANullObject) {
  EXPECT_EQ(run("null-object"), 2);
  EXPECT_THAT(err, HasSubstr(": createPlugin returned a null pointer. "));
}

// --- how runs end ---

TEST_F(Sessions, CatchEveryExceptionThatLeavesThePlugin) {
  const std::string remedy = " Results that it had not saved are lost; report it to the plug-in's makers.\n";
  EXPECT_EQ(run("throw"), 1);
  EXPECT_EQ(err, "tavmap: The plug-in ended execute with an exception (out of luck)." + remedy);
  EXPECT_TRUE(destroyed());
  EXPECT_EQ(run("throw-number"), 1);
  EXPECT_EQ(err, "tavmap: The plug-in ended execute with an exception (of an unknown kind)." + remedy);
  EXPECT_EQ(run("throw-in-init"), 1);
  EXPECT_EQ(err, "tavmap: The plug-in ended initPlugin with an exception (no start)." + remedy);
  EXPECT_EQ(run("throw-in-create"), 1);
  EXPECT_EQ(err, "tavmap: The plug-in ended createPlugin with an exception (std::bad_alloc)." + remedy);
  EXPECT_EQ(run("throw-in-description"), 1);
  EXPECT_EQ(err, "tavmap: The plug-in ended its description with an exception (no words)." + remedy);
}

TEST_F(Sessions, FailWhenThePluginRefusesToStart) {
  EXPECT_EQ(run("refuse"), 1);
  EXPECT_EQ(err, "tavmap: The plug-in refused to start: its initPlugin returned false.\n");
  EXPECT_TRUE(destroyed());
}

TEST_F(Sessions, ReportTheVersionThatWasAskedFor) {
  options.version = {2, 0, 9};
  EXPECT_EQ(run("nothing", "message version 2.1.0 or higher required"), 1);
  EXPECT_EQ(err, "tavmap: The plug-in refused to start: its initPlugin returned false.\n");
}

TEST_F(Sessions, FailWhenThePluginReportsNoSuccess) {
  EXPECT_EQ(run("fail"), 1);
  EXPECT_EQ(err, "tavmap: The plug-in did not complete its run; its log or message says why.\n");
}

TEST_F(Sessions, FailWhenTheLogReportsAnError) {
  EXPECT_EQ(run("log-error"), 1);
  EXPECT_EQ(err, "tavmap: The run reported errors; its log says which.\n");
  EXPECT_EQ(run("log-warning"), 0);
}

TEST_F(Sessions, StopAPluginThatMisusesTheHost) {
  EXPECT_EQ(run("misuse"), 1);
  EXPECT_EQ(err,
            "tavmap: The plug-in misused the host and was stopped: zqLogText: the text is a null pointer\n");
  EXPECT_THAT(out, HasSubstr("PLUG-IN MISBEHAVIOUR: zqLogText: the text is a null pointer\n"));
  EXPECT_TRUE(destroyed());
}

TEST_F(Sessions, EndFromInsideADialogAndDestroyThePlugin) {
  EXPECT_EQ(run("ask", "integer 2\ntext a\n"), 2);
  EXPECT_THAT(err, HasSubstr("s.txt:2: \"text a\" does not answer this dialog"));
  EXPECT_THAT(err, EndsWith(":\nChoose\n0. stop\n"));
  EXPECT_TRUE(destroyed());
}

TEST_F(Sessions, EndEvenWhenThePluginSwallowsTheEnd) {
  EXPECT_EQ(run("swallow", "integer 9\n"), 2);
  EXPECT_THAT(err, HasSubstr("\"integer 9\" does not answer this dialog"));
}

TEST_F(Sessions, LetDestructorsCallTheHostWhileTheRunEnds) {
  EXPECT_EQ(run("log-while-unwinding", "integer 9\n"), 2);
  EXPECT_THAT(out, testing::Not(HasSubstr("destroyed")));
  EXPECT_TRUE(destroyed());
}

TEST_F(Sessions, DoNotThrowWhileThePluginIsDestroyed) {
  EXPECT_EQ(run("log-when-destroyed"), 0);
  EXPECT_THAT(out, HasSubstr("PLUG-IN MISBEHAVIOUR: zqLogText"));
  EXPECT_TRUE(destroyed());
}

TEST_F(Sessions, SayWhyARunEndsInAFunctionThatMustNotThrow) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(run("noexcept", "integer 9\n"), testing::ExitedWithCode(2),
              "\"integer 9\" does not answer this dialog");
}

TEST_F(Sessions, ReportAnswersThatAreLeftOver) {
  EXPECT_EQ(run("ask", "integer 0\ntext a\n"), 2);
  EXPECT_EQ(err, "tavmap: " + (files.folder / "s.txt") +
                     ":2: 1 answer was not asked for, beginning with \"text a\"\n");
  EXPECT_EQ(run("fail", "text a\n"), 1) << "an earlier failure counts";
}

// --- options ---

TEST_F(Sessions, GiveTheSeedAndThePluginsFolder) {
  EXPECT_EQ(run("log-environment"), 0);
  EXPECT_THAT(out, HasSubstr("no time base\n" +
                             std::filesystem::path(options.pluginPath).parent_path().string() + "\n"));
  options.seed = 42;
  options.pluginsFolder = files.folder.path() + "/";
  EXPECT_EQ(run("log-environment"), 0);
  EXPECT_THAT(out, HasSubstr("42\n" + files.folder.path() + "\n"));
}

TEST_F(Sessions, RefuseAPluginsFolderThatDoesNotExist) {
  options.pluginsFolder = files.folder / "absent";
  EXPECT_EQ(run("nothing"), 2);
  EXPECT_EQ(err, "tavmap: There is no plug-ins folder " + (files.folder / "absent") +
                     ". Check --plugins-folder.\n");
}

TEST_F(Sessions, RefuseAVtcWithoutAnAnatomy) {
  options.vtcPath = files.vtc();
  EXPECT_EQ(run("nothing"), 2);
  EXPECT_EQ(err,
            "tavmap: " + options.vtcPath + " needs an anatomy to be attached to. Give one with --anatomy.\n");
}

TEST_F(Sessions, NameAnInputThatCannotBeRead) {
  options.anatomyPath = files.folder / "absent.nii";
  EXPECT_EQ(run("nothing"), 2);
  EXPECT_THAT(err, HasSubstr("tavmap: " + options.anatomyPath + ": "));
}

TEST_F(Sessions, WriteTheLogFile) {
  options.logPath = files.folder / "host.log";
  EXPECT_EQ(run("log-warning"), 0);
  EXPECT_EQ(contentOf(options.logPath), "// ACT> WARNING: nothing to worry about\n");
  options.logPath = "/dev/full";
  EXPECT_EQ(run("log-warning"), 1);
  EXPECT_EQ(err, "tavmap: The log file /dev/full could not be written to its end; check the free space.\n");
}

TEST_F(Sessions, SumUpTheMapsThatWereSaved) {
  options.anatomyPath = files.anatomy();
  options.voisPath = files.vois();
  EXPECT_EQ(run("write-map", "save maps.tav"), 0);
  EXPECT_THAT(out, HasSubstr("Map sets written:\n  " + (files.folder / "maps.tav") + "\n"));
  EXPECT_THAT(out, HasSubstr("1 voxel above 3\n    peak: -4 at cell (1, 1, 1), "));
}

TEST_F(Sessions, FailWhenTheMapsCannotBeWritten) {
  options.anatomyPath = files.anatomy();
  std::filesystem::create_directory(files.folder / "maps.tav");
  EXPECT_EQ(run("write-map", "save maps.tav"), 1);
  EXPECT_THAT(out, HasSubstr("ERROR: " + (files.folder / "maps.tav") + ": "));
  EXPECT_EQ(err, "tavmap: The run reported errors; its log says which.\n");
}

TEST(HostVersions, AreThreeNumbers) {
  const std::optional<host::HostVersion> version = host::parseVersion("2.10.0");
  ASSERT_TRUE(version.has_value());
  EXPECT_EQ(version->minor, 10);
  for (const std::string bad : {"", "2", "2.1", "2.1.0.1", "2.1.x", "v2.1.0", "2.1.0 "})
    EXPECT_FALSE(host::parseVersion(bad).has_value()) << bad;
}

}  // namespace
