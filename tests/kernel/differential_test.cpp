#include "tests/kernel/differential.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

#include "tav/kernel_path.h"
#include "tav/reference_path.h"
#include "tests/kernel/every_kernel.h"

namespace {

using KernelAgainstReference = EveryKernel;

TEST_P(KernelAgainstReference, AgreesOnRandomJobs) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed)
    ASSERT_EQ(differential::check(kernel(), seed), "") << "seed " << seed;
}

// As many as a run takes by default, and as many as there may be.
TEST_P(KernelAgainstReference, AgreesForManyNullDraws) {
  for (const int draws : {9, 20, 100}) {
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
      differential::Case made;
      differential::makeCase(seed, made);
      made.job.nullDraws = draws;
      tav::KernelPath path(kernel());
      tav::ReferencePath reference;
      ASSERT_EQ(differential::difference(made, differential::run(path, made, 1000),
                                         differential::run(reference, made, 1000)),
                "")
          << "seed " << seed << " draws " << draws;
    }
  }
}

// Jobs in which kernels once decided about a voxel that the reference fits.
TEST_P(KernelAgainstReference, LeavesNearlyDegenerateVoxelsToTheReference) {
  EXPECT_EQ(differential::check(kernel(), 766219), "");
}

TEST_P(KernelAgainstReference, GivesTheSameBitsWhateverTheSizeOfCalls) {
  for (std::uint32_t seed = 1; seed <= 40; ++seed) {
    differential::Case made;
    differential::makeCase(seed, made);
    tav::KernelPath path(kernel());
    const auto whole = differential::run(path, made, 1000);
    for (const std::size_t voxels : {std::size_t{1}, std::size_t{7}, std::size_t{17}}) {
      const auto pieces = differential::run(path, made, voxels);
      for (std::size_t m = 0; m < tav::kNrOfMeasures; ++m) {
        for (std::size_t v = 0; v < made.nrOfVoxels; ++v) {
          ASSERT_EQ(std::bit_cast<std::uint32_t>(pieces.measures[m][v]),
                    std::bit_cast<std::uint32_t>(whole.measures[m][v]))
              << "seed " << seed;
          ASSERT_EQ(std::bit_cast<std::uint32_t>(pieces.nulls[m][v]),
                    std::bit_cast<std::uint32_t>(whole.nulls[m][v]))
              << "seed " << seed;
        }
      }
    }
  }
}

INSTANTIATE_KERNELS(KernelAgainstReference);

}  // namespace
