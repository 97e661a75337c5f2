#include "simo/lagged_moments.h"

#include <algorithm>

namespace simo {
namespace {

// Four partial sums, because one would wait for itself at every term.
double dotProduct(const double* a, const double* b, int count) {
  double sums[4] = {0, 0, 0, 0};
  int t = 0;
  for (; t + 4 <= count; t += 4)
    for (int s = 0; s < 4; ++s) sums[s] += a[t + s] * b[t + s];
  for (; t < count; ++t) sums[0] += a[t] * b[t];
  return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

}  // namespace

LaggedMoments::LaggedMoments(int order)
    : order_(order),
      values_(static_cast<std::size_t>(order + 1) * static_cast<std::size_t>(order + 1), 0.0) {}

void LaggedMoments::clear() {
  std::fill(values_.begin(), values_.end(), 0.0);
}

// Along a diagonal the window moves back by one sample: one product enters at its start, one leaves
// at its end.
void LaggedMoments::add(const double* a, const double* b, int length) {
  const int p = order_, samples = length - p;
  if (samples <= 0) return;
  for (int distance = -p; distance <= p; ++distance) {
    int m = std::max(distance, 0), k = m - distance;
    double moment = dotProduct(a + p - m, b + p - k, samples);
    values_[index(m, k)] += moment;
    for (; m < p && k < p; ++m, ++k) {
      moment += a[p - 1 - m] * b[p - 1 - k] - a[length - 1 - m] * b[length - 1 - k];
      values_[index(m + 1, k + 1)] += moment;
    }
  }
}

LaggedMoments LaggedMoments::reversed() const {
  LaggedMoments backwards = *this;
  std::reverse(backwards.values_.begin(), backwards.values_.end());
  return backwards;
}

LaggedMoments& LaggedMoments::operator+=(const LaggedMoments& other) {
  for (std::size_t i = 0; i < values_.size(); ++i) values_[i] += other.values_[i];
  return *this;
}

}  // namespace simo
