// Detrending one interval of one voxel: mean and slope first, then the residuals. Included once
// per CPU file, behind its Simd.
//
// The mean is a sum that is exact for 16-bit data and in double precision for floats, rounded to
// float once: the residuals of a constant course are exactly 0, as in the reference.
#ifndef TAVMAP_TAV_KERNEL_DETREND_INL_H
#define TAVMAP_TAV_KERNEL_DETREND_INL_H

#include "tav/kernel/plan_view.h"

namespace tav::kernel {
namespace {

// Mean and slope of a course against the interval's ramp.
struct Trend {
  float mean;
  float slope;
};

// Residuals this much smaller than slope or mean are mostly rounding of the trend.
inline constexpr double kSlopeNoise = 1.0 / 64.0, kMeanNoise = 1.0 / (1 << 18);

// The sum of squares below which that is so.
inline float noiseOf(const IntervalView& interval, Trend trend) {
  const double slope = kSlopeNoise * static_cast<double>(trend.slope);
  const double mean = kMeanNoise * static_cast<double>(trend.mean);
  const double scale = static_cast<double>(interval.scale);
  return static_cast<float>((slope * slope + mean * mean) * interval.length * scale * scale);
}

// Sum of y(t) and of t y(t).
struct TimeSums {
  double values;
  double products;
};

// With vectors v(0) ... v(c - 1), the sum of the running sums is sum (c - i) v(i): adding up twice
// gives the sum of i v(i) without a multiplication. 32 bits hold 128 vectors of 16-bit values.
inline constexpr int kIntBlock = 128;

// Sums of `vectors` whole vectors and `rest` further values, times counted from y.
template <class S>
TimeSums blockSums(const std::uint16_t* y, int vectors, int rest) {
  auto sums = S::zeroInts(), running = S::zeroInts();
  for (int i = 0; i < vectors; ++i) {
    sums = S::add(sums, S::loadInts(y + i * S::kWidth));
    running = S::add(running, sums);
  }
  if (rest > 0) {
    sums = S::add(sums, S::keepFirst(S::loadInts(y + vectors * S::kWidth), rest));
    running = S::add(running, sums);
    ++vectors;
  }
  std::int32_t laneSums[extent(S::kWidth)], laneRunning[extent(S::kWidth)];
  S::store(laneSums, sums);
  S::store(laneRunning, running);
  std::int64_t total = 0, atLane = 0, backwards = 0;
  for (int lane = 0; lane < S::kWidth; ++lane) {
    total += laneSums[lane];
    atLane += static_cast<std::int64_t>(lane) * laneSums[lane];
    backwards += laneRunning[lane];
  }
  const std::int64_t products = atLane + S::kWidth * (vectors * total - backwards);
  return {static_cast<double>(total), static_cast<double>(products)};
}

template <class S>
TimeSums timeSums(const std::uint16_t* y, int n) {
  constexpr int kBlock = (kIntBlock - 1) * S::kWidth;
  TimeSums sums{0.0, 0.0};
  for (int first = 0; first < n; first += kBlock) {
    const int count = n - first < kBlock ? n - first : kBlock;
    const TimeSums block = blockSums<S>(y + first, count / S::kWidth, count % S::kWidth);
    sums.values += block.values;
    sums.products += block.products + first * block.values;
  }
  return sums;
}

template <class S>
Trend fitTrend(const IntervalView& interval, const std::uint16_t* y) {
  const TimeSums sums = timeSums<S>(y, interval.length);
  const double n = interval.length;
  const double mean = sums.values / n;
  // Sum of (t / (n - 1) - 0.5) y(t).
  const double product = sums.products / (n - 1.0) - 0.5 * sums.values;
  return {static_cast<float>(mean), static_cast<float>(product / interval.rampSquares)};
}

template <class S>
Trend fitTrend(const IntervalView& interval, const float* y) {
  const int n = interval.length;
  const int whole = n - n % S::kWidth;
  auto sums = S::zeroDoubles();
  for (int t = 0; t < whole; t += S::kWidth) sums = S::add(sums, S::widen(S::loadAny(y + t)));
  if (whole < n) sums = S::add(sums, S::widen(S::keepFirst(S::loadAny(y + whole), n - whole)));
  const float mean = static_cast<float>(S::sum(sums) / n);

  // The ramp is 0 behind the interval; what stands there in y is masked, for it may be NaN.
  auto products = S::zeroDoubles();
  for (int t = 0; t < whole; t += S::kWidth) {
    products = S::add(products, S::widen(S::load(interval.ramp + t) * (S::loadAny(y + t) - S::all(mean))));
  }
  if (whole < n) {
    const auto last = S::keepFirst(S::loadAny(y + whole), n - whole) - S::all(mean);
    products = S::add(products, S::widen(S::load(interval.ramp + whole) * last));
  }
  return {mean, static_cast<float>(S::sum(products) / interval.rampSquares)};
}

template <class S>
typename S::Floats loadValues(const float* y) {
  return S::loadAny(y);
}

template <class S>
typename S::Floats loadValues(const std::uint16_t* y) {
  return S::toFloats(S::loadInts(y));
}

// Writes paddedLength residuals, 0 from the interval's length on.
template <class S, class T>
void writeResiduals(const IntervalView& interval, Trend trend, const T* y, float* row) {
  const auto mean = S::all(trend.mean), slope = S::all(trend.slope), scale = S::all(interval.scale);
  const int n = interval.length;
  const int whole = n - n % S::kWidth;
  int t = 0;
  for (; t < whole; t += S::kWidth) {
    S::store(row + t, S::msub(S::load(interval.ramp + t), slope, loadValues<S>(y + t) - mean) * scale);
  }
  if (t < n) {
    const auto last = S::msub(S::load(interval.ramp + t), slope, loadValues<S>(y + t) - mean) * scale;
    S::store(row + t, S::keepFirst(last, n - t));
    t += S::kWidth;
  }
  for (; t < interval.paddedLength; t += S::kWidth) S::store(row + t, S::zero());
}

// Detrends the interval of `course` into `row`.
template <class S, class T>
Trend detrend(const IntervalView& interval, const T* course, float* row) {
  const T* y = course + interval.first;
  const Trend trend = fitTrend<S>(interval, y);
  writeResiduals<S>(interval, trend, y, row);
  return trend;
}

}  // namespace
}  // namespace tav::kernel

#endif
