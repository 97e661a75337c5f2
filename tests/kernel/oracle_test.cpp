#include "tests/kernel/oracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "tests/kernel/cases.h"
#include "tests/kernel/every_kernel.h"

namespace {

using tav::kernel::Element;
using tav::kernel::Kernel;
using tav::kernel::Verdict;

// Absolute tolerance of a measure in single precision. The error covariances carry rounding errors
// of some tens of eps of the moments (sums of N products over W lanes, then 2 order steps of
// elimination); relative to a pivot they grow by 1 / conditioning, and the logarithm of a quotient
// passes relative errors on as absolute ones.
double tolerance(const oracle::Answer& answer, int order) {
  constexpr double kEps = static_cast<double>(std::numeric_limits<float>::epsilon());
  return kEps * (20.0 + 4.0 * order) / std::min(1.0, answer.conditioning);
}

struct Tally {
  int compared = 0, unsure = 0, illDefined = 0;
  double worst = 0.0, squares = 0.0;
};

void compare(const oracle::Answer& answer, Verdict verdict, const float* const* values, int order,
             Tally& tally) {
  if (verdict == Verdict::kUnsure) {
    ++tally.unsure;
    return;
  }
  EXPECT_EQ(answer.exists, verdict == Verdict::kDone);
  if (!answer.exists || verdict != Verdict::kDone) {
    ++tally.illDefined;
    return;
  }
  for (std::size_t i = 0; i < 3; ++i) {
    const double error = std::abs(static_cast<double>(*values[i]) - answer.measures[i]);
    EXPECT_LE(error, tolerance(answer, order)) << "measure " << i << " conditioning " << answer.conditioning;
    tally.worst = std::max(tally.worst, error);
    tally.squares += error * error;
    ++tally.compared;
  }
}

Tally compareAll(const Kernel& kernel, const cases::Condition& condition) {
  const cases::Results results = cases::run(kernel, condition);
  Tally tally;
  for (std::size_t v = 0; v < condition.nrOfVoxels(); ++v) {
    const float* truth[] = {&results.measures[0][v], &results.measures[1][v], &results.measures[2][v]};
    compare(cases::expected(condition, v, -1), results.verdicts[v], truth, condition.order, tally);
    for (int k = 0; k < condition.draws; ++k) {
      const std::size_t at = static_cast<std::size_t>(k) * results.nullStride + v;
      const float* null[] = {&results.nulls[0][at], &results.nulls[1][at], &results.nulls[2][at]};
      compare(cases::expected(condition, v, k), results.nullVerdicts[at], null, condition.order, tally);
    }
  }
  return tally;
}

using KernelAgainstOracle = EveryKernel;

void expectAgreement(const Kernel& kernel, const cases::Shape& shape, std::uint32_t seed) {
  const cases::Condition condition = cases::makeCondition(shape, seed);
  const Tally tally = compareAll(kernel, condition);
  EXPECT_GT(tally.compared, 0);
  // Ordinary data are hardly ever close to singular.
  EXPECT_LE(tally.unsure, 2) << "order " << shape.order;
  if (std::getenv("TAVMAP_TEST_FIGURES") != nullptr) {
    std::printf("%s order %d: %d compared, %d unsure, %d ill-defined, worst %.2e, rms %.2e\n", kernel.name,
                shape.order, tally.compared, tally.unsure, tally.illDefined, tally.worst,
                std::sqrt(tally.squares / std::max(tally.compared, 1)));
  }
}

TEST_P(KernelAgainstOracle, AgreesWithTheOracleAtEveryOrderInLeastSquares) {
  for (int order = 1; order <= 20; ++order) {
    cases::Shape shape;
    shape.order = order;
    shape.leastSquares = true;
    shape.lengths = {{150}};
    expectAgreement(kernel(), shape, static_cast<std::uint32_t>(order));
  }
}

TEST_P(KernelAgainstOracle, AgreesWithTheOracleAtEveryOrderInTheWrittenForm) {
  for (int order = 1; order <= 20; ++order) {
    cases::Shape shape;
    shape.order = order;
    shape.lengths = {{150}};
    expectAgreement(kernel(), shape, 100 + static_cast<std::uint32_t>(order));
  }
}

TEST_P(KernelAgainstOracle, AgreesWithTheOracleOver16BitDataInSeveralSetsAndIntervals) {
  for (int order : {1, 2, 3, 5, 8}) {
    cases::Shape shape;
    shape.order = order;
    shape.element = Element::kUint16;
    shape.lengths = {{60, 31, 45}, {100}, {17, 64}};
    expectAgreement(kernel(), shape, 200 + static_cast<std::uint32_t>(order));
  }
}

TEST_P(KernelAgainstOracle, AgreesWithTheOracleForEveryDraw) {
  for (int order : {1, 4}) {
    for (const int draws : {5, 8, 9, 20}) {  // more than one round of rows
      cases::Shape shape;
      shape.order = order;
      shape.draws = draws;
      shape.nrOfSurrogates = 40;
      shape.lengths = {{60, 50}};
      expectAgreement(kernel(), shape, 300 + static_cast<std::uint32_t>(order * draws));
    }
  }
}

INSTANTIATE_KERNELS(KernelAgainstOracle);

}  // namespace
