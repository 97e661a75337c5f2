#include "host/workspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/file_error.h"
#include "formats/image.h"
#include "formats/vtc_sidecar.h"
#include "host/map_files.h"
#include "tests/host/sample_workspace.h"

namespace {

using host::Workspace;
using host_test::SampleFiles;
using testing::ElementsAre;
using testing::HasSubstr;

template <typename Call>
std::string errorOf(Call call) {
  try {
    call();
  } catch (const formats::FileError& error) {
    return error.what();
  }
  return {};
}

// A label image of the sample's grid (or another one): voxel 0 is label 1, voxel 5 label 7.
std::string labelImage(const SampleFiles& files, int x = host_test::kSampleX) {
  std::string bytes = host_test::niftiBytes(x, host_test::kSampleY, host_test::kSampleZ);
  bytes[352] = 1;
  bytes[357] = 7;
  return files.folder.write("dseg.nii", bytes);
}

TEST(Workspace, TakesNamesFromTheTableBesideALabelImage) {
  const SampleFiles files;
  Workspace workspace;
  workspace.openAnatomy(files.anatomy());
  files.folder.write("dseg.tsv", "index\tname\n1\tLH-V1\n7\tRH-V1\n");
  EXPECT_THAT(workspace.loadVois(labelImage(files), ""), ElementsAre());
  ASSERT_EQ(workspace.vois()->vois.size(), 2U);
  EXPECT_EQ(workspace.vois()->vois[0].name, "LH-V1");
  EXPECT_THAT(workspace.vois()->vois[1].coordinates, ElementsAre(1, 1, 0));
}

TEST(Workspace, RemarksOnLabelsWithoutANameAndNamesWithoutALabel) {
  const SampleFiles files;
  Workspace workspace;
  const std::string image = labelImage(files);
  const std::string table = files.folder.write("names.tsv", "index\tname\n1\tLH-V1\n3\tgone\n");
  EXPECT_THAT(workspace.loadVois(image, table),
              ElementsAre("WARNING: label 7 of " + image + " has no name in its table",
                          "WARNING: label 3 (gone) has no voxel in " + image));
  EXPECT_EQ(workspace.vois()->vois[1].name, "label-7");
}

TEST(Workspace, RefusesALabelImageThatIsNotOnTheAnatomysGrid) {
  const SampleFiles files;
  Workspace workspace;
  workspace.openAnatomy(files.anatomy());
  EXPECT_THAT(errorOf([&] { workspace.loadVois(labelImage(files, 5), ""); }), HasSubstr("5 x 3 x 2"));
  EXPECT_EQ(workspace.vois(), nullptr);
}

formats::VtcSidecar sidecarOfSample(double xOrigin) {
  formats::VtcSidecar sidecar;
  sidecar.affine.m = {2, 0, 0, xOrigin, 0, 2, 0, -20, 0, 0, 2, -30, 0, 0, 0, 1};
  sidecar.spaceCode = 4;
  sidecar.source = "bold.nii.gz";
  sidecar.trMs = host_test::kSampleTrMs;
  return sidecar;
}

TEST(Workspace, RefusesAnImportedSeriesThatLiesElsewhere) {
  const SampleFiles files;
  Workspace workspace;
  workspace.openAnatomy(files.anatomy());
  const std::string vtc = files.vtc();
  formats::writeVtcSidecar(vtc, sidecarOfSample(-14));
  EXPECT_THAT(errorOf([&] { workspace.linkVtc(vtc); }), HasSubstr(vtc));
  EXPECT_FALSE(workspace.vtc().has_value());
}

TEST(Workspace, PlacesTheBoxOfAnImportedSeriesAsItsSidecarSays) {
  const SampleFiles files;
  Workspace workspace;
  workspace.openAnatomy(files.anatomy());
  const std::string vtc = files.vtc();
  formats::writeVtcSidecar(vtc, sidecarOfSample(-10));
  workspace.linkVtc(vtc);
  const host::Place place = host::placeOf(host::boxOf(workspace.vtc()->header), workspace);
  EXPECT_EQ(place.spaceCode, 4);
  EXPECT_EQ(place.affine.at(0, 3), -10.0);
}

TEST(Workspace, SaysWhyAVtcCannotBeLinked) {
  const SampleFiles files;
  Workspace workspace;
  EXPECT_THAT(errorOf([&] { workspace.linkVtc(files.folder / "absent.vtc"); }),
              HasSubstr(files.folder / "absent.vtc"));
  const std::string cut = files.folder.write("cut.vtc", "\3");
  EXPECT_THAT(errorOf([&] { workspace.linkVtc(cut); }), HasSubstr(cut));
}

TEST(Workspace, NotesTheProtocolInTheLinkedVtc) {
  const SampleFiles files;
  Workspace workspace;
  host_test::openSample(files, workspace);
  EXPECT_EQ(workspace.vtc()->header.protocolName, files.folder / "volumes.tsv");
}

TEST(Workspace, KeepsItsProtocolWhenANewOneCannotBeRead) {
  const SampleFiles files;
  Workspace workspace;
  host_test::openSample(files, workspace);
  EXPECT_NE(errorOf([&] { workspace.loadProtocol(files.vois()); }), "");
  ASSERT_NE(workspace.protocol(), nullptr);
  EXPECT_EQ(workspace.protocol()->conditions.size(), 2U);
}

TEST(Workspace, ReadsTimeCoursesOfWholeNumbersToo) {
  const SampleFiles files;
  Workspace workspace;
  workspace.linkVtc(files.vtc());
  ASSERT_NE(workspace.vtc()->header.dataType, kVtcFloatData);
  std::vector<float> values;
  host::appendTimeCourse(*workspace.vtc(), 23, values);
  ASSERT_EQ(values.size(), std::size_t{host_test::kSampleVolumes});
  EXPECT_EQ(values[3], 1233.0F);
}

}  // namespace
