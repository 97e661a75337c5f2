// Several references in one pass over the voxels: each gets the bits that it gets alone.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "tav/kernel_path.h"
#include "tav/reference_path.h"
#include "tests/kernel/differential.h"
#include "tests/kernel/every_kernel.h"

namespace {

using differential::Case;
using differential::Outcome;

// The case's job with the reference and surrogates of each set scaled, shifted and shuffled.
tav::VoxelJob otherReference(Case& made, int which) {
  tav::VoxelJob job = made.job;
  for (tav::VoxelSet& set : job.sets) {
    const simo::Matrix<float>&reference = *set.reference, &surrogates = *set.surrogates;
    auto& newReference = made.matrices.emplace_back(1, reference.nCols, 1, 1);
    auto& newSurrogates = made.matrices.emplace_back(surrogates.nRows, surrogates.nCols, 1, 1);
    for (int t = 1; t <= reference.nCols; ++t) {
      const int turned = 1 + (t + which) % reference.nCols;
      newReference[1][t] = 2.0F + 1.5F * reference[1][turned];
      for (int s = 1; s <= surrogates.nRows; ++s)
        newSurrogates[s][t] = surrogates[1 + (s + which) % surrogates.nRows][turned];
    }
    set.reference = &newReference;
    set.surrogates = &newSurrogates;
  }
  return job;
}

std::vector<std::uint32_t> bitsOf(const Outcome& outcome) {
  std::vector<std::uint32_t> bits;
  for (const auto* planes : {outcome.measures, outcome.nulls, outcome.further}) {
    for (int m = 0; m < tav::kNrOfMeasures; ++m) {
      for (const float value : planes[m]) bits.push_back(std::bit_cast<std::uint32_t>(value));
    }
  }
  for (const tav::VoxelStatus status : outcome.status) bits.push_back(static_cast<std::uint32_t>(status));
  for (const int count : {outcome.counts.skipped, outcome.counts.illDefined,
                          outcome.counts.surrogatesIllDefined, outcome.nextDraw})
    bits.push_back(static_cast<std::uint32_t>(count));
  return bits;
}

void expectEachAsAlone(tav::VoxelPath& path, int nrOfReferences, std::uint32_t seeds) {
  std::size_t computed = 0;
  for (std::uint32_t seed = 1; seed <= seeds; ++seed) {
    Case made;
    differential::makeCase(seed, made);
    std::vector<tav::VoxelJob> jobs{made.job};
    while (static_cast<int>(jobs.size()) < nrOfReferences)
      jobs.push_back(otherReference(made, static_cast<int>(jobs.size())));
    const std::vector<Outcome> together = differential::run(path, made, jobs, 17);
    for (std::size_t i = 0; i < jobs.size(); ++i) {
      const Outcome alone = differential::run(path, made, {jobs[i]}, 17)[0];
      ASSERT_EQ(bitsOf(together[i]), bitsOf(alone)) << "seed " << seed << ", reference " << i;
      computed += alone.status.size() - static_cast<std::size_t>(alone.counts.skipped);
    }
  }
  EXPECT_GT(computed, 30 * seeds);
}

using SharedPass = EveryKernel;

TEST_P(SharedPass, GivesEachReferenceTheBitsThatItGetsAlone) {
  tav::KernelPath path(kernel());
  expectEachAsAlone(path, 3, 60);
}

TEST_P(SharedPass, TakesMoreReferencesThanAPlanHolds) {
  tav::KernelPath path(kernel());
  expectEachAsAlone(path, tav::kernel::kMaxReferences + 2, 20);
}

INSTANTIATE_KERNELS(SharedPass);

TEST(SharedReferencePass, GivesEachReferenceTheBitsThatItGetsAlone) {
  tav::ReferencePath path;
  expectEachAsAlone(path, 3, 60);
}

}  // namespace
