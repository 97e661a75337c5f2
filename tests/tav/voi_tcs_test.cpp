#include "tests/support/scratch.h"
#include "tests/tav/run_fixture.h"

using ::testing::ElementsAre;

namespace {

class VoiTcs : public RunTest {
 protected:
  // A file whose voxel (x, y, z) has the value 1000 + 100 z + 10 y + x + t.
  VoiTcs() {
    path = writeVtc("plain.vtc", spec, [](int x, int y, int z, int t) {
      return static_cast<float>(1000 + 100 * z + 10 * y + x + t);
    });
    pars = requestOn(spec);
    addCondition(pars, "rest", path, {{1, 4}});
  }

  // A reference of n times the voxel (1, 0, 1).
  void setVoi(int n) {
    voxels.clear();
    for (int i = 0; i < n; ++i) voxels.insert(voxels.end(), {1, 0, 1});
    pars.vois[0] = {"seed", 0, n, voxels.data(), 0};
  }

  int fetch() {
    computer.crdBufCapacity = 0;
    int status = computer.openVTCFiles(pars, errors);
    EXPECT_EQ(status, tav::kSuccess);
    return computer.prefetchVOITCs(pars, errors);
  }

  fakes::VtcSpec spec = fakes::cellGrid(2, 2, 2, 4);
  std::string path;
  tav::TAV_Pars pars;
  std::vector<std::int32_t> voxels;
  tav::Computer computer;
};

}  // namespace

TEST_F(VoiTcs, HoldTheMeanCourseAndRoomForTheModel) {
  setVoi(3);
  pars.arOrder = 2;
  ASSERT_EQ(fetch(), tav::kSuccess);
  const tav::VoiTc& voiTc = *computer.getFetchedVoiTc("seed", path);
  EXPECT_THAT(std::vector<float>(voiTc.tc[1] + 1, voiTc.tc[1] + 5),
              ElementsAre(1101.0F, 1102.0F, 1103.0F, 1104.0F));
  EXPECT_EQ(voiTc.arCoefs.n, 2);
  EXPECT_EQ(voiTc.surrogates.nRows, 20);
  EXPECT_EQ(voiTc.surrogates.nCols, 4);
}

TEST_F(VoiTcs, AreFetchedOncePerReferenceAndSource) {
  addCondition(pars, "again", path, {{1, 3}});
  pars.vois.push_back(pars.vois[0]);
  pars.vois.back().name = "other";
  ASSERT_EQ(fetch(), tav::kSuccess);
  ASSERT_EQ(computer.voiTcs.size(), 2U);
  EXPECT_EQ(computer.voiTcs[0]->voiName, "seed");
  EXPECT_EQ(computer.voiTcs[1]->voiName, "other");
  EXPECT_EQ(computer.getFetchedVoiTc("seed", "elsewhere.vtc"), nullptr);
  EXPECT_EQ(computer.getFetchedVoiTc("Seed", path), nullptr);
}

TEST_F(VoiTcs, ComeFromTheSourceOfAPair) {
  const std::string target = writeNoise("target.vtc", spec, 3);
  pars.conds[0].vtcIntvSets[0].trgVtcName = target;
  ASSERT_EQ(fetch(), tav::kSuccess);
  ASSERT_EQ(computer.voiTcs.size(), 1U);
  EXPECT_EQ(computer.voiTcs[0]->vtcName, path);
  EXPECT_EQ(computer.voiTcs[0]->tc[1][1], 1050.0F);
}

TEST_F(VoiTcs, GrowTheCoordinateBufferInStepsOf100) {
  const auto capacityAfter = [&](int n) {
    setVoi(n);
    EXPECT_EQ(computer.Init(pars, errors), tav::kSuccess);
    const auto capacity = computer.crdBufCapacity;
    computer.CleanUp();
    return capacity;
  };
  EXPECT_EQ(capacityAfter(1000), 1000);
  EXPECT_EQ(capacityAfter(1001), 1100);
  EXPECT_EQ(capacityAfter(1101), 1200);
}

TEST_F(VoiTcs, VoxelsOutsideTheBoxAreReportedAndLeftOut) {
  voxels = {1, 0, 1, 5, 0, 0, 0, -1, 0};
  pars.vois[0] = {"seed", 0, 3, voxels.data(), 0};
  ASSERT_EQ(fetch(), tav::kSuccess);
  EXPECT_EQ(computer.voiTcs[0]->tc[1][1], 1101.0F);
  EXPECT_EQ(errors.str(), "WARNING: 2 of 3 voxels of VOI 'seed' lie outside the bounding box of vtc '" +
                              path + "' and were left out\n");
}

TEST_F(VoiTcs, NoVoxelInsideTheBoxFails) {
  voxels = {5, 0, 0};
  pars.vois[0] = {"seed", 0, 1, voxels.data(), 0};
  EXPECT_EQ(fetch(), tav::kTerminalError);
  EXPECT_TRUE(computer.voiTcs.empty());
  EXPECT_EQ(errors.str(), "WARNING: 1 of 1 voxels of VOI 'seed' lie outside the bounding box of vtc '" +
                              path +
                              "' and were left out\n"
                              "Could not obtain time-course information from vtc-file for creation of a voi "
                              "time-course(internal error) for:\nvtc: " +
                              path + "\nvoi: seed\n");
}

TEST_F(VoiTcs, ATruncatedSourceFails) {
  const std::string bytes = contentOf(path);
  fakes::writeBytes(path, bytes.substr(0, bytes.size() - 3 * 8));
  setVoi(1);
  EXPECT_EQ(fetch(), tav::kTerminalError);
  EXPECT_THAT(errors.str(), ::testing::StartsWith("Could not read data from vtc '" + path +
                                                  "'\nThe file was corrupted (not of expected size) or made "
                                                  "inaccessible\nCould not obtain time-course information"));
}

TEST_F(VoiTcs, WithoutReferencesNothingIsFetched) {
  pars.vois.clear();
  EXPECT_EQ(fetch(), tav::kSuccess);
  EXPECT_TRUE(computer.voiTcs.empty());
}
