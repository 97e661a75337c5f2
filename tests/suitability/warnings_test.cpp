#include "suitability/warnings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "suitability/noise.h"
#include "suitability/robust.h"
#include "suitability/wording.h"
#include "tests/suitability/simulated.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

suitability::SuitabilityInput inputOf(const std::vector<float>& reference,
                                      const std::vector<std::vector<float>>& voxels) {
  suitability::SuitabilityInput input;
  input.run = "rest";
  input.reference = "M1";
  input.trSeconds = 2;
  input.referenceSeries = reference;
  input.voxels.assign(voxels.begin(), voxels.end());
  input.intervals = {{0, static_cast<int>(reference.size())}};
  return input;
}

std::vector<float> noise(unsigned seed, std::size_t n = 120) {
  std::mt19937 random(seed);
  const simulated::Values values = simulated::white(n, random);
  return {values.begin(), values.end()};
}

TEST(Warnings, SayWhatWasSeenWhatItDoesAndWhatToDo) {
  std::vector<float> reference = noise(1);
  std::vector<std::vector<float>> voxels = {noise(2), noise(3)};
  for (float* const x : {reference.data(), voxels[0].data()}) x[50] += 30, x[80] -= 30;
  suitability::SuitabilityInput input = inputOf(reference, voxels);
  input.droppedVolumes = 4;
  EXPECT_THAT(suitability::runWarnings(input),
              ::testing::ElementsAre("run 'rest', reference 'M1': reference and voxels jump at once at 2 "
                                     "volumes (55, 85), as when the head "
                                     "moves. Common spikes pass for influence between all places; censor "
                                     "them (fd_threshold) or regress the "
                                     "motion outliers (\"outliers\")"));
}

TEST(Warnings, LookAtVolumesOfIntervalsOnly) {
  std::vector<float> reference = noise(1);
  std::vector<std::vector<float>> voxels = {noise(2), noise(3)};
  for (float* const x : {reference.data(), voxels[0].data()}) x[0] += 40, x[50] += 40;
  suitability::SuitabilityInput input = inputOf(reference, voxels);
  EXPECT_EQ(suitability::runWarnings(input).size(), 2U);
  EXPECT_THAT(suitability::runWarnings(input)[0], HasSubstr("the first 1 volume stands out"));
  EXPECT_THAT(suitability::runWarnings(input)[0], HasSubstr("set drop_volumes = 1"));
  input.intervals = {{1, 49}, {51, 69}};
  EXPECT_THAT(suitability::runWarnings(input), IsEmpty());
}

TEST(Warnings, SayNothingOfWhatTheEngineRefuses) {
  const std::vector<std::vector<float>> voxels = {noise(2)};
  EXPECT_THAT(suitability::runWarnings(inputOf(std::vector<float>(120, 5.0F), voxels)), IsEmpty());
  std::vector<float> broken = noise(1);
  broken[7] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_THAT(suitability::runWarnings(inputOf(broken, voxels)), IsEmpty());
  EXPECT_THAT(suitability::runWarnings(inputOf(noise(1), {broken})), IsEmpty());
  EXPECT_THAT(suitability::runWarnings(inputOf({}, {})), IsEmpty());
}

// A line through the noise, of which 150 volumes hold 300 s.
class RawRun : public ::testing::Test {
 protected:
  RawRun() {
    for (unsigned i = 0; i < 4; ++i) {
      series_.push_back(noise(i + 1, 150));
      for (std::size_t t = 0; t < 150; ++t) series_[i][t] += 0.08F * static_cast<float>(t);
    }
    input_ = inputOf(series_[0], {});
    input_.voxels.assign(series_.begin() + 1, series_.end());
  }
  std::vector<std::vector<float>> series_;
  suitability::SuitabilityInput input_;
};

TEST_F(RawRun, IsToldWhatToDo) {
  EXPECT_THAT(
      suitability::runWarnings(input_),
      ::testing::ElementsAre(::testing::MatchesRegex(
          "run 'rest' looks raw: no confounds were regressed, nothing says that it was filtered, and "
          "[0-9]+ % of the median voxel's variance lies below 0.008 Hz, trends with it. Drift and "
          "motion that places share look like influence at every lag; regress the motion of a confounds "
          "table \\(\"24motion\"\\), set high_pass = 128 in \\[settings\\], and compare the maps")));
}

TEST_F(RawRun, IsNoneOnceAnythingWasRegressedOrFiltered) {
  input_.confoundRank = 1;
  EXPECT_THAT(suitability::runWarnings(input_), IsEmpty());
  input_.confoundRank = 0, input_.filtered = true;
  EXPECT_THAT(suitability::runWarnings(input_), IsEmpty());
  input_.filtered = false, input_.highPassed = true;
  EXPECT_THAT(suitability::runWarnings(input_), IsEmpty());
}

TEST_F(RawRun, IsNotJudgedByLessThanTwoSlowPeriods) {
  input_.trSeconds = 1.6;
  EXPECT_THAT(suitability::runWarnings(input_), IsEmpty());
}

// Every length ends without reading beyond the series (the sanitizers watch).
TEST(Warnings, TakeRunsOfAnyLength) {
  for (std::size_t n = 1; n < 50; ++n) {
    suitability::SuitabilityInput input = inputOf(noise(1, n), {});
    const std::vector<float> reference = noise(1, n), voxel = noise(2, n);
    input.referenceSeries = reference;
    input.voxels = {voxel};
    EXPECT_THAT(suitability::runWarnings(input), IsEmpty()) << n;
    input.intervals.clear();
    EXPECT_THAT(suitability::runWarnings(input), IsEmpty()) << n;
  }
}

TEST(Warnings, CountWhatConfoundsCost) {
  suitability::SuitabilityInput run;
  const std::vector<float> reference(200);
  run.referenceSeries = reference;
  run.order = 2;
  run.intervals = {{0, 44}, {100, 44}};  // 84 samples for 8 coefficients
  EXPECT_EQ(suitability::fewSamplesWarning("rest", {run}), "");
  run.confoundRank = 36;  // of 200
  EXPECT_THAT(suitability::fewSamplesWarning("rest", {run}),
              HasSubstr("condition 'rest': 69 effective samples are left"));
  EXPECT_EQ(suitability::fewSamplesWarning("rest", {run, run}), "");
  EXPECT_DOUBLE_EQ(suitability::effectiveSamples({{0, 1}, {5, 11}}, 1, 20, 0), 10);
  EXPECT_DOUBLE_EQ(suitability::effectiveSamples({{0, 11}}, 1, 20, 30), 0);
}

TEST(Robust, MedianAndSpread) {
  EXPECT_EQ(suitability::median({5, 1, 9}), 5);
  EXPECT_EQ(suitability::quantile({4, 1, 3, 2, 0}, 0.75), 3);
  EXPECT_NEAR(suitability::robustSd({-1, 0, 1, 1e9, -2}), 1.4826, 1e-12);
}

TEST(Wording, Numbers) {
  EXPECT_EQ(suitability::number(0.008333), "0.0083");
  EXPECT_EQ(suitability::number(39.9), "40");
  EXPECT_EQ(suitability::number(128), "128");
  EXPECT_EQ(suitability::percent(0.625), "63 %");
  EXPECT_EQ(suitability::list({3, 8, 9}, 3), "3, 8, 9");
  EXPECT_EQ(suitability::list({3, 8, 9}, 2), "3, 8, ... (3 in all)");
  EXPECT_EQ(suitability::counted(2, "degree"), "2 degrees");
}

}  // namespace
