#include "prepare/prepare.h"

#include <fmt/core.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "formats/nifti_writer.h"
#include "formats/vtc_export.h"
#include "formats/vtc_sidecar.h"
#include "prepare/cosines.h"
#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

constexpr int kVolumes = 8, kVoxels = 3, kThreshold = 100;

// Three voxels: two in the mask, one outside. The first volume is bright, the others lie far below it and
// below the inclusion threshold.
class Prepare : public ::testing::Test {
 protected:
  Prepare() {
    formats::writeImage(scratch_.file("mask.nii"), {header(), {1, -1, 0}});
    writeBold(0);
    run_.name = "a";
    run_.bold = scratch_.file("bold.nii");
    run_.mask = scratch_.file("mask.nii");
  }
  static formats::ImageHeader header() {
    formats::ImageHeader header;
    header.size = {kVoxels, 1, 1};
    header.sformCode = 1;
    for (int axis = 0; axis < 3; ++axis) header.affine.at(axis, axis) = 2;
    return header;
  }
  void writeBold(float offset) const {
    formats::ImageHeader series = header();
    series.volumes = kVolumes;
    series.trMs = 2000;
    std::vector<float> values;
    for (int t = 0; t < kVolumes; ++t) {
      for (int x = 0; x < kVoxels; ++x) values.push_back(bold(x, t) + offset);
    }
    formats::NiftiWriter writer(scratch_.file("bold.nii"), series);
    writer.writeValues(values.data(), values.size());
    writer.commit();
  }
  static float bold(int x, int t) {
    const float level = x == 0 ? 40.0F : 60.0F;
    return t == 0 ? 300.0F : level + static_cast<float>((t * 7 + x * 3) % 5);
  }
  // The first volume as a confound of its own takes its brightness away.
  void regressTheFirstVolume() {
    std::string table = "first\n1\n";
    for (int t = 1; t < kVolumes; ++t) table += "0\n";
    run_.confounds = scratch_.write("confounds.tsv", table);
    run_.confoundTerms = {"first"};
  }
  RunPlan prepare(double highPassSeconds = 0) {
    const RunPlan plan = planRun(run_, kThreshold, "1", highPassSeconds);
    prepareRun(plan, scratch_.folder(), kThreshold, [this](double share) { shares_.push_back(share); });
    return plan;
  }
  // Values of the prepared file, one course after the other, without what was added.
  std::vector<float> stored(const RunPlan& plan) const {
    const std::string path = scratch_.file(plan.vtcName);
    const VTC_Header header = formats::readVtcFileHeader(path);
    const std::string bytes = contentOf(path).substr(static_cast<std::size_t>(header.dataOffset));
    std::vector<float> values(bytes.size() / sizeof(float));
    std::copy_n(bytes.data(), bytes.size(), reinterpret_cast<char*>(values.data()));
    return values;
  }
  double shift(const RunPlan& plan) const {
    return formats::readVtcSidecar(scratch_.file(plan.vtcName)).value().shift;
  }

  RunRequest run_;
  Scratch scratch_;
  std::vector<double> shares_;
};

TEST_F(Prepare, WithoutAnythingToDoTheImportIsTheResult) {
  const RunPlan plan = prepare();
  EXPECT_TRUE(isPrepared(plan, scratch_.folder()));
  const std::vector<float> values = stored(plan);
  ASSERT_EQ(values.size(), static_cast<std::size_t>(kVolumes * kVoxels));
  for (int t = 0; t < kVolumes; ++t) EXPECT_EQ(values[static_cast<std::size_t>(t)], bold(0, t));
  EXPECT_EQ(shift(plan), 0);
}

TEST_F(Prepare, WhatIsHighPassedIsOrthogonalToTheCosines) {
  const RunPlan plan = prepare(10);  // 2 * 8 * 2 / 10 = 3.2
  ASSERT_EQ(plan.confoundRank, 3);
  const std::vector<float> values = stored(plan);
  for (int x = 0; x < 2; ++x) {
    for (const std::vector<double>& cosine : highPassCosines(kVolumes, 2, 10)) {
      double product = 0, before = 0;
      for (std::size_t t = 0; t < kVolumes; ++t) {
        product += cosine[t] * static_cast<double>(values[static_cast<std::size_t>(x) * kVolumes + t]);
        before += cosine[t] * static_cast<double>(bold(x, static_cast<int>(t)));
      }
      EXPECT_NEAR(product, 0, 2e-4);
      EXPECT_GT(std::abs(before), 10);
    }
  }
}

TEST_F(Prepare, HighPassEqualsATableOfTheSameCosines) {
  const std::vector<float> filtered = stored(prepare(10));
  const auto cosines = highPassCosines(kVolumes, 2, 10);
  std::string table = "cosine00\tcosine01\tcosine02\n";
  for (std::size_t t = 0; t < kVolumes; ++t) {
    for (std::size_t k = 0; k < cosines.size(); ++k)
      table += fmt::format("{}{}", cosines[k][t], k + 1 < cosines.size() ? "\t" : "\n");
  }
  run_.confounds = scratch_.write("confounds.tsv", table);
  run_.confoundTerms = {"cosine"};
  EXPECT_EQ(stored(prepare()), filtered);
}

