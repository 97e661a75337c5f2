// Whole runs over data that mislead: what is warned about, where, and how often.
#include <gmock/gmock.h>

#include <algorithm>

#include "tests/support/image_series.h"
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

class DataWarningsRun : public SmallStudyRun {
 protected:
  // In every voxel, at volumes counted from 1 that lie in both conditions.
  void plantSpikes() {
    const fs::path file = folder() / "bold1.nii.gz";
    Series bold = readSeries(file);
    const std::size_t voxels = bold.header.size.voxels();
    for (const std::size_t volume : {25U, 105U}) {
      for (std::size_t i = 0; i < voxels; ++i) bold.values[(volume - 1) * voxels + i] += 400;
    }
    writeSeries(file, bold);
  }
  std::vector<std::string> warnings(const std::string& reference) {
    return read("small_seed-" + reference + "_tavmap.json")["Warnings"];
  }
};

const std::string kSpikes =
    "run 'run1', reference 'A': reference and voxels jump at once at 2 volumes (25, 105)";

TEST_F(DataWarningsRun, CommonSpikesAreSaidOncePerReferenceWhereverWarningsAre) {
  plantSpikes();
  const ProgramResult result = run(write());
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const std::vector<std::string> said = warnings("A");
  EXPECT_EQ(std::count_if(said.begin(), said.end(),
                          [](const std::string& text) { return text.starts_with(kSpikes); }),
            1);
  EXPECT_THAT(said, Not(Contains(HasSubstr("run 'run2', reference 'A': reference and voxels jump"))));
  EXPECT_EQ(read(kMap + ".json")["Warnings"].get<std::vector<std::string>>(), said);
  EXPECT_THAT(result.out, HasSubstr("WARNING: " + kSpikes));
  EXPECT_THAT(result.out, HasSubstr("WARNING: run 'run1', reference 'B': reference and voxels jump"));
  std::ifstream log(results() / "small_A.log");
  EXPECT_THAT(std::string(std::istreambuf_iterator<char>(log), {}), HasSubstr("\nWARNING: " + kSpikes));
}

TEST_F(DataWarningsRun, OfResultsThatAreKeptTheyAreSaidAgain) {
  plantSpikes();
  const fs::path request = write();
  const json first = json::parse(run(request, {"--json"}).out),
             again = json::parse(run(request, {"--json"}).out);
  EXPECT_TRUE(again["References"][0]["Kept"]);
  EXPECT_EQ(first["Warnings"], again["Warnings"]);
  EXPECT_THAT(first["Warnings"].get<std::vector<std::string>>(), Contains(HasSubstr(kSpikes)));
}

TEST_F(DataWarningsRun, WithoutSpikesThereIsNoSuchWarning) {
  ASSERT_EQ(run(write()).exitCode, 0);
  EXPECT_THAT(warnings("A"), Not(Contains(HasSubstr("jump at once"))));
}

TEST_F(DataWarningsRun, FewSamplesAreCountedOnceAndByMethod) {
  const std::string few = "condition 'face'";
  for (const char* method : {"calibrated", "plugin"}) {
    fs::remove_all(results());
    ASSERT_EQ(run(write(std::string("order = 4\nmethod = '") + method + "'")).exitCode, 0);
    const std::vector<std::string> said = warnings("A");
    const auto isIt = [&](const std::string& text) { return text.starts_with(few); };
    ASSERT_EQ(std::count_if(said.begin(), said.end(), isIt), 1) << method;
    const std::string text = *std::find_if(said.begin(), said.end(), isIt);
    EXPECT_EQ(text.find("effective samples are left") != std::string::npos,
              std::string(method) == "calibrated");
  }
}

TEST_F(DataWarningsRun, MethodPluginLooksAtNoData) {
  plantSpikes();
  ASSERT_EQ(run(write("method = 'plugin'")).exitCode, 0);
  EXPECT_TRUE(warnings("A").empty());
}

}  // namespace
