#include "prepare/cosines.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace study {
namespace {

// A TR such as 0.8 has no exact number: a count that is whole must not fall below it.
constexpr double kRounding = 1e-9;

std::vector<double> cosine(int k, int volumes) {
  std::vector<double> column;
  for (int t = 0; t < volumes; ++t)
    column.push_back(std::sqrt(2.0 / volumes) * std::cos(std::numbers::pi * k * (2 * t + 1) / (2 * volumes)));
  return column;
}

}  // namespace

std::vector<std::vector<double>> highPassCosines(int volumes, double trSeconds, double periodSeconds) {
  std::vector<std::vector<double>> columns;
  if (!(periodSeconds > 0)) return columns;
  const double slower = std::floor(2 * volumes * trSeconds / periodSeconds + kRounding);
  const int count = static_cast<int>(std::min(slower, volumes - 1.0));
  for (int k = 1; k <= count; ++k) columns.push_back(cosine(k, volumes));
  return columns;
}

std::string highPassName(std::size_t column) {
  return fmt::format("high_pass{:02}", column);
}

}  // namespace study
