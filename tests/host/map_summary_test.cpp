#include "host/map_summary.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/fields.h"
#include "tests/host/sample_workspace.h"

namespace {

using host::MapSet;
using host::Workspace;
using host_test::SampleFiles;

struct MapSummaries : testing::Test {
  SampleFiles files;
  Workspace workspace;
  MapSet* maps = nullptr;

  void SetUp() override {
    host_test::openSample(files, workspace);
    maps = &workspace.createMaps({{0, 0, 0}, {4, 3, 2}, 1}, 1, 2);
    maps->setThresholdName(0, "thres q=0.010");
    maps->setThresholdName(1, "thres q=0.050");
    host::fillField("faces: dTAV", maps->maps()[0].header.name);
  }
  void set(std::size_t cell, float value) { maps->maps()[0].values.data()[cell] = value; }
  void setThresholds(float first, float second) {
    maps->maps()[0].thresholds.data()[0] = first;
    maps->maps()[0].thresholds.data()[1] = second;
    maps->maps()[0].header.lowerThreshold = first;
  }
};

TEST_F(MapSummaries, CountMagnitudesAboveEveryThresholdAndNameThePeak) {
  setThresholds(5, 2);
  set(1, -9);
  set(7, 5);
  set(8, 3);
  set(9, NAN);
  EXPECT_EQ(host::summaryText(*maps, workspace),
            "  faces: dTAV\n"
            "    thres q=0.010: 1 voxel above 5\n"
            "    thres q=0.050: 3 voxels above 2\n"
            "    peak: -9 at cell (1, 0, 0), (-8.0, -20.0, -30.0) mm in LH-V1\n");
}

TEST_F(MapSummaries, SayPlainlyThatNothingIsAbove) {
  setThresholds(4, 4);
  set(12, 4);
  EXPECT_EQ(host::summaryText(*maps, workspace),
            "  faces: dTAV\n"
            "    thres q=0.010: no voxel above 4\n"
            "    thres q=0.050: no voxel above 4\n"
            "    peak: 4 at cell (0, 0, 1), (-10.0, -20.0, -28.0) mm\n");
}

TEST_F(MapSummaries, CountFromTheDisplayThresholdWhereThereAreNoOthers) {
  setThresholds(0, 0);
  maps->maps()[0].header.lowerThreshold = 0.2F;
  set(23, 0.5F);
  set(2, 0.1F);
  EXPECT_EQ(host::summaryText(*maps, workspace),
            "  faces: dTAV\n"
            "    shown from: 1 voxel above 0.2\n"
            "    peak: 0.5 at cell (3, 2, 1), (-4.0, -16.0, -28.0) mm in RH-V1\n");
}

TEST_F(MapSummaries, SayThatAMapIsEmpty) {
  EXPECT_EQ(host::summaryText(*maps, workspace),
            "  faces: dTAV\n    shown from: no voxel above 0\n    peak: none, the map is empty\n");
}

}  // namespace
