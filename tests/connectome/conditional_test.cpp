#include <gtest/gtest.h>

#include <cmath>

#include "connectome/edge_shares.h"
#include "tests/connectome/made_series.h"
#include "tests/connectome/regressions.h"

namespace {

using namespace regressions;

class ConditionalShares : public testing::TestWithParam<int> {};

TEST_P(ConditionalShares, AreThoseOfRegressionsWithTheGivenSeriesAmongTheirTerms) {
  const int order = GetParam();
  const NodeSeries series = made::pooled(4, 11, 2);
  const auto shares = connectome::edgeShares(series, order, 2);
  const auto z1 = lagsOf(series, series.givenCourse(0), order),
             z2 = lagsOf(series, series.givenCourse(1), order);
  const auto past = joined({pastOf(z1), pastOf(z2)}), present = joined({z1, z2});
  for (std::size_t a = 0; a < 4; ++a) {
    for (std::size_t b = 0; b < 4; ++b) {
      if (a == b) continue;
      const auto x = lagsOf(series, series.courseOf(a), order), y = lagsOf(series, series.courseOf(b), order);
      const Column alone = leftOf(y[0], joined({past, pastOf(y)}));
      const Column with = leftOf(y[0], joined({past, pastOf(y), pastOf(x)}));
      EXPECT_NEAR(-std::log1p(-shares.influence.at(a, b)),
                  std::log(product(alone, alone) / product(with, with)), 1e-9);
      const auto all = joined({present, pastOf(x), pastOf(y)});
      const Column u = leftOf(x[0], all), v = leftOf(y[0], all);
      EXPECT_NEAR(shares.instantaneous.at(a, b), std::pow(product(u, v), 2) / (product(u, u) * product(v, v)),
                  1e-9);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Orders, ConditionalShares, testing::Values(1, 3));

// 0 drives 1 and 1 drives 2: what 0 says of 2 is what 1 has said.
TEST(ConditionalShares, OfAChainVanishOnceItsMiddleIsGiven) {
  NodeSeries series = made::series(3, 2000, 0.2, 4, {{0, 1, 0.8}, {1, 2, 0.8}});
  const double before = connectome::edgeShares(series, 2, 1).influence.at(0, 2);
  series.given = 1;
  series.runs[0].given.assign(series.runs[0].nodes.begin() + 2000, series.runs[0].nodes.begin() + 4000);
  const auto conditional = connectome::edgeShares(series, 2, 1);
  EXPECT_GT(before, 0.05);
  EXPECT_LT(conditional.influence.at(0, 2), 0.005);
  EXPECT_TRUE(std::isnan(conditional.influence.at(0, 1))) << "the middle itself is given";
}

}  // namespace
