#include "tests/calibration/influence_test.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace calibration {
namespace {

// Tables of the F distribution; with two degrees above, the tail is (1 + 2 f / n)^(-n/2).
TEST(FDistribution, HasTheTailsOfTheTables) {
  EXPECT_NEAR(upperTailOfF(4.9646, 1, 10), 0.05, 1e-5);
  for (const double f : {0.1, 1.0, 5.0, 20.0})
    EXPECT_NEAR(upperTailOfF(f, 2, 30), std::pow(1 + 2 * f / 30, -15.0), 1e-12);
}

TEST(StepUp, RejectsUpToTheLastValueBelowItsRankTimesQ) {
  // .03 is above 2/4 of .05; .037 is below 3/4 of it, and takes .03 along.
  EXPECT_EQ(rejected({0.037, 0.2, 0.01, 0.03}, 0.05), (std::vector<bool>{true, false, true, true}));
  EXPECT_EQ(rejected({0.3, 0.2}, 0.05), (std::vector<bool>{false, false}));
}

TEST(InfluenceTest, IsUniformWithoutInfluenceAndSmallWithIt) {
  Generator generator(5);
  const CourseKind kind = autoregressive({0.5});
  int below = 0;
  for (int i = 0; i < 400; ++i) {
    const Course cause = kind(60, generator), effect = kind(60, generator);
    if (testInfluence(cause, effect, {{1, 30}, {36, 60}}, 1).p < 0.1) ++below;
  }
  EXPECT_NEAR(below / 400.0, 0.1, 0.045);
  const Course cause = kind(60, generator);
  Course effect = kind(60, generator);
  for (std::size_t t = 1; t < effect.size(); ++t) effect[t] += 3 * cause[t - 1];
  EXPECT_LT(testInfluence(cause, effect, {{1, 60}}, 1).p, 1e-6);
}

}  // namespace
}  // namespace calibration
