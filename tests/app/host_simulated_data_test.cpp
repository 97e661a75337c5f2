// Whole sessions on a simulated data set, with the answer scripts that come with it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "formats/map_set.h"
#include "tests/support/program.h"
#include "tests/support/scratch.h"

namespace {

struct SimulatedSession : testing::Test {
  Scratch folder;

  void SetUp() override {
    const ProgramResult made =
        tavmap({"simulate", "sim", "--grid", "16,18,12", "--volumes", "120"}, folder.path());
    ASSERT_EQ(made.exitCode, 0) << made.err;
    folder.write("TAVPlugin.ini", "NumSurrogateSimulations= 100\n");
  }
  ProgramResult session(const std::string& script) const {
    return tavmap({"host", TAVMAP_PLUGIN, "--anatomy", "sim/anatomy.nii.gz", "--vtc", "sim/run-1.vtc",
                   "--vois", "sim/dseg.nii.gz", "--plugins-folder", ".", "--seed", "5", "--script", script},
                  folder.path());
  }
};

std::size_t above(const formats::Map& map, float threshold) {
  return static_cast<std::size_t>(
      std::count_if(map.values.begin(), map.values.end(), [&](float value) { return value > threshold; }));
}

TEST_F(SimulatedSession, FindsVoxelsThatTheReferenceLeads) {
  const ProgramResult run = session("sim/answers.txt");
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  const formats::MapSet set = formats::loadMapSet(folder / "sim/maps/sim_Reference.tav");
  ASSERT_EQ(set.maps.size(), 6U);
  const formats::Map& ref2vox = set.maps[0];
  EXPECT_GT(ref2vox.thresholds[1], 0.0F);
  EXPECT_GT(above(ref2vox, ref2vox.thresholds[1]), 10U);
  EXPECT_NE(contentOf(folder / "sim/maps/sim_Reference.log"), "");
}

TEST_F(SimulatedSession, RunsOnTheProtocolsOfTheRuns) {
  const ProgramResult run = session("sim/answers-protocol.txt");
  ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_EQ(formats::loadMapSet(folder / "sim/maps/sim-faces_Reference.tav").maps.size(), 6U);
}

}  // namespace
