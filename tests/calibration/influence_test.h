// The F test of lagged influence, from least squares alone: what the maps are held against.
#ifndef TAVMAP_TESTS_CALIBRATION_INFLUENCE_TEST_H
#define TAVMAP_TESTS_CALIBRATION_INFLUENCE_TEST_H

#include <utility>
#include <vector>

#include "tests/calibration/noise_kinds.h"

namespace calibration {

struct InfluenceTest {
  double logRatio;  // ln(E / S): Geweke's measure of feedback
  double p;
};

// Whether `cause` helps to predict `effect`: regressions of every volume on the `order` volumes of the effect
// before it, without and with those of the cause. intervals: volumes from 1, inclusive; each detrended by a
// line of its own, and none looks back across its start. p is from the F distribution.
[[nodiscard]] InfluenceTest testInfluence(const Course& cause, const Course& effect,
                                          const std::vector<std::pair<int, int>>& intervals, int order);

// P(F > f) with these degrees of freedom.
[[nodiscard]] double upperTailOfF(double f, double numerator, double denominator);

// Which of the p values the step-up procedure of Benjamini & Hochberg (1995) rejects at q.
[[nodiscard]] std::vector<bool> rejected(const std::vector<double>& p, double q);

}  // namespace calibration

#endif
