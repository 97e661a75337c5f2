#include "prepare/cautions.h"

#include <gtest/gtest.h>

namespace study {
namespace {

RunRequest run() {
  RunRequest request;
  request.name = "a";
  request.bold = "sub-01_task-x_desc-preproc_bold.nii.gz";
  return request;
}

TEST(Cautions, QuietDataRaiseNone) {
  EXPECT_TRUE(runCautions(run(), 2.0, {}, {"csf"}).empty());
}

TEST(Cautions, FilteredDataAreNamed) {
  const auto cautions = runCautions(run(), 2.0, {"Bandpass filter"}, {});
  ASSERT_EQ(cautions.size(), 1U);
  EXPECT_EQ(cautions[0],
            "run 'a' was filtered in time (Bandpass filter). Filtering changes the lagged structure that "
            "these maps rest on and can create or hide directed influence; use unfiltered data");
  RunRequest denoised = run();
  denoised.bold = "sub-01_task-x_desc-denoised_bold.nii.gz";
  EXPECT_EQ(runCautions(denoised, 2.0, {}, {}).size(), 1U);
}

TEST(Cautions, CosineColumnsAreAFilterToo) {
  const auto cautions = runCautions(run(), 2.0, {}, {"csf", "cosine00", "cosine01"});
  ASSERT_EQ(cautions.size(), 1U);
  EXPECT_EQ(cautions[0],
            "run 'a': regressing cosine columns is a high-pass filter, which can bias directed influence; "
            "keep them where slow drift would be worse, and compare the maps without them");
}

TEST(Cautions, SlowDataAreNamedAboveThreeSeconds) {
  EXPECT_TRUE(runCautions(run(), 3.0, {}, {}).empty());
  const auto cautions = runCautions(run(), 3.5, {}, {});
  ASSERT_EQ(cautions.size(), 1U);
  EXPECT_EQ(cautions[0],
            "run 'a' has a TR of 3.5 s. Influences faster than a volume appear as instantaneous; directed "
            "maps of data slower than 3 s say little");
}

TEST(Cautions, TooFewSamplesPerParameter) {
  EXPECT_EQ(fewSamplesCaution("c", 40, 1), "");
  EXPECT_EQ(fewSamplesCaution("c", 39, 1),
            "condition 'c' has 39 effective volumes for 4 coefficients of the joint model of order 1, fewer "
            "than 10 "
            "each; estimates are noisy, take a lower order or more data");
}

TEST(Cautions, SingleVoxelReferences) {
  EXPECT_EQ(smallReferenceCaution("V1", 2), "");
  EXPECT_EQ(smallReferenceCaution("V1", 1),
            "reference 'V1' has a single voxel; its course is as noisy as any voxel's");
}

TEST(EventsCaution, CountsAndNamesFlawedRows) {
  using formats::RowFlaw;
  RunRequest run;
  run.name = "a";
  run.events = "/d/events.tsv";
  EXPECT_EQ(eventsCaution(run, {}), "");
  EXPECT_EQ(eventsCaution(run, {{RowFlaw::kNoDuration, 3}}),
            "run 'a': of the events in events.tsv, 1 without duration taken as one volume (line 3)");
  std::vector<formats::FlawedRow> rows = {{RowFlaw::kNoType, 2}, {RowFlaw::kBeforeStart, 3}};
  for (std::size_t line = 4; line < 15; ++line) rows.push_back({RowFlaw::kNoOnset, line});
  EXPECT_EQ(
      eventsCaution(run, rows),
      "run 'a': of the events in events.tsv, 11 without onset left out (lines 4, 5, 6, 7, 8, 9, 10, 11, "
      "12, 13 ...), 1 without trial type left out (line 2), 1 left out that ended before the first volume "
      "(line 3)");
}

TEST(MixedMasksCaution, NamesRunsWithAndWithout) {
  std::vector<RunRequest> runs(3);
  runs[0].name = "a", runs[1].name = "b", runs[2].name = "c";
  EXPECT_EQ(mixedMasksCaution(runs, 100), "");
  runs[0].mask = runs[2].mask = "mask.nii";
  EXPECT_EQ(
      mixedMasksCaution(runs, 50),
      "run 'b' has no mask, but run 'a', 'c' has one: where there is none, a voxel counts when its first "
      "value exceeds the inclusion threshold of 50, and only voxels that every run includes are mapped; "
      "give every run a mask");
  runs[1].mask = "other.nii";
  EXPECT_EQ(mixedMasksCaution(runs, 50), "");
}

}  // namespace
}  // namespace study
