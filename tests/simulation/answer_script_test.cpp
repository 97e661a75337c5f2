#include "simulation/answer_script.h"

#include <gtest/gtest.h>

#include "simulation/block_design.h"

namespace {

using simulation::SessionRun;

const std::vector<SessionRun> kRuns = {{"run-1.vtc", "run-1.prt", 160, simulation::blockDesign(1, 160)},
                                       {"run-2.vtc", "run-2.prt", 100, simulation::blockDesign(2, 100)}};

TEST(AnswerScript, WholeRunsAreTypedFromFirstToLastVolume) {
  EXPECT_EQ(simulation::wholeRunAnswers(kRuns, "maps/sim"),
            "# reference: the first VOI, then stop\ninteger 1\ninteger 0\n"
            "# intervals: typed, one per VTC\ninteger 1\n"
            "# a condition\ntext whole\n"
            "open run-1.vtc\ninteger 1\ninteger 160\n"
            "open run-2.vtc\ninteger 1\ninteger 100\n"
            "# no more VTCs, no more conditions, where the results go\ncancel\ntext\nsave maps/sim\n");
}

TEST(AnswerScript, ProtocolConditionsAreChosenByTheirNumberInEachRun) {
  EXPECT_EQ(simulation::protocolAnswers(kRuns, "faces", "maps/sim-faces"),
            "# reference: the first VOI, then stop\ninteger 1\ninteger 0\n"
            "# intervals: of a protocol condition\ninteger 2\n"
            "# a condition\ntext faces\n"
            "open run-1.vtc\nopen run-1.prt\ninteger 1\n"
            "open run-2.vtc\nopen run-2.prt\ninteger 2\n"
            "# no more VTCs, no more conditions, where the results go\ncancel\ntext\nsave maps/sim-faces\n");
}

}  // namespace
