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

// Residuals this much smaller than the mean have lost digits to it that least squares in double
// precision would keep.
inline constexpr float kMeanDigits = 1.0F / (1 << 13);
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

// Vectors that a loop takes in one step, each with sums of its own: a single chain of additions would
// wait for every one of them.
inline constexpr int kChains = 4;

// Calls use(t, chain) for the whole vectors of n values, and returns where they end.
template <class S, class Use>
[[gnu::always_inline]] inline int forWholeVectors(int n, Use use) {
  int t = 0;
  for (; t + kChains * S::kWidth <= n; t += kChains * S::kWidth) {
#pragma GCC unroll 4
    for (int chain = 0; chain < kChains; ++chain) use(t + chain * S::kWidth, chain);
  }
  for (; t + S::kWidth <= n; t += S::kWidth) use(t, 0);
  return t;
}

// Vectors of partial sums of y(t) - y(0) and of ramp(t) (y(t) - y(0)), to be summed over the width.
template <class S>
struct TrendSums {
  typename S::Floats values, products;
};

template <class S, class T>
TrendSums<S> trendSums(const IntervalView& interval, const T* y) {
  using Floats = typename S::Floats;
  const auto first = S::all(static_cast<float>(y[0]));
  const float* const ramp = interval.ramp;
  Floats values[extent(kChains)] = {}, products[extent(kChains)] = {};
  const auto add = [&](int t, int chain, Floats value) {
    values[chain] = values[chain] + value;
    products[chain] = S::madd(S::load(ramp + t), value, products[chain]);
  };
  const int n = interval.length;
  const int end =
      forWholeVectors<S>(n, [&](int t, int chain) { add(t, chain, loadValues<S>(y + t) - first); });
  if (end < n) add(end, 0, S::keepFirst(loadValues<S>(y + end) - first, n - end));
  return {(values[0] + values[1]) + (values[2] + values[3]),
          (products[0] + products[1]) + (products[2] + products[3])};
}

// Mean and slope against the interval's ramp, of one course per lane, and the sum of squares below
// which residuals are noise.
template <class S>
struct Trends {
  typename S::Floats mean, slope, noise;
};

// The sum of squares below which an interval's mean has cost digits.
template <class S>
typename S::Floats digitsLostBelow(const IntervalView& interval, typename S::Floats mean) {
  const auto least = mean * S::all(kMeanDigits);
  return least * least * S::all(static_cast<float>(interval.length));
}

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
  const float* const ramp = interval.ramp;
  const auto residuals = [&](int t) {
    return S::msub(S::load(ramp + t), slope, loadValues<S>(y + t) - mean) * scale;
  };
  const int n = interval.length;
  int t = forWholeVectors<S>(n, [&](int whole, int) { S::store(row + whole, residuals(whole)); });
  if (t < n) {
    S::store(row + t, S::keepFirst(residuals(t), n - t));
    t += S::kWidth;
  }
  for (; t < interval.paddedLength; t += S::kWidth) S::store(row + t, S::zero());
}

}  // namespace
}  // namespace tav::kernel

#endif
