#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "host/exports.h"
#include "tests/fakes/vtc_file.h"
#include "tests/host/active_run.h"
#include "tests/host/sample_workspace.h"

namespace {

using host_test::ActiveRun;
using host_test::complaintAbout;
using host_test::SampleFiles;
using testing::HasSubstr;

struct VtcOperations : testing::Test {
  SampleFiles files;
  ActiveRun active;
  void SetUp() override { host_test::openSample(files, active.workspace); }

  static VTC_Header header() {
    VTC_Header header{};
    zqGetVTCOfCurrentVMR(&header);
    return header;
  }
};

TEST_F(VtcOperations, GiveTheHeaderOfTheLinkedVtc) {
  EXPECT_GT(header().dataOffset, 0);
  EXPECT_EQ(header().nrOfVolumes, host_test::kSampleVolumes);
  EXPECT_EQ(header().tr, host_test::kSampleTrMs);
  EXPECT_EQ(header().zEnd, host_test::kSampleZ);
  VTC_Header same{};
  EXPECT_EQ(zqGetHeaderOfVTCOfCurrentVMR(&same), 1);
  EXPECT_EQ(same.dataOffset, header().dataOffset);
}

TEST_F(VtcOperations, MakeTheProtocolOfAReturnedHeaderCurrent) {
  VTC_Header changed = header();
  std::strcpy(changed.protocolName, files.events().c_str());
  ASSERT_EQ(zqSetVTCParametersOfCurrentVMR(&changed), 1);
  Protocol_Header protocol{};
  ASSERT_EQ(zqGetProtocol(&protocol), 1);
  EXPECT_EQ(protocol.timeResolution, kProtocolInMilliseconds);
  EXPECT_EQ(header().protocolName, files.events());
  EXPECT_EQ(header().nrOfLinkedProtocols, 1);
}

TEST_F(VtcOperations, UnlinkTheProtocolWhenTheReturnedHeaderNamesNone) {
  VTC_Header changed = header();
  std::strcpy(changed.protocolName, files.events().c_str());
  ASSERT_EQ(zqSetVTCParametersOfCurrentVMR(&changed), 1);
  changed.protocolName[0] = '\0';
  ASSERT_EQ(zqSetVTCParametersOfCurrentVMR(&changed), 1);
  EXPECT_EQ(header().nrOfLinkedProtocols, 0);
  EXPECT_STREQ(header().protocolName, "");
  Protocol_Header protocol{};
  EXPECT_EQ(zqGetProtocol(&protocol), 0);
}

TEST_F(VtcOperations, LeaveNoProtocolWhenTheNewOneCannotBeRead) {
  VTC_Header changed = header();
  std::strcpy(changed.protocolName, (files.folder / "absent.prt").c_str());
  EXPECT_EQ(zqSetVTCParametersOfCurrentVMR(&changed), 0);
  EXPECT_THAT(active.log.str(), HasSubstr("ERROR: " + (files.folder / "absent.prt")));
  Protocol_Header protocol{};
  EXPECT_EQ(zqGetProtocol(&protocol), 0);
}

TEST_F(VtcOperations, KeepAnEditedProtocolWhenTheHeaderComesBackUnchanged) {
  ASSERT_EQ(zqAddProtocolConditionInterval(0, 8, 9), 1);
  VTC_Header same = header();
  ASSERT_EQ(zqSetVTCParametersOfCurrentVMR(&same), 1);
  ProtocolCondition_Header condition{};
  zqGetProtocolCondition(0, &condition);
  EXPECT_EQ(condition.nrOfIntervals, 2);
}

TEST_F(VtcOperations, TakeAChangedRepetitionTime) {
  VTC_Header changed = header();
  changed.tr = 1500;
  ASSERT_EQ(zqSetHeaderOfVTCOfCurrentVMR(&changed), 1);
  EXPECT_EQ(header().tr, 1500);
}

// "Not known": the plug-in then asks for volumes.
TEST_F(VtcOperations, TakeARepetitionTimeOf0) {
  VTC_Header changed = header();
  changed.tr = 0;
  ASSERT_EQ(zqSetHeaderOfVTCOfCurrentVMR(&changed), 1);
  EXPECT_EQ(header().tr, 0);
}

// A box of resolution 3 that starts at (57, 52, 59): every coordinate of a cell finds it.
TEST_F(VtcOperations, CountCoordinatesFromTheStartOfTheBox) {
  fakes::VtcSpec spec;
  spec.xEnd = spec.xStart + 6, spec.yEnd = spec.yStart + 9, spec.zEnd = spec.zStart + 6;
  spec.nrOfVolumes = 2;
  spec.nrOfLinkedProtocols = 0;
  spec.protocolName = "";
  std::vector<float> courses;
  for (std::size_t cell = 0; cell < spec.nrOfVoxels(); ++cell)
    courses.insert(courses.end(), {static_cast<float>(cell), 500.0F});
  fakes::writeVtc(files.folder / "box.vtc", spec, courses);
  ASSERT_EQ(zqLinkVTCToCurrentVMR((files.folder / "box.vtc").c_str(), 0), 1);
  float values[2] = {};
  EXPECT_EQ(zqGetVoxelCoordsTimeCourseOfVTC(0, 57, 52, 59, values), 2);
  EXPECT_EQ(values[0], 0.0F);
  EXPECT_EQ(zqGetVoxelCoordsTimeCourseOfVTC(0, 60, 52, 59, values), 2);
  EXPECT_EQ(values[0], 1.0F);
  EXPECT_EQ(zqGetVoxelCoordsTimeCourseOfVTC(0, 57, 57, 59, values), 2);
  EXPECT_EQ(values[0], 2.0F);
  EXPECT_EQ(zqGetVoxelCoordsTimeCourseOfVTC(0, 59, 54, 64, values), 2);
  EXPECT_EQ(values[0], 6.0F);
  EXPECT_EQ(values[1], 500.0F);
}

TEST_F(VtcOperations, GiveTimeCoursesByVoxelAndByCoordinates) {
  float values[host_test::kSampleVolumes] = {};
  EXPECT_EQ(zqGetVoxelTimeCourseOfVTC(0, 5, values), host_test::kSampleVolumes);
  EXPECT_EQ(values[0], 1050.0F);
  EXPECT_EQ(values[11], 1061.0F);
  for (int z = 0; z < host_test::kSampleZ; ++z) {
    for (int y = 0; y < host_test::kSampleY; ++y) {
      for (int x = 0; x < host_test::kSampleX; ++x) {
        const int cell = (z * host_test::kSampleY + y) * host_test::kSampleX + x;
        EXPECT_EQ(zqGetVoxelCoordsTimeCourseOfVTC(0, x, y, z, values), host_test::kSampleVolumes);
        EXPECT_EQ(values[0], 1000.0F + 10.0F * static_cast<float>(cell)) << x << " " << y << " " << z;
      }
    }
  }
}

TEST_F(VtcOperations, GiveTimeCoursesOverSeveralVtcs) {
  ASSERT_EQ(zqAddVTCRefForMultiVTCAnalysis(files.vtc("run2.vtc").c_str()), 1);
  float values[2 * host_test::kSampleVolumes] = {};
  EXPECT_EQ(zqGetVoxelTimeCourseOfVTCs(5, values), 2 * host_test::kSampleVolumes);
  EXPECT_EQ(values[host_test::kSampleVolumes], 1050.0F);
  EXPECT_EQ(zqGetVoxelCoordsTimeCourseOfVTCs(0, 0, 0, values), 2 * host_test::kSampleVolumes);
  EXPECT_EQ(values[2 * host_test::kSampleVolumes - 1], 1011.0F);
  EXPECT_EQ(zqGetVoxelTimeCourseOfVTC(1, 0, values), host_test::kSampleVolumes);
  ASSERT_EQ(zqClearMultiVTCAnalysis(), 1);
  EXPECT_EQ(zqGetVoxelTimeCourseOfVTCs(5, values), host_test::kSampleVolumes);
}

TEST_F(VtcOperations, LinkAnotherVtc) {
  ASSERT_EQ(zqLinkVTCToCurrentVMR(files.vtc("run2.vtc").c_str(), 0), 1);
  EXPECT_EQ(active.workspace.vtc()->path, files.folder / "run2.vtc");
}

TEST_F(VtcOperations, SayHowANiftiSeriesBecomesAVtc) {
  EXPECT_EQ(zqLinkVTCToCurrentVMR("run1.nii.gz", 0), 0);
  EXPECT_THAT(active.log.str(),
              HasSubstr("ERROR: run1.nii.gz: this is a NIfTI series, a VTC is needed. Make one "
                        "with \"tavmap convert run1.nii.gz NAME.vtc\""));
  EXPECT_EQ(active.workspace.vtc()->path, files.folder / "run1.vtc");
}

TEST(VtcOperationsWithoutAVtc, GiveMinusOneInTheFirstField) {
  ActiveRun active;
  VTC_Header header{};
  EXPECT_EQ(zqGetVTCOfCurrentVMR(&header), 0);
  EXPECT_EQ(header.dataOffset, -1);
}

void sample(host::Workspace& workspace) {
  const SampleFiles files;
  host_test::openSample(files, workspace);
}
void nothing(host::Workspace&) {}

template <typename Change>
std::string complaintAfter(Change change) {
  return complaintAbout(sample, [&] {
    VTC_Header header{};
    zqGetVTCOfCurrentVMR(&header);
    change(header);
    zqSetVTCParametersOfCurrentVMR(&header);
  });
}

TEST(VtcMisuse, IsNamed) {
  VTC_Header header{};
  float values[host_test::kSampleVolumes];
  EXPECT_EQ(complaintAbout(nothing, [] { zqGetVTCOfCurrentVMR(nullptr); }),
            "zqGetVTCOfCurrentVMR: the header is a null pointer");
  EXPECT_EQ(complaintAbout(nothing, [&] { zqSetVTCParametersOfCurrentVMR(&header); }),
            "zqSetVTCParametersOfCurrentVMR: no VTC is linked");
  EXPECT_EQ(complaintAbout(nothing, [] { zqLinkVTCToCurrentVMR("a.vtc", 0); }),
            "zqLinkVTCToCurrentVMR: no anatomy is open");
  EXPECT_EQ(complaintAbout(sample, [&] { zqGetVoxelTimeCourseOfVTC(1, 0, values); }),
            "zqGetVoxelTimeCourseOfVTC: VTC 1 does not exist, there are 1");
  EXPECT_EQ(complaintAbout(sample, [&] { zqGetVoxelTimeCourseOfVTC(0, 24, values); }),
            "zqGetVoxelTimeCourseOfVTC: voxel 24 does not exist, there are 24");
  EXPECT_EQ(complaintAbout(sample, [&] { zqGetVoxelCoordsTimeCourseOfVTC(0, 0, -1, 0, values); }),
            "zqGetVoxelCoordsTimeCourseOfVTC: the coordinate y is outside the VTC");
  EXPECT_EQ(complaintAbout(sample, [&] { zqGetVoxelCoordsTimeCourseOfVTC(0, 0, 0, 2, values); }),
            "zqGetVoxelCoordsTimeCourseOfVTC: cell 2 does not exist, there are 2");
}

TEST(VtcMisuse, NoticesAProtocolPathWithoutItsEnd) {
  EXPECT_EQ(complaintAfter([](VTC_Header& header) {
              std::memset(header.protocolName, 'x', sizeof header.protocolName);
            }),
            "zqSetVTCParametersOfCurrentVMR: the protocol path does not end within its 261 bytes");
}

TEST(VtcMisuse, RefusesAChangedGrid) {
  EXPECT_EQ(
      complaintAfter([](VTC_Header& header) { header.xEnd = 100; }),
      "zqSetVTCParametersOfCurrentVMR: the box, the resolution and the number of volumes cannot be changed");
  EXPECT_EQ(complaintAfter([](VTC_Header& header) { header.tr = -1; }),
            "zqSetVTCParametersOfCurrentVMR: the repetition time is negative");
}

}  // namespace
