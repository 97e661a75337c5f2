// Whole runs over data whose directions are known: which voxels keep theirs when time runs backwards.
#include <gtest/gtest.h>

#include <array>
#include <random>

#include "formats/nifti.h"
#include "results/record_json.h"
#include "tests/support/autoregressive.h"
#include "tests/support/image_series.h"
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using study::DirectionCode;

constexpr int kVolumes = 300;
constexpr std::array<int, 3> kA = {2, 3, 3}, kB = {8, 5, 4}, kC = {5, 7, 2};  // first voxels of the regions

class DirectionRun : public SmallStudyRun {
 protected:
  // B has the signal of A one volume later, as clean as A; C has it at the same moment with more noise.
  void SetUp() override {
    SmallStudyRun::SetUp();
    const fs::path file = folder() / "bold1.nii.gz";
    small_study::writeBold(file, 1, 1000, 2000, kVolumes);
    Series bold = readSeries(file);
    std::mt19937 generator(3);
    auto noise = normalFrom(generator);
    const std::vector<double> signal = autoregressive(kVolumes + 1, 0.9, noise);
    const auto plant = [&](const std::array<int, 3>& first, std::size_t lag, double sd) {
      for (int i = 0; i < 8; ++i) {
        for (int t = 0; t < kVolumes; ++t) {
          const double value = signal[static_cast<std::size_t>(t) + 1 - lag] + sd * noise();
          bold.at(first[0] + i % 2, first[1] + i / 2 % 2, first[2] + i / 4, t) =
              static_cast<float>(1000 + 10 * value);
        }
      }
    };
    plant(kA, 0, 0.4);
    plant(kB, 1, 0.15);
    plant(kC, 0, 3);
    writeSeries(file, bold);
  }
  fs::path request(const std::string& settings = "") {
    return scratch_.write(
        "d.toml", "prefix = 'd'\nseed = 5\n[settings]\nsurrogates = 60\ndiscarded_time_points = 20\n" +
                      settings +
                      "\n[[run]]\nname = 'run1'\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\n"
                      "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = 'all'\n");
  }
  std::vector<std::int32_t> codes(const std::string& reference) const {
    return formats::readLabelImage(
               (results() / ("d_seed-" + reference + "_desc-wholeDirection_dseg.nii.gz")).string())
        .labels;
  }
  // Codes of a region's voxels.
  static study::DirectionCounts count(const std::vector<std::int32_t>& codes,
                                      const std::array<int, 3>& first) {
    study::DirectionCounts counts{};
    for (int i = 0; i < 8; ++i) {
      const int x = first[0] + i % 2, y = first[1] + i / 2 % 2, z = first[2] + i / 4;
      const int index = (z * small_study::kDims[1] + y) * small_study::kDims[0] + x;
      ++counts.at(static_cast<std::size_t>(codes[static_cast<std::size_t>(index)]));
    }
    return counts;
  }
  study::Record record(const std::string& reference) const {
    return study::readRecordFile((results() / ("d_seed-" + reference + "_tavmap.json")).string());
  }
  std::string text(const std::string& name) const {
    std::ifstream stream(results() / name);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
};

std::size_t at(const study::DirectionCounts& counts, DirectionCode code) {
  return counts[static_cast<std::size_t>(code)];
}

TEST_F(DirectionRun, ALeadIsKeptAndUnequalNoiseIsNot) {
  ASSERT_EQ(run(request()).exitCode, 0);
  EXPECT_EQ(at(count(codes("A"), kB), DirectionCode::kReferenceLeads), 8U);
  EXPECT_EQ(at(count(codes("B"), kA), DirectionCode::kVoxelLeads), 8U);
  // Without a control the noisier voxels are led by A, who shares the signal at the same moment.
  const study::DirectionCounts noisy = count(codes("A"), kC);
  EXPECT_LE(at(noisy, DirectionCode::kNotTested), 1U);
  EXPECT_GE(at(noisy, DirectionCode::kNotSupported), 6U);
  const auto map =
      formats::readImage((results() / "d_seed-A_contrast-wholedTAV_stat-effect_statmap.nii.gz").string());
  EXPECT_GT(map.at(kC[0], kC[1], kC[2]), 0);
  EXPECT_EQ(at(count(codes("A"), kA), DirectionCode::kNotTested), 8U);
}

TEST_F(DirectionRun, TheRecordCountsTheMap) {
  ASSERT_EQ(run(request()).exitCode, 0);
  for (const char* reference : {"A", "B", "Cleft"}) {
    const study::ConditionRecord condition = record(reference).conditions.at(0);
    study::DirectionCounts counted{};
    for (const std::int32_t code : codes(reference)) ++counted.at(static_cast<std::size_t>(code));
    EXPECT_EQ(condition.direction.voxels, counted) << reference;
    EXPECT_EQ(condition.direction.q, 0.1);
    const auto difference = std::find_if(condition.maps.begin(), condition.maps.end(),
                                         [](const study::MapResult& map) { return map.type == tav::DTAV; });
    ASSERT_NE(difference, condition.maps.end());
    EXPECT_EQ(condition.direction.tested(), difference->thresholds.back().outsideReference) << reference;
  }
  EXPECT_GT(record("A").conditions[0].direction.tested(), 8U);
}

TEST_F(DirectionRun, IsSaidInSummarySidecarsAndLog) {
  const ProgramResult result = run(request());
  const study::DirectionResult direction = record("A").conditions.at(0).direction;
  const std::string words = study::directionText(direction, "A"), note = study::kDirectionNote;
  EXPECT_NE(result.out.find("    direction: " + words + "\n"), std::string::npos) << result.out;
  EXPECT_NE(result.out.find("NOTE: " + note + "\n"), std::string::npos);
  EXPECT_EQ(result.out.find(note), result.out.rfind(note));  // once, whatever the number of references
  EXPECT_NE(text("d_A.log").find("\nDirections\n\twhole: " + words + "\n\t" + note + ".\n"),
            std::string::npos);
  for (const char* name :
       {"d_seed-A_desc-wholeDirection_dseg.json", "d_seed-A_contrast-wholedTAV_stat-effect_statmap.json"}) {
    const json sidecar = read(name);
    EXPECT_EQ(sidecar["Direction"]["Note"], note) << name;
    EXPECT_EQ(sidecar["Direction"]["VoxelsSupported"], direction.supported()) << name;
  }
  EXPECT_FALSE(read("d_seed-A_contrast-wholeInst_stat-effect_statmap.json").contains("Direction"));
  EXPECT_EQ(text("d_seed-A_desc-wholeDirection_dseg.tsv"),
            "index\tname\n0\tnot tested\n1\tthe reference leads, supported\n2\tthe voxel leads, supported\n"
            "3\tdirection not supported\n4\tcould not be judged\n");
}

TEST_F(DirectionRun, DoesNotDependOnTheNumberOfJobs) {
  ASSERT_EQ(run(request(), {"--jobs", "1"}).exitCode, 0);
  const auto one = filesBelow(results());
  fs::remove_all(results());
  ASSERT_EQ(run(request(), {"--jobs", "2"}).exitCode, 0);
  EXPECT_EQ(filesBelow(results()), one);
  EXPECT_EQ(one.count("d_seed-B_desc-wholeDirection_dseg.nii.gz"), 1U);
}

TEST_F(DirectionRun, WithoutADifferenceMapOrWithMethodPluginThereIsNone) {
  for (const char* settings : {"map_types = ['REF2VOX', 'DTAV_RC']", "method = 'plugin'"}) {
    fs::remove_all(results());
    const ProgramResult result = run(request(settings));
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(record("A").conditions.at(0).direction.empty()) << settings;
    for (const auto& [name, content] : filesBelow(results()))
      EXPECT_EQ(name.find("Direction"), std::string::npos) << name;
    for (const char* words : {"direction: ", "NOTE: "})
      EXPECT_EQ(result.out.find(words), std::string::npos) << result.out;
  }
}

}  // namespace
