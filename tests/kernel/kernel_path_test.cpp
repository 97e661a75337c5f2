#include "tav/kernel_path.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

#include "tav/reference_path.h"
#include "tests/kernel/differential.h"
#include "tests/kernel/every_kernel.h"

namespace {

constexpr int kVolumes = 80;

std::vector<float> noise(std::uint32_t seed, float mean) {
  std::mt19937 random(seed);
  std::normal_distribution<float> normal(mean, 50.0F);
  std::vector<float> course(kVolumes);
  for (float& value : course) value = normal(random);
  return course;
}

// One file of floats with the given voxels, one interval, order 2, four surrogates.
void makeCase(const std::vector<std::vector<float>>& voxels, differential::Case& made) {
  made.job.order = 2;
  made.job.inclusionThreshold = 100;
  made.job.nrOfSurrogates = 4;
  made.job.files.push_back({true, kVolumes});
  auto& reference = made.matrices.emplace_back(1, kVolumes, 1, 1);
  auto& surrogates = made.matrices.emplace_back(4, kVolumes, 1, 1);
  for (int t = 0; t < kVolumes; ++t) reference[1][t + 1] = noise(1, 1000.0F)[static_cast<std::size_t>(t)];
  for (int s = 1; s <= 4; ++s) {
    const auto row = noise(10U + static_cast<std::uint32_t>(s), 0.0F);
    for (int t = 0; t < kVolumes; ++t) surrogates[s][t + 1] = row[static_cast<std::size_t>(t)];
  }
  made.job.sets.push_back(
      {0, &reference, &surrogates, made.intervals.emplace_back(1, tav::TAV_intv{1, kVolumes})});
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
