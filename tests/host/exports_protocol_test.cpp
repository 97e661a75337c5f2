#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "host/exports.h"
#include "tests/host/active_run.h"
#include "tests/host/sample_workspace.h"

namespace {

using host_test::ActiveRun;
using host_test::complaintAbout;
using host_test::SampleFiles;
using testing::HasSubstr;

TEST(ProtocolOperations, GiveConditionsInVolumes) {
  const SampleFiles files;
  ActiveRun active;
  ASSERT_EQ(zqLoadProtocol(files.volumeTable().c_str()), 1);
  Protocol_Header header{};
  ASSERT_EQ(zqGetProtocol(&header), 1);
  EXPECT_EQ(header.nrOfConditions, 2);
  EXPECT_EQ(header.timeResolution, kProtocolInVolumes);
  EXPECT_STREQ(header.experimentName, "volumes");
  EXPECT_EQ(header.fileName, files.folder / "volumes.tsv");
  ProtocolCondition_Header condition{};
  ASSERT_EQ(zqGetProtocolCondition(1, &condition), 1);
  EXPECT_STREQ(condition.name, "task");
  ASSERT_EQ(condition.nrOfIntervals, 1);
  EXPECT_EQ(condition.starts[0], 7);
  EXPECT_EQ(condition.ends[0], 12);
}

TEST(ProtocolOperations, GiveEventsInMillisecondsJoinedWithTheLinkedVtcsTr) {
  const SampleFiles files;
  ActiveRun active;
  host_test::openSample(files, active.workspace);
  ASSERT_EQ(zqLoadProtocol(files.events().c_str()), 1);
  Protocol_Header header{};
  ASSERT_EQ(zqGetProtocol(&header), 1);
  EXPECT_EQ(header.timeResolution, kProtocolInMilliseconds);
  ProtocolCondition_Header face{};
  ASSERT_EQ(zqGetProtocolCondition(0, &face), 1);
  EXPECT_STREQ(face.name, "face");
  ASSERT_EQ(face.nrOfIntervals, 1) << "events 1 s apart are one block at a TR of 2 s";
  EXPECT_EQ(face.starts[0], 0);
  EXPECT_EQ(face.ends[0], 5000);
}

TEST(ProtocolOperations, HaveNoneUntilOneIsLoaded) {
  ActiveRun active;
  Protocol_Header header{};
  header.nrOfConditions = 99;
  EXPECT_EQ(zqGetProtocol(&header), 0);
  EXPECT_EQ(header.nrOfConditions, 0);
}

TEST(ProtocolOperations, BuildAndSaveAProtocol) {
  const SampleFiles files;
  ActiveRun active;
  Protocol_Header header{};
  header.timeResolution = kProtocolInVolumes;
  std::strcpy(header.experimentName, "own");
  ASSERT_EQ(zqSetProtocol(&header), 1);
  ProtocolCondition_Header condition{};
  std::strcpy(condition.name, "all");
  ASSERT_EQ(zqAddProtocolCondition(&condition), 1);
  ASSERT_EQ(zqAddProtocolConditionInterval(0, 1, 10), 1);
  ASSERT_EQ(zqAddProtocolConditionInterval(0, 20, 30), 1);
  ASSERT_EQ(zqAddProtocolConditionInterval(0, 40, 40), 1) << "one volume is an interval";
  const std::string path = files.folder / "own.tsv";
  ASSERT_EQ(zqSaveProtocol(path.c_str()), 1);

  ASSERT_EQ(zqClearProtocol(), 1);
  EXPECT_EQ(zqGetProtocol(&header), 0);
  ASSERT_EQ(zqLoadProtocol(path.c_str()), 1);
  ASSERT_EQ(zqGetProtocolCondition(0, &condition), 1);
  EXPECT_STREQ(condition.name, "all");
  ASSERT_EQ(condition.nrOfIntervals, 3);
  EXPECT_EQ(condition.starts[1], 20);
  EXPECT_EQ(condition.ends[1], 30);
  EXPECT_EQ(condition.starts[2], 40);
  EXPECT_EQ(condition.ends[2], 40);
}

TEST(ProtocolOperations, ChangeNameFileAndTimeUnitOfTheProtocol) {
  const SampleFiles files;
  ActiveRun active;
  ASSERT_EQ(zqLoadProtocol(files.volumeTable().c_str()), 1);
  Protocol_Header header{};
  header.timeResolution = kProtocolInMilliseconds;
  std::strcpy(header.experimentName, "own");
  std::strcpy(header.fileName, "own.prt");
  ASSERT_EQ(zqSetProtocol(&header), 1);
  Protocol_Header changed{};
  ASSERT_EQ(zqGetProtocol(&changed), 1);
  EXPECT_EQ(changed.timeResolution, kProtocolInMilliseconds);
  EXPECT_STREQ(changed.experimentName, "own");
  EXPECT_STREQ(changed.fileName, "own.prt");
  EXPECT_EQ(changed.nrOfConditions, 2) << "conditions stay";
}

TEST(ProtocolOperations, CopyTheIntervalsOfAnAddedCondition) {
  const SampleFiles files;
  ActiveRun active;
  ASSERT_EQ(zqLoadProtocol(files.volumeTable().c_str()), 1);
  std::int32_t starts[] = {3, 8}, ends[] = {5, 9};
  ProtocolCondition_Header condition{{}, 2, starts, ends};
  ASSERT_EQ(zqAddProtocolCondition(&condition), 1);
  starts[0] = 99;
  ASSERT_EQ(zqGetProtocolCondition(2, &condition), 1);
  EXPECT_EQ(condition.starts[0], 3);
  EXPECT_EQ(condition.ends[1], 9);
}

TEST(ProtocolOperations, LogAnErrorForAFileThatIsNoProtocol) {
  const SampleFiles files;
  ActiveRun active;
  EXPECT_EQ(zqLoadProtocol((files.folder / "absent.prt").c_str()), 0);
  EXPECT_THAT(active.log.str(), HasSubstr("ERROR: " + (files.folder / "absent.prt")));
  EXPECT_TRUE(active.pane.reportedFailure());
}

void sampleProtocol(host::Workspace& workspace) {
  workspace.loadProtocol(SampleFiles().volumeTable());
}
void nothing(host::Workspace&) {}

TEST(ProtocolMisuse, IsNamed) {
  ProtocolCondition_Header condition{};
  Protocol_Header header{};
  EXPECT_EQ(complaintAbout(nothing, [&] { zqGetProtocolCondition(0, &condition); }),
            "zqGetProtocolCondition: there is no protocol");
  EXPECT_EQ(complaintAbout(sampleProtocol, [&] { zqGetProtocolCondition(2, &condition); }),
            "zqGetProtocolCondition: condition 2 does not exist, there are 2");
  EXPECT_EQ(complaintAbout(sampleProtocol, [] { zqGetProtocolCondition(0, nullptr); }),
            "zqGetProtocolCondition: the header is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetProtocol(nullptr); }),
            "zqGetProtocol: the header is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [&] { zqSetProtocol(&header); }),
            "zqSetProtocol: the time resolution is neither 1 (volumes) nor 2 (milliseconds)");
  EXPECT_EQ(complaintAbout(sampleProtocol, [] { zqAddProtocolConditionInterval(0, 5, 4); }),
            "zqAddProtocolConditionInterval: the interval (5, 4) is inverted");
  condition.nrOfIntervals = 1;
  EXPECT_EQ(complaintAbout(sampleProtocol, [&] { zqAddProtocolCondition(&condition); }),
            "zqAddProtocolCondition: the array of starts is a null pointer");
  std::memset(condition.name, 'x', sizeof condition.name);
  EXPECT_EQ(complaintAbout(sampleProtocol, [&] { zqAddProtocolCondition(&condition); }),
            "zqAddProtocolCondition: the condition name does not end within its 256 bytes");
}

TEST(ProtocolMisuse, NoticesWritesBeyondTheIntervals) {
  EXPECT_EQ(complaintAbout(sampleProtocol,
                           [] {
                             ProtocolCondition_Header condition{};
                             zqGetProtocolCondition(0, &condition);
                             condition.starts[1] = 7;
                             zqGetProtocolCondition(0, &condition);
                           }),
            "zqGetProtocolCondition: intervals were written outside condition 0");
}

}  // namespace
