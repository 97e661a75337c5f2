// Rows that enter with every voxel, prepared once: detrended, with their own lag sums and tails.
// Included once per CPU file, behind its Simd.
#ifndef TAVMAP_TAV_KERNEL_PREPARE_INL_H
#define TAVMAP_TAV_KERNEL_PREPARE_INL_H

#include "tav/kernel/detrend-inl.h"
#include "tav/kernel/lag_sums-inl.h"

namespace tav::kernel {
namespace {

// Stands for a sum of squares that is not to be trusted: whatever uses it becomes unsure.
inline constexpr float kUntrusted = __builtin_nanf("");

inline bool isZero(const float* row, int n) {
  for (int t = 0; t < n; ++t) {
    if (row[t] != 0.0F) return false;
  }
  return true;
}

template <class S>
float sumOf(typename S::Floats v) {
  alignas(64) float lanes[extent(S::kWidth)];
  S::store(lanes, v);
  double sum = 0.0;
  for (const float lane : lanes) sum += static_cast<double>(lane);
  return static_cast<float>(sum);
}

template <class S>
float firstLane(typename S::Floats v) {
  alignas(64) float lanes[extent(S::kWidth)];
  S::store(lanes, v);
  return lanes[0];
}

// Fills one table from a row with zeros around it.
template <class S>
void tabulate(const IntervalView& interval, const RowsView& task, const LagLoops<S, 0>& own, const float* row,
              float* partials, float* table) {
  constexpr std::ptrdiff_t kStep = static_cast<std::ptrdiff_t>(S::kWidth) * S::kWidth;
  const int order = task.order;
  const LagRows rows{row, {row}, interval.paddedLength};
  own.run({&rows, 1}, order, partials);
  for (int lag = 0; lag <= order; ++lag)
    table[lag] = sumOf<S>(S::load(partials + crossStatistic(order, 0, lag) * kStep));
  for (int i = 0; i < order; ++i) table[order + 1 + i] = row[interval.length - 1 - i];
  if (!task.leastSquares) return;
  for (int i = 0; i < order; ++i) table[2 * order + 1 + i] = row[i];
}

struct RowTrend {
  float mean, slope, noise;
};

template <class S>
RowTrend rowTrend(const IntervalView& interval, const float* y) {
  const TrendSums<S> sums = trendSums<S>(interval, y);
  const Trends<S> trends =
      trendsFrom<S>(interval, S::all(y[0]), S::all(sumOf<S>(sums.values)), S::all(sumOf<S>(sums.products)));
  return {firstLane<S>(trends.mean), firstLane<S>(trends.slope), firstLane<S>(trends.noise)};
}

// Residuals that are rounding of the trend, or whose squares vanish in single precision.
inline bool isTrusted(const IntervalView& interval, const RowTrend& trend, bool leastSquares,
                      const float* row, float squares) {
  const float least = trend.mean * kMeanDigits;
  if (leastSquares && squares > 0.0F && squares < least * least * static_cast<float>(interval.length))
    return false;
  if (squares > 0.0F) return squares >= trend.noise;
  return trend.slope == 0.0F && isZero(row, interval.length);
}

// The source is copied first: nothing is read behind its end.
template <class S>
void prepareRows(const IntervalView& interval, const RowsView& task, const WorkView& work) {
  float* row = work.rows + interval.rowOffset;
  const LagLoops<S, 0> own = loopsForOwn<S, 0>(task.order);
  const auto length = static_cast<std::size_t>(interval.length),
             padded = static_cast<std::size_t>(interval.paddedLength);
  for (std::size_t r = 0; r < static_cast<std::size_t>(task.nrOfRows); ++r) {
    const float* source = task.source + r * task.sourceStride;
    for (std::size_t t = 0; t < length; ++t) row[t] = source[t];
    const RowTrend trend = rowTrend<S>(interval, row);
    writeResiduals<S>(interval, trend.mean, trend.slope, row, row);
    float* table = task.tables + r * interval.tableStride;
    tabulate<S>(interval, task, own, row, work.partials, table);
    if (!isTrusted(interval, trend, task.leastSquares, row, table[0])) table[0] = kUntrusted;
    float* copy = task.rows + r * padded;
    for (std::size_t t = 0; t < padded; t += S::kWidth) S::store(copy + t, S::load(row + t));
  }
}

}  // namespace
}  // namespace tav::kernel

#endif
