// What `tavmap run` tells of data that cannot give maps, or not the maps that were asked for.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <nlohmann/json.hpp>

#include "tests/support/image_series.h"
#include "tests/support/run_command_fixture.h"

namespace {

class UnusableData : public SmallStudyRun {
 protected:
  static int countOf(const std::string& what, const std::string& text) {
    int count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
    return count;
  }
  void change(const std::string& file, const std::function<void(Series&)>& action) {
    Series series = readSeries(folder() / file);
    action(series);
    writeSeries(folder() / file, series);
  }
  static void makeConstant(Series& series) { std::fill(series.values.begin(), series.values.end(), 900.0F); }
};

TEST_F(UnusableData, AVoxelThatIsNoNumberIsLeftOutOfItsReferenceEverywhere) {
  change("bold1.nii.gz", [](Series& series) { series.at(3, 3, 3, 40) = std::nanf(""); });
  const ProgramResult result = run(write());
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const std::string text =
      "reference 'A': 1 of 8 voxels are left out, 1 with values that are not finite in single precision (run "
      "'run1')";
  EXPECT_NE(result.out.find("WARNING: " + text + "\n"), std::string::npos) << result.out;
  const nlohmann::json record = read("small_seed-A_tavmap.json"), sidecar = read(kMap + ".json");
  EXPECT_EQ(record["ReferenceVoxels"], 7);
  for (const nlohmann::json& warnings : {record["Warnings"], sidecar["Warnings"]})
    EXPECT_NE(std::find(warnings.begin(), warnings.end(), text), warnings.end()) << warnings;
  EXPECT_TRUE(sidecar["Thresholds"][1]["AnyVoxelPasses"]);
}

TEST_F(UnusableData, ConstantRunsFailOncePerReferenceAndNothingSurvivesNowhere) {
  change("bold1.nii.gz", makeConstant);
  change("bold2.nii.gz", makeConstant);
  const ProgramResult result = run(write());
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(countOf("FAILED", result.err), 3) << result.err;  // A, B and C-left
  EXPECT_EQ(countOf("FAILED", result.out), 0) << result.out;
  EXPECT_EQ(countOf("survives", result.out), 0) << result.out;
  EXPECT_NE(result.err.find("r.toml: B: reference 'B', condition 'whole': no voxel could be computed: "
                            "the courses of the reference in runs 'run1', 'run2' are constant"),
            std::string::npos)
      << result.err;
  EXPECT_FALSE(std::filesystem::exists(results() / "small_seed-A_tavmap.json"));
}

TEST_F(UnusableData, IntervalsThatOverlapAreRefusedBeforeAnythingIsImported) {
  std::string text = small_study::request();
  text += "[[condition]]\nname = 'typed'\nintervals = [[1, 60], [50, 100]]\n";
  const ProgramResult result = run(scratch_.write("r.toml", text));
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("r.toml: condition 'typed': interval 1 to 60 and interval 50 to 100 overlap"),
            std::string::npos)
      << result.err;
  EXPECT_FALSE(std::filesystem::exists(results()));
}

TEST_F(UnusableData, FlawedEventsAndMissingMasksAreSaid) {
  scratch_.write("events.tsv",
                 "onset\tduration\ttrial_type\n20\t60\tface\nn/a\t4\tface\n100\t60\thouse\n180\t60\tface\n"
                 "200\t60\tface\n900\t10\tface\n");
  std::string text = small_study::request();
  const std::string mask = "mask = 'mask.nii.gz'\n";
  text.erase(text.rfind(mask), mask.size());
  const ProgramResult result = run(scratch_.write("r.toml", text));
  ASSERT_EQ(result.exitCode, 0) << result.err;
  for (const char* expected :
       {"WARNING: run 'run1': of the events in events.tsv, 1 without onset left out (line 3)\n",
        "WARNING: condition 'face': run 'run1': 1 event begins before another has ended; what they share "
        "counts "
        "once\n",
        "WARNING: condition 'face': run 'run2': 1 event before the first or after the last volume is left "
        "out: "
        "'face' at 900 s\n",
        "WARNING: run 'run2' has no mask, but run 'run1' has one: "})
    EXPECT_NE(result.out.find(expected), std::string::npos) << expected << "\n" << result.out;
}

}  // namespace
