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
float sumOfPartials(const float* partials) {
  double sum = 0.0;
  for (int i = 0; i < S::kWidth; ++i) sum += static_cast<double>(partials[i]);
  return static_cast<float>(sum);
}

// Fills one table from a row with zeros around it.
template <class S>
void tabulate(const IntervalView& interval, int order, const float* row, float* partials, float* table) {
  for (int lag = 0; lag <= order; ++lag) {
    S::store(partials + crossStatistic(order, 0, lag) * S::kWidth * S::kWidth, S::zero());
  }
  addShifts<S, 1, false, kShiftsOfOne<S>>({row, {row, row}, interval.paddedLength}, order, 0, order, partials);
  for (int lag = 0; lag <= order; ++lag) {
    table[lag] = sumOfPartials<S>(partials + crossStatistic(order, 0, lag) * S::kWidth * S::kWidth);
  }
  for (int i = 0; i < order; ++i) table[order + 1 + i] = row[interval.length - 1 - i];
}

// Residuals that are rounding of the trend, or whose squares vanish in single precision.
inline bool isTrusted(const IntervalView& interval, Trend trend, const float* row, float squares) {
  if (squares > 0.0F) return squares >= noiseOf(interval, trend);
  return trend.slope == 0.0F && isZero(row, interval.length);
}

// The source is copied first: nothing is read behind its end.
template <class S>
void prepareRows(const IntervalView& interval, const RowsView& task, const WorkView& work) {
  float* row = work.rows + interval.rowOffset;
  const auto length = static_cast<std::size_t>(interval.length), padded = static_cast<std::size_t>(interval.paddedLength);
  for (std::size_t r = 0; r < static_cast<std::size_t>(task.nrOfRows); ++r) {
    const float* source = task.source + r * task.sourceStride;
    for (std::size_t t = 0; t < length; ++t) row[t] = source[t];
    const Trend trend = fitTrend<S>(interval, row);
    writeResiduals<S>(interval, trend, row, row);
    float* table = task.tables + r * interval.tableStride;
    tabulate<S>(interval, task.order, row, work.partials, table);
    if (!isTrusted(interval, trend, row, table[0])) table[0] = kUntrusted;
    float* copy = task.rows + r * padded;
    for (std::size_t t = 0; t < padded; t += S::kWidth) S::store(copy + t, S::load(row + t));
  }
}

}  // namespace
}  // namespace tav::kernel

#endif
