// Detrending one interval of one course: sums first, mean and slope from them for W courses at
// once, then the residuals. Included once per CPU file, behind its Simd.
//
// The sums run over y(t) - y(0). That keeps them small, so that single precision does, and makes
// them exactly 0 for a constant course, whose residuals then are exactly 0 as in the reference.
#ifndef TAVMAP_TAV_KERNEL_DETREND_INL_H
#define TAVMAP_TAV_KERNEL_DETREND_INL_H

#include "tav/kernel/plan_view.h"

namespace tav::kernel {
namespace {

// Residuals this much smaller than slope or mean are mostly rounding of the trend.
inline constexpr float kSlopeNoise = 1.0F / 64.0F, kMeanNoise = 1.0F / (1 << 18);

template <class S>
typename S::Floats loadValues(const float* y) {
  return S::loadAny(y);
}

template <class S>
typename S::Floats loadValues(const std::uint16_t* y) {
  return S::toFloats(S::loadInts(y));
}

// Vectors of partial sums of y(t) - y(0) and of ramp(t) (y(t) - y(0)), to be summed over the width.
template <class S>
struct TrendSums {
  typename S::Floats values, products;
};

template <class S, class T>
TrendSums<S> trendSums(const IntervalView& interval, const T* y) {
  const auto first = S::all(static_cast<float>(y[0]));
  TrendSums<S> sums{S::zero(), S::zero()};
  const int n = interval.length;
  int t = 0;
  for (; t + S::kWidth <= n; t += S::kWidth) {
    const auto value = loadValues<S>(y + t) - first;
    sums.values = sums.values + value;
    sums.products = S::madd(S::load(interval.ramp + t), value, sums.products);
  }
  if (t < n) {
    const auto value = S::keepFirst(loadValues<S>(y + t) - first, n - t);
    sums.values = sums.values + value;
    sums.products = S::madd(S::load(interval.ramp + t), value, sums.products);
  }
  return sums;
}

// Mean and slope against the interval's ramp, of one course per lane, and the sum of squares below
// which residuals are noise.
template <class S>
struct Trends {
  typename S::Floats mean, slope, noise;
};

// `values` and `products`: complete sums.
template <class S>
Trends<S> trendsFrom(const IntervalView& interval, typename S::Floats first, typename S::Floats values,
                     typename S::Floats products) {
  const float n = static_cast<float>(interval.length);
  const auto mean = first + values / S::all(n);
  const auto slope = products / S::all(interval.rampSquares);
  const auto slopeNoise = slope * S::all(kSlopeNoise), meanNoise = mean * S::all(kMeanNoise);
  const auto squares = S::madd(slopeNoise, slopeNoise, meanNoise * meanNoise);
  return {mean, slope, squares * S::all(n * interval.scale * interval.scale)};
}

// Writes paddedLength residuals, 0 from the interval's length on.
template <class S, class T>
void writeResiduals(const IntervalView& interval, float meanOfAll, float slopeOfAll, const T* y, float* row) {
  const auto mean = S::all(meanOfAll), slope = S::all(slopeOfAll), scale = S::all(interval.scale);
  const int n = interval.length;
  int t = 0;
  for (; t + S::kWidth <= n; t += S::kWidth) {
    S::store(row + t, S::msub(S::load(interval.ramp + t), slope, loadValues<S>(y + t) - mean) * scale);
  }
  if (t < n) {
    const auto last = S::msub(S::load(interval.ramp + t), slope, loadValues<S>(y + t) - mean) * scale;
    S::store(row + t, S::keepFirst(last, n - t));
    t += S::kWidth;
  }
  for (; t < interval.paddedLength; t += S::kWidth) S::store(row + t, S::zero());
}

}  // namespace
}  // namespace tav::kernel

#endif
