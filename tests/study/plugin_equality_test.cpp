// Method "plugin" gives the numbers of the plug-in, bit for bit.
#include <gtest/gtest.h>

#include <cstring>

#include "formats/map_set.h"
#include "tests/support/program.h"
#include "tests/support/scratch.h"
#include "tests/support/small_study.h"

namespace {

namespace fs = std::filesystem;

bool sameBits(const std::vector<float>& a, const std::vector<float>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

class PluginEquality : public ::testing::Test {
 protected:
  void SetUp() override { small_study::writeTo(folder()); }
  const fs::path& folder() const { return scratch_.folder(); }

  void runStudy(int order) {
    scratch_.write(
        "r.toml",
        "prefix = 'small'\nseed = 31\n[settings]\nmethod = 'plugin'\norder = " + std::to_string(order) +
            "\nsurrogates = 50\ndiscarded_time_points = 20\n"
            "[[run]]\nname = 'run1'\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\n"
            "[[run]]\nname = 'run2'\nbold = 'bold2.nii.gz'\nmask = 'mask.nii.gz'\n"
            "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = 'all'\n"
            "[[condition]]\nname = 'both'\nintervals = { run1 = [[5, 150]], run2 = [[1, 160]] }\n"
            "[[condition]]\nname = 'second'\nruns = ['run2']\nintervals = [[30, 90]]\n");
    const ProgramResult result = tavmap({"run", (folder() / "r.toml").string(), "--jobs", "2"}, folder());
    ASSERT_EQ(result.exitCode, 0) << result.err;
  }

  // The VTC that the study imported from a run.
  std::string vtcOf(const std::string& run) {
    for (const auto& entry : fs::directory_iterator(folder() / "results/work")) {
      const std::string name = entry.path().filename().string();
      if (name.rfind(run + "-", 0) == 0 && entry.path().extension() == ".vtc") return entry.path().string();
    }
    return "";
  }

  void runPlugin(int order) {
    scratch_.write("plugins/TAVPlugin.ini",
                   "NumSurrogateSimulations= 50\nNumDiscardedSimulatedTimePoints= 20\n"
                   "AutoRegressionOrder= " +
                       std::to_string(order) + "\n");
    fs::create_directories(folder() / "host");
    const std::string one = vtcOf("run1"), two = vtcOf("run2");
    scratch_.write("answers.txt",
                   "integer 4\ninteger 1\n"
                   "text both\nopen " +
                       one + "\ninteger 5\ninteger 150\nopen " + two +
                       "\ninteger 1\ninteger 160\ncancel\n"
                       "text second\nopen " +
                       two +
                       "\ninteger 30\ninteger 90\ncancel\n"
                       "text\nsave host/small\n");
    const ProgramResult result = tavmap(
        {"host", TAVMAP_PLUGIN, "--anatomy", (folder() / "mask.nii.gz").string(), "--vtc", one, "--vois",
         (folder() / "dseg.nii.gz").string(), "--plugins-folder", (folder() / "plugins").string(), "--seed",
         "31", "--script", (folder() / "answers.txt").string()},
        folder());
    ASSERT_EQ(result.exitCode, 0) << result.err << result.out;
  }

  void compare(const std::string& reference) {
    const formats::MapSet study =
        formats::loadMapSet((folder() / "results" / ("small_" + reference + ".tav")).string());
    const formats::MapSet host =
        formats::loadMapSet((folder() / "host" / ("small_" + reference + ".tav")).string());
    ASSERT_EQ(study.maps.size(), 12U);
    ASSERT_EQ(host.maps.size(), 12U);
    bool anything = false;
    for (std::size_t i = 0; i < study.maps.size(); ++i) {
      EXPECT_EQ(study.maps[i].name, host.maps[i].name);
      EXPECT_TRUE(sameBits(study.maps[i].values, host.maps[i].values))
          << reference << " " << study.maps[i].name;
      EXPECT_TRUE(sameBits(study.maps[i].thresholds, host.maps[i].thresholds))
          << reference << " " << study.maps[i].name;
      for (const float value : study.maps[i].values) anything = anything || value != 0;
    }
    EXPECT_TRUE(anything);
  }
  Scratch scratch_;
};

TEST_F(PluginEquality, MapsAndThresholdsAgreeForSeveralReferencesRunsAndConditions) {
  runStudy(1);
  runPlugin(1);
  for (const char* reference : {"A", "B", "C-left"}) compare(reference);
}

TEST_F(PluginEquality, TheyAgreeForHigherOrdersToo) {
  runStudy(3);
  runPlugin(3);
  for (const char* reference : {"A", "B", "C-left"}) compare(reference);
}

}  // namespace
