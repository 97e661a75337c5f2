#include "planning/work_rates.h"

#include <gtest/gtest.h>

namespace {

using planning::Rates;
using planning::Times;

// What the work of these rates takes.
Times timesOf(const Rates& rates, std::size_t voxels, std::size_t references) {
  const auto all = static_cast<double>(voxels);
  const double pass = rates.passFixed + rates.passPerVoxel * all,
               each = rates.referenceFixed + rates.referencePerVoxel * all;
  return {voxels, rates.importPerValue * all * 320, pass + each,
          pass + static_cast<double>(references) * each};
}

TEST(WorkRates, AreThoseThatMadeTheTimes) {
  const Rates rates{1e-8, 0.5, 2e-4, 0.25, 1e-4, 300};
  for (const std::size_t references : {2U, 3U}) {
    const Rates found = planning::ratesFrom(timesOf(rates, 600, references), timesOf(rates, 1800, references),
                                            references, {320, 300});
    EXPECT_NEAR(found.importPerValue, rates.importPerValue, 1e-14);
    EXPECT_NEAR(found.passFixed, rates.passFixed, 1e-9);
    EXPECT_NEAR(found.passPerVoxel, rates.passPerVoxel, 1e-12);
    EXPECT_NEAR(found.referenceFixed, rates.referenceFixed, 1e-9);
    EXPECT_NEAR(found.referencePerVoxel, rates.referencePerVoxel, 1e-12);
    EXPECT_EQ(found.volumes, 300);
  }
}

// Of one reference one cannot tell the pass from its reference; both together are what was measured.
TEST(WorkRates, OfOneReferenceAreAllOfThePass) {
  const Rates rates{1e-8, 0.5, 2e-4, 0.25, 1e-4, 300};
  const Rates found = planning::ratesFrom(timesOf(rates, 600, 1), timesOf(rates, 1800, 1), 1, {320, 300});
  EXPECT_NEAR(found.passFixed, 0.75, 1e-9);
  EXPECT_NEAR(found.passPerVoxel, 3e-4, 1e-12);
  EXPECT_EQ(found.referenceFixed, 0);
  EXPECT_EQ(found.referencePerVoxel, 0);
}

TEST(WorkRates, AreNeverNegative) {
  const Rates found = planning::ratesFrom({600, 2, 3, 2}, {1800, 1, 1, 0.5}, 3, {320, 300});
  for (const double rate :
       {found.passFixed, found.passPerVoxel, found.referenceFixed, found.referencePerVoxel})
    EXPECT_GE(rate, 0);
}

}  // namespace
