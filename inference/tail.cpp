#include "inference/tail.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace inference {

namespace {

constexpr double kBelow = 0.75;
constexpr std::size_t kFewestAbove = 20;
constexpr double kExponential = 1e-6;  // a shape this near to 0 is 0

}  // namespace

std::optional<ParetoTail> fitTail(std::vector<float> values) {
  std::sort(values.begin(), values.end());
  const auto all = static_cast<double>(values.size());
  const auto first = static_cast<std::size_t>(kBelow * all);
  if (values.size() < first + kFewestAbove || first == 0) return std::nullopt;
  const double begin = (static_cast<double>(values[first - 1]) + static_cast<double>(values[first])) / 2;
  const double count = all - static_cast<double>(first);
  double sum = 0, squares = 0;
  for (std::size_t i = first; i < values.size(); ++i) {
    const double excess = static_cast<double>(values[i]) - begin;
    sum += excess, squares += excess * excess;
  }
  const double mean = sum / count, variance = squares / count - mean * mean;
  if (!(variance > 1e-12 * squares)) return std::nullopt;
  const double ratio = mean * mean / variance;
  return ParetoTail{begin, count / all, (1 - ratio) / 2, mean * (ratio + 1) / 2, 0.01 / (all + 1)};
}

double ParetoTail::p(double value) const {
  const double excess = (value - begin) / scale;
  if (std::abs(shape) < kExponential) return std::max(leastP, share * std::exp(-excess));
  return std::max(leastP, share * std::pow(std::max(0.0, 1 + shape * excess), -1 / shape));
}

double ParetoTail::valueAt(double p) const {
  if (std::abs(shape) < kExponential) return begin - scale * std::log(p / share);
  return begin + scale / shape * (std::pow(p / share, -shape) - 1);
}

}  // namespace inference
