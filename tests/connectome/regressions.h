// Regressions by Gram and Schmidt, which share nothing with the product.
#ifndef TAVMAP_TESTS_CONNECTOME_REGRESSIONS_H
#define TAVMAP_TESTS_CONNECTOME_REGRESSIONS_H

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

#include "connectome/lag_windows.h"

namespace regressions {

using connectome::NodeSeries;
using Column = std::vector<double>;

// What is left of a column behind others, by Gram and Schmidt twice.
inline Column leftOf(Column column, std::vector<Column> others) {
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

inline double product(const Column& a, const Column& b) {
  double sum = 0;
  for (std::size_t t = 0; t < a.size(); ++t) sum += a[t] * b[t];
  return sum;
}

// Rows of LagWindows as columns of a design.
inline std::vector<Column> lagsOf(const NodeSeries& series, const std::vector<const float*>& course,
                                  int order) {
  connectome::LagWindows windows(series, order);
  Column rows(windows.vectors() * windows.samples());
  EXPECT_TRUE(windows.load(course, rows));
  std::vector<Column> columns;
  for (std::size_t m = 0; m < windows.vectors(); ++m)
    columns.emplace_back(rows.begin() + static_cast<std::ptrdiff_t>(m * windows.samples()),
                         rows.begin() + static_cast<std::ptrdiff_t>((m + 1) * windows.samples()));
  return columns;
}

inline std::vector<Column> joined(std::initializer_list<std::vector<Column>> lists) {
  std::vector<Column> all;
  for (const auto& list : lists) all.insert(all.end(), list.begin(), list.end());
  return all;
}

inline std::vector<Column> pastOf(const std::vector<Column>& lags) {
  return {lags.begin() + 1, lags.end()};
}

}  // namespace regressions

#endif
