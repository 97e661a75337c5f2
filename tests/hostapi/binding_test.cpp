// Which symbols InitZQAccess() looks up, in which order, and what it makes of missing ones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "tests/hostapi/fake_loader.h"

namespace static_intf {
bool InitZQAccess();
}

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* kVersionOperation = "zqGetVersionOfCorvaneZQ";

void bindWithout(const std::string& operation) {
  fakes::loader() = fakes::completeLoader();
  fakes::loader().symbols.erase(operation);
}

TEST(OperationTable, Has149DifferentOperations) {
  auto names = fakes::operationNames();
  EXPECT_EQ(names.size(), 149U);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
}

// Families of the table by their first and last operations, counted from 0.
TEST(OperationTable, KeepsItsOrder) {
  const auto names = fakes::operationNames();
  const std::vector<std::pair<std::size_t, std::string>> landmarks = {{0, kVersionOperation},
                                                                      {5, "zqLogText"},
                                                                      {6, "zqMessageBox"},
                                                                      {15, "zqStopBusyCursor"},
                                                                      {16, "zqGetNumberOfDocsInWorkspace"},
                                                                      {21, "zqCalculateIAMatrix"},
                                                                      {23, "zqGetHeaderOfCurrentFMR"},
                                                                      {32, "zqGetHeaderOfCurrentDMR"},
                                                                      {40, "zqGetCurrentVMR"},
                                                                      {49, "zqGetNRVMPsOfCurrentVMR"},
                                                                      {56, "zqSetNRVMPsParamsDisplayRange"},
                                                                      {57, "zqGetARVMPsOfCurrentVMR"},
                                                                      {64, "zqLinkVTCToCurrentVMR"},
                                                                      {79, "zqGetGLMOfCurrentVMR"},
                                                                      {82, "zqGetScene"},
                                                                      {108, "zqClearProtocol"},
                                                                      {116, "zqClearDesignMatrix"},
                                                                      {128, "zqLoadVOIs"},
                                                                      {136, "zqGetStringParameter"},
                                                                      {142, "zqGetDlgStringParameter"},
                                                                      {148, "zqLaunchICADialog"}};
  for (const auto& [position, name] : landmarks) EXPECT_EQ(names.at(position), name) << position;
}

TEST(Binding, LooksUpTheVersionFirstAndThenTheWholeTableInOrder) {
  fakes::loader() = fakes::completeLoader();
  ASSERT_TRUE(InitZQAccess());
  EXPECT_THAT(fakes::loader().openings, ElementsAre("<executable> lazy"));
  ASSERT_FALSE(fakes::loader().lookups.empty());
  EXPECT_EQ(fakes::loader().lookups.front(), kVersionOperation);
  EXPECT_THAT(fakes::loader().lookups, ElementsAreArray(fakes::operationNames()));
}

TEST(Binding, IsTheSameThroughItsNamespace) {
  fakes::loader() = fakes::completeLoader();
  EXPECT_TRUE(static_intf::InitZQAccess());
  fakes::loader().canOpenExecutable = false;
  EXPECT_FALSE(static_intf::InitZQAccess());
}

TEST(Binding, FailsWithoutAnExecutableHandle) {
  fakes::loader() = fakes::completeLoader();
  fakes::loader().canOpenExecutable = false;
  EXPECT_FALSE(InitZQAccess());
  EXPECT_THAT(fakes::loader().lookups, IsEmpty());
}

TEST(Binding, WithoutTheVersionSymbolBindsNothing) {
  bindWithout(kVersionOperation);
  EXPECT_FALSE(InitZQAccess());
  EXPECT_THAT(fakes::loader().lookups, ElementsAre(kVersionOperation));
}

TEST(Binding, GoesOnWithoutALaterSymbol) {
  bindWithout("zqLogText");
  EXPECT_TRUE(InitZQAccess());
  EXPECT_THAT(fakes::loader().lookups, ElementsAreArray(fakes::operationNames()));
}

TEST(BindingDeathTest, AMissingLaterSymbolIsNullUntilItIsCalled) {
  bindWithout("zqShowLogTab");
  ASSERT_TRUE(InitZQAccess());
  EXPECT_DEATH(zqShowLogTab(), "");
}

}  // namespace
