// What stands in the files of a result, computed again from the images: status, peaks, counts, courses.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "formats/nifti.h"
#include "prepare/fingerprint.h"
#include "results/record_json.h"
#include "tests/support/image_series.h"
#include "tests/support/run_command_fixture.h"

namespace {

namespace fs = std::filesystem;
using study::StatusCode;

constexpr int kDropped = 2;

class ResultFiles : public SmallStudyRun {
 protected:
  // One run as after standardisation (so that preparation adds a constant), with a voxel that never
  // changes and one that is no number for a while.
  void SetUp() override {
    SmallStudyRun::SetUp();
    const fs::path file = folder() / "bold1.nii.gz";
    small_study::writeBold(file, 1, 0);
    bold_ = readSeries(file);
    for (int v = 0; v < small_study::kVolumes; ++v) bold_.at(5, 4, 4, v) = 7;
    bold_.at(6, 4, 4, 50) = std::numeric_limits<float>::quiet_NaN();
    writeSeries(file, bold_);
  }
  study::Record compute(const std::string& reference, const std::string& settings = "") {
    const fs::path request = scratch_.write(
        "one.toml", "prefix = 'small'\nseed = 5\n[settings]\nsurrogates = 60\ndiscarded_time_points = 20\n" +
                        settings +
                        "\n[[run]]\nname = 'run1'\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\n"
                        "drop_volumes = " +
                        std::to_string(kDropped) +
                        "\n[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = ['" + reference + "']\n");
    const ProgramResult result = run(request);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return study::readRecordFile((results() / ("small_seed-" + reference + "_tavmap.json")).string());
  }
  formats::LabelImage statusOf(const study::ConditionRecord& condition) const {
    return formats::readLabelImage((results() / condition.statusFile).string());
  }
  Series bold_;
};

bool is(std::int32_t code, StatusCode status) {
  return code == static_cast<std::int32_t>(status);
}

TEST_F(ResultFiles, EveryStatusHasItsCodeItsCountAndItsPlace) {
  const study::ConditionRecord condition = compute("A").conditions.at(0);
  const formats::LabelImage status = statusOf(condition);
  EXPECT_EQ(status.header.dataType, formats::DataType::kUint8);
  EXPECT_EQ(status.header.intentCode, formats::kLabelIntent);
  const auto codeAt = [&](int x, int y, int z) {
    return status
        .labels[static_cast<std::size_t>((z * small_study::kDims[1] + y) * small_study::kDims[0] + x)];
  };
  EXPECT_TRUE(is(codeAt(0, 0, 0), StatusCode::kOutsideMask));
  EXPECT_TRUE(is(codeAt(5, 4, 4), StatusCode::kIllDefined));
  EXPECT_TRUE(is(codeAt(6, 4, 4), StatusCode::kNotFinite));
  EXPECT_TRUE(is(codeAt(2, 3, 3), StatusCode::kInsideReference));
  EXPECT_TRUE(is(codeAt(8, 5, 4), StatusCode::kComputed));
  study::StatusCounts counted{};
  for (const std::int32_t code : status.labels) ++counted.at(static_cast<std::size_t>(code));
  EXPECT_EQ(condition.voxels, counted);
}

// The largest magnitude among computed voxels, with its sign: not the largest value, and none of
// the reference.
TEST_F(ResultFiles, PeaksAreTheLargestMagnitudesOutsideTheReference) {
  int negative = 0, surpassedInside = 0;
  for (const char* reference : {"A", "B"}) {
    const study::ConditionRecord condition = compute(reference).conditions.at(0);
    const formats::LabelImage status = statusOf(condition);
    for (const study::MapResult& map : condition.maps) {
      const formats::Image3D image = formats::readImage((results() / map.file).string());
      float largest = 0, inside = 0;
      for (std::size_t i = 0; i < image.values.size(); ++i) {
        const float value = image.values[i];
        if (is(status.labels[i], StatusCode::kComputed) && std::abs(value) > std::abs(largest))
          largest = value;
        if (is(status.labels[i], StatusCode::kInsideReference)) inside = std::max(inside, std::abs(value));
      }
      EXPECT_EQ(static_cast<float>(map.peak), largest) << map.file;
      EXPECT_EQ(image.at(map.peakVoxel[0], map.peakVoxel[1], map.peakVoxel[2]), largest) << map.file;
      const auto mm = image.header.affine.m;
      for (unsigned row = 0; row < 3; ++row) {
        const double at = mm[4 * row] * map.peakVoxel[0] + mm[4 * row + 1] * map.peakVoxel[1] +
                          mm[4 * row + 2] * map.peakVoxel[2] + mm[4 * row + 3];
        EXPECT_NEAR(map.peakMm[row], at, 1e-4) << map.file;
      }
      negative += largest < 0 ? 1 : 0;
      surpassedInside += inside > std::abs(largest) ? 1 : 0;
    }
  }
  EXPECT_GT(negative, 0);         // else the sign would not matter
  EXPECT_GT(surpassedInside, 0);  // else the reference would not
}

TEST_F(ResultFiles, VoxelsPassAtTheThresholdAndTheReferenceIsCountedApart) {
  int insideToo = 0;
  for (const char* method : {"calibrated", "plugin"}) {
    const bool plugin = std::string(method) == "plugin";
    int exact = 0;
    fs::remove_all(results());
    const auto record = compute("A", std::string("method = '") + method + "'\n");
    const study::ConditionRecord& condition = record.conditions.at(0);
    const formats::LabelImage status = statusOf(condition);
    for (const study::MapResult& map : condition.maps) {
      const formats::Image3D image = formats::readImage((results() / map.file).string());
      for (const study::ThresholdResult& level : map.thresholds) {
        if (level.voxelsPassing == 0) continue;  // no threshold, whatever its number
        std::size_t outside = 0, all = 0;
        for (std::size_t i = 0; i < image.values.size(); ++i) {
          const bool finding = is(status.labels[i], StatusCode::kComputed);
          if (!finding && !is(status.labels[i], StatusCode::kInsideReference)) continue;
          const float magnitude = std::abs(image.values[i]), threshold = static_cast<float>(*level.threshold);
          exact += finding && magnitude == threshold ? 1 : 0;
          if (magnitude > 0 && magnitude >= threshold) ++all, outside += finding ? 1 : 0;
        }
        EXPECT_EQ(level.outsideReference, outside) << map.file << " " << level.q;
        EXPECT_EQ(level.voxelsPassing, plugin ? all : outside) << map.file << " " << level.q;
        insideToo += all > outside ? 1 : 0;
      }
    }
    EXPECT_GT(exact, 0) << method;  // else "at" would not differ from "above"
  }
  EXPECT_GT(insideToo, 0);  // else the reference would not matter
}

// One row per volume of the stored image, in its units.
TEST_F(ResultFiles, CoursesAreThoseOfTheStoredImage) {
  compute("A");
  std::ifstream table(results() / "small_seed-A_desc-reference_timeseries.tsv");
  std::string row;
  std::getline(table, row);
  EXPECT_EQ(row, "run1");
  for (int v = 0; v < small_study::kVolumes; ++v) {
    ASSERT_TRUE(std::getline(table, row));
    if (v < kDropped) {
      EXPECT_EQ(row, "n/a");
      continue;
    }
    double sum = 0;
    for (int i = 0; i < 8; ++i) sum += static_cast<double>(bold_.at(2 + i % 2, 3 + i / 2 % 2, 3 + i / 4, v));
    EXPECT_NEAR(std::stod(row), sum / 8, 1e-2) << v;
  }
  EXPECT_FALSE(std::getline(table, row));
}

TEST_F(ResultFiles, CoursesOfSeveralRunsStartBehindTheVolumesThatEachDrops) {
  const fs::path request =
      scratch_.write("two.toml",
                     "prefix = 'two'\nseed = 5\n[settings]\nsurrogates = 60\ndiscarded_time_points = 20\n"
                     "[[run]]\nname = 'run1'\nbold = 'bold1.nii.gz'\nmask = 'mask.nii.gz'\ndrop_volumes = 1\n"
                     "[[run]]\nname = 'run2'\nbold = 'bold2.nii.gz'\nmask = 'mask.nii.gz'\ndrop_volumes = 3\n"
                     "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = ['A']\n");
  ASSERT_EQ(run(request).exitCode, 0);
  std::ifstream table(results() / "two_seed-A_desc-reference_timeseries.tsv");
  std::string row;
  std::getline(table, row);
  EXPECT_EQ(row, "run1\trun2");
  for (int v = 0; v < 4; ++v) {
    ASSERT_TRUE(std::getline(table, row));
    const std::size_t tab = row.find('\t');
    EXPECT_EQ(row.substr(0, tab) == "n/a", v < 1) << v;
    EXPECT_EQ(row.substr(tab + 1) == "n/a", v < 3) << v;
  }
}

TEST_F(ResultFiles, EveryReferenceHasASeedOfItsOwn) {
  for (const char* reference : {"A", "B"}) {
    const study::ModelRecord model = compute(reference).model;
    EXPECT_EQ(model.seed, 5U);
    EXPECT_EQ(model.seedOfReference, study::derivedSeed(5, std::string("small\n") + reference));
  }
}

// A volume that is no number in every voxel: nothing can be computed, and the run says so.
TEST_F(ResultFiles, ARunWithoutAComputableVoxelFailsAndLeavesNoRecord) {
  for (float& value : bold_.values) value += 1000;
  for (std::size_t i = 0; i < bold_.header.size.voxels(); ++i) {
    bold_.values[50 * bold_.header.size.voxels() + i] = std::numeric_limits<float>::quiet_NaN();
  }
  writeSeries(folder() / "bold1.nii.gz", bold_);
  for (const char* method : {"calibrated", "plugin"}) {
    fs::remove_all(results());
    const fs::path request =
        scratch_.write("none.toml", "prefix = 'none'\nseed = 5\n[settings]\nsurrogates = 60\nmethod = '" +
                                        std::string(method) +
                                        "'\n[[run]]\nbold = 'bold1.nii.gz'\n"
                                        "[[reference]]\nlabel_image = 'dseg.nii.gz'\nlabels = ['A']\n");
    const ProgramResult first = run(request);
    EXPECT_EQ(first.exitCode, 2) << first.out;
    EXPECT_NE(first.err.find("single precision"), std::string::npos) << first.err;
    EXPECT_EQ(first.out.find("survives"), std::string::npos) << first.out;
    EXPECT_FALSE(fs::exists(results() / "none_seed-A_tavmap.json"));
    EXPECT_EQ(run(request).exitCode, 2);  // nothing is kept
  }
}

}  // namespace
