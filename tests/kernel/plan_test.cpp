#include "tav/kernel/plan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <vector>

#include "tests/kernel/every_kernel.h"
#include "tests/kernel/oracle.h"

namespace {

using tav::kernel::Plan;
using tav::kernel::PlanSpec;

struct Source {
  std::vector<float> reference, surrogates;
  PlanSpec spec(int order, std::vector<tav::kernel::Interval> intervals, int draws = 1) const {
    return {order,
            draws,
            false,
            2,
            {{tav::kernel::Element::kFloat,
              {{reference.data(), surrogates.data(), reference.size()}},
              std::move(intervals)}}};
  }
};

Source makeSource(std::size_t volumes) {
  Source source;
  for (std::size_t t = 0; t < volumes; ++t) {
    source.reference.push_back(static_cast<float>(500.0 + 20.0 * std::sin(1.7 * static_cast<double>(t))));
  }
  for (std::size_t t = 0; t < 2 * volumes; ++t) {
    source.surrogates.push_back(static_cast<float>(std::cos(0.3 * static_cast<double>(t * t % 89))));
  }
  return source;
}

using KernelPlan = EveryKernel;

TEST_P(KernelPlan, HoldsDetrendedRowsWithZerosBehindThem) {
  const Source source = makeSource(40);
  const Plan plan(source.spec(2, {{3, 30}}), kernel());
  const auto& interval = plan.view().intervals[0];
  ASSERT_EQ(interval.length, 30);
  ASSERT_EQ(interval.paddedLength, 32);
  const oracle::Series expected =
      oracle::detrended({source.reference.begin() + 3, source.reference.begin() + 33});
  for (std::size_t t = 0; t < 30; ++t)
    EXPECT_NEAR(static_cast<double>(plan.view().rows[0].reference[t]), expected[t], 1e-4);
  EXPECT_EQ(plan.view().rows[0].reference[30], 0.0F);
  EXPECT_EQ(plan.view().rows[0].reference[31], 0.0F);
}

TEST_P(KernelPlan, TabulatesLagSumsAndTails) {
  const Source source = makeSource(40);
  const Plan plan(source.spec(3, {{0, 40}}), kernel());
  const auto& interval = plan.view().intervals[0];
  const auto& rows = plan.view().rows[0];
  for (std::ptrdiff_t row = -1; row < 2; ++row) {
    const float* values = row < 0 ? rows.reference : rows.surrogates + row * interval.paddedLength;
    const float* table = rows.tables + row * static_cast<std::ptrdiff_t>(interval.tableStride);
    for (int lag = 0; lag <= 3; ++lag) {
      double sum = 0.0;
      for (int t = lag; t < 40; ++t)
        sum += static_cast<double>(values[t]) * static_cast<double>(values[t - lag]);
      EXPECT_NEAR(static_cast<double>(table[lag]), sum, 1e-5 * (std::abs(sum) + 1.0))
          << "row " << row << " lag " << lag;
    }
    for (int i = 0; i < 3; ++i) EXPECT_EQ(table[4 + i], values[39 - i]);
  }
}

TEST_P(KernelPlan, WeighsShortIntervalsUp) {
  const Source source = makeSource(90);
  const Plan plan(source.spec(1, {{0, 64}, {64, 16}}), kernel());
  EXPECT_EQ(plan.view().intervals[0].scale, 1.0F);
  EXPECT_EQ(plan.view().intervals[1].scale, 2.0F);
}

TEST_P(KernelPlan, DoesNotTrustRowsThatAreNothingButATrend) {
  Source source = makeSource(40);
  for (std::size_t t = 0; t < 40; ++t) source.surrogates[t] = 7.0F + 0.1F * static_cast<float>(t);
  for (std::size_t t = 40; t < 80; ++t) source.surrogates[t] = 0.0F;
  const Plan plan(source.spec(1, {{0, 40}}), kernel());
  const float* const tables = plan.view().rows[0].tables;
  EXPECT_TRUE(std::isnan(tables[0])) << "a straight line";
  EXPECT_EQ(tables[plan.view().intervals[0].tableStride], 0.0F) << "a constant is exactly flat";
}

TEST_P(KernelPlan, RefusesWhatIsOutOfRange) {
  const Source source = makeSource(40);
  EXPECT_THROW(Plan(source.spec(0, {{0, 40}}), kernel()), std::invalid_argument);
  EXPECT_THROW(Plan(source.spec(21, {{0, 40}}), kernel()), std::invalid_argument);
  EXPECT_THROW(Plan(source.spec(5, {{0, 5}}), kernel()), std::invalid_argument);
  EXPECT_THROW(Plan(source.spec(1, {{0, 40}}, 101), kernel()), std::invalid_argument);
  EXPECT_THROW(Plan(source.spec(1, {{0, 40}}, 0), kernel()), std::invalid_argument);
  PlanSpec spec = source.spec(1, {{0, 40}});
  spec.sets[0].references.clear();
  EXPECT_THROW(Plan(spec, kernel()), std::invalid_argument);
  spec.sets[0].references.resize(9, {source.reference.data(), source.surrogates.data(), 40});
  EXPECT_THROW(Plan(spec, kernel()), std::invalid_argument);
}

INSTANTIATE_KERNELS(KernelPlan);

}  // namespace
