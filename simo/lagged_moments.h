// Moments of two series over the samples of a least-squares fit.
#ifndef TAVMAP_SIMO_LAGGED_MOMENTS_H
#define TAVMAP_SIMO_LAGGED_MOMENTS_H

#include <cstddef>
#include <vector>

namespace simo {

// M(m, k) = sum over the samples t = p ... n - 1 of each interval of a(t - m) b(t - k), for lags
// 0 <= m, k <= p: every sample for which the whole past is inside the interval, with weight one.
// In double precision, so that nearly singular fits keep their digits.
class LaggedMoments {
 public:
  explicit LaggedMoments(int order);

  [[nodiscard]] int order() const { return order_; }
  void clear();
  // Adds one interval of `length` values each. One that is not longer than the order adds nothing.
  // Allocates nothing; (2p + 1)(n - p) multiply-adds.
  void add(const double* a, const double* b, int length);
  // Adds the moments of other intervals, of the same order.
  LaggedMoments& operator+=(const LaggedMoments& other);

  // The moments of the series in reversed time, which run over the same samples: M(p - m, p - k). Only
  // for moments of this order, not for a lower one's.
  [[nodiscard]] LaggedMoments reversed() const;

  [[nodiscard]] double operator()(int m, int k) const { return values_[index(m, k)]; }

 private:
  [[nodiscard]] std::size_t index(int m, int k) const {
    return static_cast<std::size_t>(m) * static_cast<std::size_t>(order_ + 1) + static_cast<std::size_t>(k);
  }

  int order_;
  std::vector<double> values_;
};

}  // namespace simo

#endif
