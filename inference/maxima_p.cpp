#include "inference/maxima_p.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace inference {

namespace {

constexpr double kRounding = 2e-5;  // relative: floats by table, and sums in another order

}  // namespace

NullMaxima nullOfMaxima(std::vector<float> maxima, float own, bool isTailSmooth) {
  NullMaxima null;
  if (isTailSmooth) null.tail = fitTail(maxima);
  maxima.push_back(own);
  std::sort(maxima.begin(), maxima.end());
  null.sorted = std::move(maxima);
  return null;
}

double pByMaxima(const NullMaxima& null, double value) {
  if (null.tail && value > null.tail->begin) return null.tail->p(value);
  const auto bound = static_cast<float>(value - kRounding * std::abs(value));
  const auto from = std::lower_bound(null.sorted.begin(), null.sorted.end(), bound);
  return static_cast<double>(null.sorted.end() - from) / static_cast<double>(null.sorted.size());
}

double valueAtLevel(const NullMaxima& null, double level) {
  if (null.tail && level <= null.tail->share && level >= null.tail->leastP) return null.tail->valueAt(level);
  const auto allowed = static_cast<std::size_t>(level * static_cast<double>(null.sorted.size()) + 1e-9);
  for (std::size_t i = allowed; i > 0; --i) {
    const auto value = static_cast<double>(null.sorted[null.sorted.size() - i]);
    if (pByMaxima(null, value) <= level) return value;
  }
  return std::numeric_limits<double>::infinity();
}

}  // namespace inference
