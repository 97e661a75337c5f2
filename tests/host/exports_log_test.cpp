#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <vector>

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
  EXPECT_EQ(again.message, "The plug-in misused the host and was stopped: zqLogText: the text is a null pointer");
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

TEST(HostOperations, NeedAnActiveRun) { EXPECT_THROW(zqShowLogTab(), std::logic_error); }

TEST(ExportedOperations, HaveNoDoubles) {
  std::vector<std::string_view> names;
  for (const host::ExportedOperation& operation : host::exportedOperations()) names.push_back(operation.name);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
  EXPECT_GT(names.size(), 50U);
}

}  // namespace