TEST_F(Prepare, WhatIsAddedToStayIncludedIsRecorded) {
  regressTheFirstVolume();
  const RunPlan plan = prepare();
  const std::vector<float> values = stored(plan);
  EXPECT_GT(shift(plan), 0);
  for (int x = 0; x < 2; ++x) {
    const float* course = values.data() + x * kVolumes;
    EXPECT_GT(course[0], static_cast<float>(kThreshold));
    // Regression keeps a course's mean; the constant comes on top of it.
    double before = 0;
    for (int t = 0; t < kVolumes; ++t) before += static_cast<double>(bold(x, t));
    EXPECT_NEAR(std::accumulate(course, course + kVolumes, 0.0) / kVolumes - shift(plan), before / kVolumes,
                1e-3);
  }
  for (int t = 0; t < kVolumes; ++t)
    EXPECT_EQ(values[static_cast<std::size_t>(2 * kVolumes + t)], 0.0F)
        << "outside the mask nothing is added";
}

// The import lifts the first volume, and regression lets it fall again.
TEST_F(Prepare, WhatImportAndRegressionAddIsRecordedTogether) {
  constexpr float kOffset = -250;
  writeBold(kOffset);
  const double byImport = shift(prepare());
  EXPECT_GT(byImport, 0);
  regressTheFirstVolume();
  const RunPlan plan = prepare();
  EXPECT_GT(shift(plan), byImport);
  const std::vector<float> values = stored(plan);
  double change = 0;
  for (int t = 0; t < kVolumes; ++t)
    change += static_cast<double>(values[static_cast<std::size_t>(t)] - bold(0, t) - kOffset) / kVolumes;
  EXPECT_NEAR(change, shift(plan), 1e-3);
}

TEST_F(Prepare, ReportsHowFarItIs) {
  regressTheFirstVolume();
  prepare();
  ASSERT_FALSE(shares_.empty());
  EXPECT_EQ(shares_.front(), 0.5);  // the import is half of it
  for (const double share : shares_) EXPECT_TRUE(share >= 0.5 && share <= 1) << share;
}

TEST_F(Prepare, LeavesOnlyTheResultAndItsSidecar) {
  regressTheFirstVolume();
  const RunPlan plan = prepare();
  std::vector<std::string> left;
  for (const auto& [name, content] : filesBelow(scratch_.folder()))
    if (name.find(".vtc") != std::string::npos) left.push_back(name);
  EXPECT_EQ(left, (std::vector<std::string>{plan.vtcName, formats::sidecarPathOf(plan.vtcName)}));
}

TEST_F(Prepare, TheChosenRepetitionTimeIsStored) {
  run_.trSeconds = 2.5;
  EXPECT_EQ(formats::readVtcFileHeader(scratch_.file(prepare().vtcName)).tr, 2500.0F);
}

TEST_F(Prepare, DroppedVolumesAreNotStored) {
  run_.dropVolumes = 1;
  const std::vector<float> values = stored(prepare());
  ASSERT_EQ(values.size(), static_cast<std::size_t>((kVolumes - 1) * kVoxels));
  EXPECT_EQ(values[1] - values[0], bold(0, 2) - bold(0, 1));
}

TEST_F(Prepare, CensoredVolumesAreBridged) {
  std::string table = "framewise_displacement\n";
  for (int t = 0; t < kVolumes; ++t) table += t == 4 ? "2\n" : "0\n";
  run_.confounds = scratch_.write("confounds.tsv", table);
  run_.censoring.fdThresholdMm = 0.5;
  run_.censoring.minimumSegment = 1;
  const RunPlan plan = prepare();
  const std::vector<float> values = stored(plan);
  EXPECT_EQ(values[4], (values[3] + values[5]) / 2);
  EXPECT_EQ(values[3], bold(0, 3) + static_cast<float>(shift(plan)));
}

TEST_F(Prepare, AnImageThatNoVoxelOfIsIncludedIsRefusedAndLeavesNothing) {
  run_.mask.clear();
  const RunPlan plan = planRun(run_, 500, "1");
  EXPECT_EQ(messageOf<InputError>([&] { prepareRun(plan, scratch_.folder(), 500, [](double) {}); }),
            "run 'a': no voxel of " + scratch_.file("bold.nii") +
                " exceeds the inclusion threshold of 500 at its first volume; give a mask, or lower "
                "'inclusion_threshold'");
  EXPECT_FALSE(isPrepared(plan, scratch_.folder()));
}

TEST_F(Prepare, AFileWithoutItsSidecarIsNotPrepared) {
  const RunPlan plan = prepare();
  std::filesystem::remove(formats::sidecarPathOf(scratch_.file(plan.vtcName)));
  EXPECT_FALSE(isPrepared(plan, scratch_.folder()));
}

}  // namespace
}  // namespace study
