#include <gtest/gtest.h>

#include <cmath>

#include "connectome/edge_shares.h"
#include "connectome/lag_windows.h"
#include "tests/connectome/made_series.h"

namespace {

using connectome::NodeSeries;
using Column = std::vector<double>;

// What is left of a column behind others, by Gram and Schmidt twice.
Column leftOf(Column column, std::vector<Column> others) {
  const auto product = [](const Column& a, const Column& b) {
    double sum = 0;
    for (std::size_t t = 0; t < a.size(); ++t) sum += a[t] * b[t];
    return sum;
  };
  const auto takeOff = [&](const Column& direction, Column& from) {
    const double weight = product(direction, from) / product(direction, direction);
    for (std::size_t t = 0; t < from.size(); ++t) from[t] -= weight * direction[t];
  };
  for (std::size_t i = 0; i < others.size(); ++i)
    for (int pass = 0; pass < 2; ++pass)
      for (std::size_t j = 0; j < i; ++j) takeOff(others[j], others[i]);
  for (int pass = 0; pass < 2; ++pass)
    for (const Column& other : others) takeOff(other, column);
  return column;
}

double product(const Column& a, const Column& b) {
  double sum = 0;
  for (std::size_t t = 0; t < a.size(); ++t) sum += a[t] * b[t];
  return sum;
}

// Rows of LagWindows as columns of a design.
std::vector<Column> lagsOf(const NodeSeries& series, const std::vector<const float*>& course, int order) {
  connectome::LagWindows windows(series, order);
  Column rows(windows.vectors() * windows.samples());
  EXPECT_TRUE(windows.load(course, rows));
  std::vector<Column> columns;
  for (std::size_t m = 0; m < windows.vectors(); ++m)
    columns.emplace_back(rows.begin() + static_cast<std::ptrdiff_t>(m * windows.samples()),
                         rows.begin() + static_cast<std::ptrdiff_t>((m + 1) * windows.samples()));
  return columns;
}

std::vector<Column> joined(std::initializer_list<std::vector<Column>> lists) {
  std::vector<Column> all;
  for (const auto& list : lists) all.insert(all.end(), list.begin(), list.end());
  return all;
}

std::vector<Column> pastOf(const std::vector<Column>& lags) {
  return {lags.begin() + 1, lags.end()};
}

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
