#include "tav/kernel_path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tav/reference_path.h"
#include "tests/kernel/differential.h"
#include "tests/kernel/every_kernel.h"

namespace {

constexpr int kVolumes = 80;

std::vector<float> noise(std::uint32_t seed, float mean, std::size_t volumes = kVolumes) {
  std::mt19937 random(seed);
  std::normal_distribution<float> normal(mean, 50.0F);
  std::vector<float> course(volumes);
  for (float& value : course) value = normal(random);
  return course;
}

// One file of floats with the given voxels, one interval, four surrogates.
void makeCase(const std::vector<std::vector<float>>& voxels, differential::Case& made, int order = 2) {
  const std::size_t volumes = voxels[0].size();
  const int nrOfVolumes = static_cast<int>(volumes);
  made.job.order = order;
  made.job.inclusionThreshold = 100;
  made.job.nrOfSurrogates = 4;
  made.job.files.push_back({true, nrOfVolumes});
  auto& reference = made.matrices.emplace_back(1, nrOfVolumes, 1, 1);
  auto& surrogates = made.matrices.emplace_back(4, nrOfVolumes, 1, 1);
  std::ranges::copy(noise(1, 1000.0F, volumes), reference[1] + 1);
  for (int s = 1; s <= 4; ++s)
    std::ranges::copy(noise(10U + static_cast<std::uint32_t>(s), 0.0F, volumes), surrogates[s] + 1);
  made.job.sets.push_back(
      {0, &reference, &surrogates, made.intervals.emplace_back(1, tav::TAV_intv{1, nrOfVolumes})});
  auto& data = made.floats.emplace_back();
  for (const auto& voxel : voxels) data.insert(data.end(), voxel.begin(), voxel.end());
  made.data.push_back({data.data(), nullptr});
  made.nrOfVoxels = voxels.size();
}

std::size_t referredOf(const tav::kernel::Kernel& kernel, const std::vector<std::vector<float>>& voxels,
                       tav::VoxelStatus expected) {
  differential::Case made;
  makeCase(voxels, made);
  tav::KernelPath path(kernel);
  const differential::Outcome outcome = differential::run(path, made, 1000);
  for (const tav::VoxelStatus status : outcome.status) EXPECT_EQ(status, expected);
  return path.nrReferred();
}

using KernelPath = EveryKernel;

TEST_P(KernelPath, DecidesOrdinaryVoxelsItself) {
  std::vector<std::vector<float>> voxels;
  for (std::uint32_t i = 0; i < 40; ++i) voxels.push_back(noise(100 + i, 9000.0F));
  EXPECT_EQ(referredOf(kernel(), voxels, tav::VoxelStatus::kComputed), 0U);
}

TEST_P(KernelPath, DecidesConstantVoxelsItself) {
  EXPECT_EQ(referredOf(kernel(), {std::vector<float>(kVolumes, 812.3F)}, tav::VoxelStatus::kIllDefined), 0U);
}

TEST_P(KernelPath, DecidesSkippedVoxelsWithoutTheKernel) {
  const std::vector<float> atThreshold(kVolumes, 100.0F);
  std::vector<float> withoutFirst = noise(3, 9000.0F);
  withoutFirst[0] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(referredOf(kernel(), {atThreshold, withoutFirst}, tav::VoxelStatus::kBelowInclusion), 0U);
}

// How many voxels the kernel refers to the reference path, with which it must agree.
std::size_t referredInAgreement(const tav::kernel::Kernel& kernel,
                                const std::vector<std::vector<float>>& voxels, int order) {
  differential::Case made;
  makeCase(voxels, made, order);
  tav::KernelPath path(kernel);
  tav::ReferencePath reference;
  const auto fast = differential::run(path, made, 1000), slow = differential::run(reference, made, 1000);
  EXPECT_EQ(differential::difference(made, fast, slow), "");
  return path.nrReferred();
}

// What is left of a straight line is rounding: whether a model fits that, only the reference can tell. Over
// 65 volumes some lines leave exactly nothing.
TEST_P(KernelPath, LeavesStraightVoxelsToTheReferencePath) {
  std::vector<std::vector<float>> voxels;
  for (const float slope : {1.0F, -2.0F, 3.0F, 0.5F, 0.37F}) {
    auto& voxel = voxels.emplace_back(65);
    for (std::size_t t = 0; t < voxel.size(); ++t) voxel[t] = 4096.0F + slope * static_cast<float>(t);
  }
  EXPECT_EQ(referredInAgreement(kernel(), voxels, 2), voxels.size());
}

// A slope this much larger than what it leaves behind makes its rounding visible.
TEST_P(KernelPath, LeavesSteepVoxelsToTheReferencePath) {
  std::vector<float> steep = noise(5, 9000.0F);
  for (std::size_t t = 0; t < steep.size(); ++t) steep[t] += 100.0F * static_cast<float>(t);
  EXPECT_EQ(referredInAgreement(kernel(), {steep, noise(6, 9000.0F)}, 2), 1U);
}

// Squares of 1e-23 in all: single precision has few digits left for what is subtracted from them.
TEST_P(KernelPath, LeavesTinyVoxelsToTheReferencePath) {
  std::vector<float> tiny = noise(5, 0.0F);
  for (float& value : tiny) value *= 1e-14F;
  tiny[0] = std::abs(tiny[0]);
  differential::Case made;
  makeCase({tiny}, made);
  made.job.inclusionThreshold = 0;
  tav::KernelPath path(kernel());
  (void)differential::run(path, made, 1000);
  EXPECT_EQ(path.nrReferred(), 1U);
}

// Slow waves with ends at their mean leave an error of 5e-5 of their variance: near enough to 0 for
// rounding to matter.
TEST_P(KernelPath, LeavesNearlyDeterminedVoxelsToTheReferencePath) {
  std::vector<float> wave(2000);
  for (std::size_t t = 0; t < wave.size(); ++t) {
    const double phase = 3.14159265 * (static_cast<double>(t) / 999.5 - 1);
    wave[t] = static_cast<float>(1000 + 300 * (std::cos(phase) - std::cos(3 * phase)));
  }
  EXPECT_EQ(referredInAgreement(kernel(), {wave}, 1), 1U);
}

// Each series is within the range of single precision, the product of their squares is not.
TEST_P(KernelPath, LeavesLargeProductsToTheReferencePath) {
  std::vector<float> voxel = noise(5, 9000.0F);
  for (float& value : voxel) value *= 2e6F;
  differential::Case made;
  makeCase({voxel}, made);
  for (auto& courses : made.matrices) {
    for (std::size_t i = 0; i < courses.size(); ++i) courses.elements()[i] *= 2e6F;
  }
  tav::KernelPath path(kernel());
  const auto outcome = differential::run(path, made, 1000);
  EXPECT_EQ(outcome.status[0], tav::VoxelStatus::kComputed);
  EXPECT_EQ(path.nrReferred(), 1U);
}

TEST_P(KernelPath, LeavesACopyOfTheReferenceToTheReferencePath) {
  std::vector<float> copy = noise(1, 1000.0F);
  for (float& value : copy) value = 2.0F * value;
  differential::Case made;
  makeCase({copy}, made);
  tav::KernelPath path(kernel());
  tav::ReferencePath reference;
  const auto fast = differential::run(path, made, 1000), slow = differential::run(reference, made, 1000);
  EXPECT_EQ(path.nrReferred(), 1U);
  EXPECT_EQ(fast.status, slow.status);
  EXPECT_EQ(fast.nextDraw, slow.nextDraw);
}

TEST_P(KernelPath, LeavesMissingValuesToTheReferencePath) {
  std::vector<float> missing = noise(5, 9000.0F);
  missing[40] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(referredOf(kernel(), {missing}, tav::VoxelStatus::kComputed), 1U);
}

TEST_P(KernelPath, LeavesJobsWithoutSurrogatesToTheReferencePath) {
  differential::Case made;
  makeCase({noise(7, 9000.0F)}, made);
  made.job.nrOfSurrogates = 0;
  tav::KernelPath path(kernel());
  const auto before = tav::kernel::batchesRun(kernel().name);
  const auto outcome = differential::run(path, made, 1000);
  EXPECT_EQ(outcome.status[0], tav::VoxelStatus::kComputed);
  EXPECT_EQ(outcome.counts.surrogatesIllDefined, 1);
  EXPECT_EQ(tav::kernel::batchesRun(kernel().name), before);
}

INSTANTIATE_KERNELS(KernelPath);

}  // namespace
