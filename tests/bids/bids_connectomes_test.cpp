// `tavmap bids --connectomes`.
#include "tests/bids/bids_command_fixture.h"

namespace {

namespace fs = std::filesystem;

const std::string kMapOfFirst =
    "sub-01_task-blocks_space-MNI_seed-A_contrast-wholeRef2Vox_stat-effect_statmap";

TEST_F(BidsCommand, MakesConnectomesBesideMapsAndLinksThem) {
  extra_ = "[connectome]\nsurrogates = 100\n";
  const ProgramResult result = run({"--labels", "A", "B", "--connectomes", "also"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(fs::exists(out() / "sub-01/func" / (kMapOfFirst + ".nii.gz")));
  const std::string index = contentOf(out() / "index.html");
  for (const char* prefix :
       {"sub-01/func/sub-01_task-blocks_space-MNI", "sub-02/func/sub-02_task-blocks_run-1_space-MNI"}) {
    const std::string page = std::string(prefix) + "_connectome.html";
    EXPECT_TRUE(fs::exists(out() / page)) << page;
    EXPECT_TRUE(fs::exists(out() / (std::string(prefix) + "_connectome.json")));
    EXPECT_NE(index.find("href=\"" + page + "\""), std::string::npos) << page;
    EXPECT_NE(result.out.find(page), std::string::npos) << result.out;
  }
}

TEST_F(BidsCommand, MakesConnectomesAlone) {
  extra_ = "[connectome]\nsurrogates = 100\n";
  const ProgramResult result =
      run({"--labels", "A", "B", "--participant-label", "02", "--connectomes", "only", "--no-report"});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const std::string begin = "sub-02/func/sub-02_task-blocks_run-1_space-MNI";
  EXPECT_TRUE(fs::exists(out() / (begin + "_connectome.json")));
  EXPECT_FALSE(fs::exists(out() / (begin + "_connectome.html")));
  EXPECT_FALSE(fs::exists(out() / (begin + "_seed-A_tavmap.json")));
}

TEST_F(BidsCommand, AConnectomeThatCannotBeMadeStopsNoOther) {
  const ProgramResult result = run({"--labels", "A", "--connectomes", "only"});
  EXPECT_EQ(result.exitCode, 1);
  for (const char* who : {"sub-01", "sub-02"})
    EXPECT_NE(result.err.find(who), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("a connectome needs two references or more"), std::string::npos) << result.err;
}

TEST_F(BidsCommand, RefusesConnectomesOnACluster) {
  const ProgramResult result =
      run({"--labels", "A", "B", "--connectomes", "also", "--scheduler", "slurm", "--dry-run"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("--connectomes cannot be given with --scheduler"), std::string::npos)
      << result.err;
}

}  // namespace
