// From planted influences to a verdict: tavmap simulate, a scripted session, tavmap recover.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/scratch.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

struct SimulateRecover : testing::Test {
  Scratch folder;

  SimulateRecover() { std::filesystem::create_directories(folder.path()); }

  [[nodiscard]] ProgramResult tavmap(const std::vector<std::string>& arguments) const {
    return ::tavmap(arguments, folder.path());
  }
  void simulate(std::vector<std::string> more = {}) const {
    more.insert(more.begin(), {"simulate", "sim"});
    const ProgramResult finished = tavmap(more);
    ASSERT_EQ(finished.exitCode, 0) << finished.err;
  }
  void runSession(const std::string& script) const {
    const ProgramResult finished =
        tavmap({"host", TAVMAP_PLUGIN, "--anatomy", "sim/anatomy.nii.gz", "--vtc", "sim/run-1.vtc", "--vois",
                "sim/dseg.nii.gz", "--script", "sim/" + script, "--seed", "1", "--quiet"});
    ASSERT_EQ(finished.exitCode, 0) << finished.err;
  }
  [[nodiscard]] ProgramResult recover(std::vector<std::string> more = {},
                                      const std::string& maps = "sim_Reference") const {
    more.insert(more.begin(),
                {"recover", "sim/maps/" + maps + ".tav", "sim/truth.json", "--labels", "sim/dseg.nii.gz"});
    return tavmap(more);
  }
};

TEST_F(SimulateRecover, WholeRunsShowWhatWasPlanted) {
  simulate();
  runSession("answers.txt");
  const ProgramResult finished = recover();
  EXPECT_EQ(finished.exitCode, 0) << finished.err;
  EXPECT_THAT(finished.out,
              AllOf(HasSubstr("Condition \"whole\""), HasSubstr("planted influences are recovered."),
                    Not(HasSubstr("NOT AS PLANTED"))));
}

TEST_F(SimulateRecover, DataWithoutInfluencesAreNotTakenForRecovered) {
  simulate({"--strength", "0"});
  runSession("answers.txt");
  const ProgramResult finished = recover({"--json"});
  EXPECT_EQ(finished.exitCode, 1);
  EXPECT_THAT(finished.out, HasSubstr("\"recovered\": false"));
  EXPECT_EQ(finished.err, "tavmap: condition \"whole\" does not show what was planted\n");
}

TEST_F(SimulateRecover, ProtocolScriptGivesMapsOfTheBlocks) {
  simulate({"--grid", "16,16,16"});
  runSession("answers-protocol.txt");
  EXPECT_THAT(recover({}, "sim-faces_Reference").out, HasSubstr("Condition \"faces\""));
}

TEST_F(SimulateRecover, MissingThresholdOrConditionIsWrongUsage) {
  simulate({"--grid", "16,16,16"});
  runSession("answers.txt");
  const ProgramResult threshold = recover({"--q", "0.2"});
  EXPECT_EQ(threshold.exitCode, 2);
  EXPECT_EQ(threshold.err,
            "tavmap: sim/maps/sim_Reference.tav: there is no threshold \"thres q=0.200\". Give the maps of "
            "this data "
            "set, a condition and a q that they have.\n");
  const ProgramResult condition = recover({"--condition", "rest"});
  EXPECT_EQ(condition.exitCode, 2);
  EXPECT_THAT(condition.err, HasSubstr("there is no map \"rest: Ref2Vox\""));
}

TEST_F(SimulateRecover, ImpossibleDataSetIsWrongUsageAndNothingIsWritten) {
  const ProgramResult finished = tavmap({"simulate", "sim", "--volumes", "10"});
  EXPECT_EQ(finished.exitCode, 2);
  EXPECT_EQ(finished.err, "tavmap: cannot simulate this: the number of volumes must be from 70 to 30000\n");
  EXPECT_FALSE(std::filesystem::exists(folder.file("sim")));
}

}  // namespace
