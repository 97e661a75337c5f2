// The selection of large magnitudes for the threshold search. Included once per CPU file, behind its
// Simd.
#ifndef TAVMAP_TAV_KERNEL_TAIL_INL_H
#define TAVMAP_TAV_KERNEL_TAIL_INL_H

#include "tav/kernel/tail_counts.h"

namespace tav::kernel {
namespace {

// Writes the magnitudes, times `scale`, that are at least `cut` to `tail`, in their order; it has room for
// `count`. Most vectors hold none.
template <class S>
TailCounts selectTail(const float* values, std::size_t count, float scale, float cut, float* tail) {
  TailCounts counts{0, 0, 0};
  const auto take = [&](std::size_t i, typename S::Floats value, int lanes) {
    const auto magnitude = S::magnitude(value * S::all(scale));
    const auto present = static_cast<typename S::Mask>((1U << lanes) - 1U);
    const auto zeros = S::lessEqual(magnitude, S::zero()) & present;
    const auto nans = ~S::lessEqual(S::zero(), magnitude) & present;
    counts.zeros += static_cast<std::size_t>(__builtin_popcount(zeros));
    counts.nans += static_cast<std::size_t>(__builtin_popcount(nans));
    for (auto large = S::lessEqual(S::all(cut), magnitude) & present; large != 0; large &= large - 1)
      tail[counts.selected++] =
          __builtin_fabsf(values[i + static_cast<unsigned>(__builtin_ctz(large))] * scale);
  };
  std::size_t i = 0;
  for (; i + S::kWidth <= count; i += S::kWidth) take(i, S::loadAny(values + i), S::kWidth);
  if (i == count) return counts;
  alignas(64) float last[extent(S::kWidth)] = {};
  for (std::size_t l = 0; i + l < count; ++l) last[l] = values[i + l];
  take(i, S::load(last), static_cast<int>(count - i));
  return counts;
}

}  // namespace
}  // namespace tav::kernel

#endif
