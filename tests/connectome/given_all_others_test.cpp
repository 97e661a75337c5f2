#include <gtest/gtest.h>

#include <cmath>

#include "connectome/conditioning.h"
#include "tests/connectome/made_series.h"
#include "tests/connectome/regressions.h"
#include "tests/support/message_of.h"

namespace {

using namespace regressions;
using connectome::Measure;

class GivenAllOthersOfOrder : public testing::TestWithParam<int> {};

TEST_P(GivenAllOthersOfOrder, AreRegressionsOnThePastOfAll) {
  const int order = GetParam();
  const NodeSeries series = made::pooled(4, 21);
  const auto fit = connectome::givenAllOthers(series, order);
  std::vector<std::vector<Column>> lags;
  for (std::size_t i = 0; i < 4; ++i) lags.push_back(lagsOf(series, series.courseOf(i), order));
  for (std::size_t x = 0; x < 4; ++x) {
    for (std::size_t y = 0; y < 4; ++y) {
      if (x == y) continue;
      std::vector<Column> without, all, present;
      for (std::size_t i = 0; i < 4; ++i) {
        all = joined({all, pastOf(lags[i])});
        if (i != x) without = joined({without, pastOf(lags[i])});
        if (i != x && i != y) present = joined({present, {lags[i][0]}});
      }
      const Column restricted = leftOf(lags[y][0], without), full = leftOf(lags[y][0], all);
      EXPECT_NEAR(fit.shares.influence.at(x, y), 1 - product(full, full) / product(restricted, restricted),
                  1e-9);
      const auto both = joined({all, present});
      const Column u = leftOf(lags[x][0], both), v = leftOf(lags[y][0], both);
      EXPECT_NEAR(fit.shares.instantaneous.at(x, y),
                  std::pow(product(u, v), 2) / (product(u, u) * product(v, v)), 1e-9);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Orders, GivenAllOthersOfOrder, testing::Values(1, 2));

TEST(GivenAllOthers, SayHowManyVolumesTheyNeed) {
  const auto message = messageOf<std::runtime_error>(
      [] { (void)connectome::givenAllOthers(made::series(30, 120, 0.5, 1), 2); });
  EXPECT_NE(message.find("need 600 volumes"), std::string::npos) << message;
  EXPECT_NE(message.find("there are 118"), std::string::npos) << message;
}

TEST(GivenAllOthers, RefuseCopies) {
  NodeSeries series = made::series(3, 300, 0.5, 1);
  std::copy_n(series.runs[0].nodes.begin(), 300, series.runs[0].nodes.begin() + 300);
  EXPECT_NE(messageOf<std::runtime_error>([&] {
              (void)connectome::givenAllOthers(series, 1);
            }).find("follows from that of others"),
            std::string::npos);
}

// Known values: scipy.special.betainc.
TEST(IncompleteBeta, HasItsKnownValues) {
  EXPECT_NEAR(connectome::incompleteBeta(0.5, 2, 3), 0.6875, 1e-14);
  EXPECT_NEAR(connectome::incompleteBeta(0.3, 0.5, 0.5), 2 / M_PI * std::asin(std::sqrt(0.3)), 1e-14);
  EXPECT_NEAR(connectome::incompleteBeta(0.9, 100, 1), std::pow(0.9, 100), 1e-18);
  EXPECT_EQ(connectome::incompleteBeta(0, 2, 3), 0);
  EXPECT_EQ(connectome::incompleteBeta(1, 2, 3), 1);
}

TEST(GivenAllOthers, HaveUniformPWhereNothingIsRelated) {
  int small = 0, all = 0;
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const auto fit = connectome::givenAllOthers(made::series(8, 300, 0.5, seed), 1);
    const auto tests = connectome::testParametrically(fit, Measure::kInfluence, 1, 1);
    for (const double p : tests.p.values) {
      small += p <= 0.1 ? 1 : 0;
      all += std::isnan(p) ? 0 : 1;
    }
  }
  EXPECT_EQ(all, 20 * 56);
  EXPECT_NEAR(static_cast<double>(small) / all, 0.1, 0.03);
}

}  // namespace
