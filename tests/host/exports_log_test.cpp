#include <dlfcn.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "host/exports.h"
#include "tests/host/active_run.h"

namespace {

using host_test::ActiveRun;
using host_test::complaintAbout;

void nothing(host::Workspace&) {}

TEST(HostOperations, TellTheVersion) {
  ActiveRun active;
  int major = 0, minor = 0, patch = 0;
  EXPECT_EQ(zqGetVersionOfCorvaneZQ(&major, &minor, &patch), 1);
  EXPECT_EQ(major, 2);
  EXPECT_EQ(minor, 3);
  EXPECT_EQ(patch, 4);
}

TEST(HostOperations, TellTheFoldersWithoutASlashAtTheEnd) {
  ActiveRun active;
  char path[4096];
  EXPECT_EQ(zqGetPluginsPath(path), 1);
  EXPECT_STREQ(path, "/opt/host/plugins");
  EXPECT_EQ(zqGetCorvaneZQPath(path), 1);
  EXPECT_STREQ(path, "/opt/host");
}

TEST(HostOperations, AppendToTheLog) {
  ActiveRun active;
  zqShowLogPane();
  zqShowLogTab();
  zqLogText("<b>LH-V1</b>");
  EXPECT_EQ(active.log.str(), "LH-V1\n");
}

TEST(HostOperations, RefuseNullPointers) {
  int number = 0;
  EXPECT_EQ(complaintAbout(nothing, [] { zqLogText(nullptr); }), "zqLogText: the text is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetPluginsPath(nullptr); }),
            "zqGetPluginsPath: the path buffer is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetCorvaneZQPath(nullptr); }),
            "zqGetCorvaneZQPath: the path buffer is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [&] { zqGetVersionOfCorvaneZQ(&number, nullptr, &number); }),
            "zqGetVersionOfCorvaneZQ: the minor version is a null pointer");
}

TEST(HostOperations, KeepEndingARunThatHasEnded) {
  ActiveRun active;
  EXPECT_EQ(host_test::endingOf([] { zqLogText(nullptr); }).exitCode, host::kExitFailed);
  const auto again = host_test::endingOf([] { zqLogText("still here"); });
  EXPECT_EQ(again.message,
            "The plug-in misused the host and was stopped: zqLogText: the text is a null pointer");
  EXPECT_EQ(active.log.str().find("still here"), std::string::npos);
}

TEST(HostOperations, DoNotThrowWhileAnExceptionPasses) {
  struct CallsTheHost {
    ~CallsTheHost() { result = zqGetPluginsPath(nullptr); }
    int& result;
  };
  ActiveRun active;
  int result = 7;
  EXPECT_THROW(
      {
        const CallsTheHost cleanUp{result};
        throw std::runtime_error("passing");
      },
      std::runtime_error);
  EXPECT_EQ(result, 0);
  EXPECT_TRUE(active.run.ended().has_value());
}

TEST(HostOperations, NeedAnActiveRun) {
  EXPECT_THROW(zqShowLogTab(), std::logic_error);
}

TEST(ExportedOperations, AreFoundByNameInTheRunningProgram) {
  EXPECT_GT(host::exportedOperations().size(), 50U);
  for (const host::ExportedOperation& operation : host::exportedOperations())
    EXPECT_EQ(dlsym(RTLD_DEFAULT, std::string(operation.name).c_str()), operation.address) << operation.name;
}

TEST(ExportedOperations, AreAllThatAPluginFinds) {
  std::size_t found = 0;
#define ZQ_OPERATION(result, name, parameters, arguments) \
  found += dlsym(RTLD_DEFAULT, #name) != nullptr ? 1U : 0U;
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION
  EXPECT_EQ(found, host::exportedOperations().size());
}

}  // namespace
