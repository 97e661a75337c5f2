// Lag sums of one voxel row with itself and with reference rows: the part of the work that grows
// with the number of time points. Included once per CPU file, behind its Simd.
//
// Along time, with W = kWidth: a vector of a reference row x(t) ... x(t+W-1) meets the voxel's row
// shifted by j,
//
//     voxel row   0 0 0 0 | y(0) y(1) ...  y(N-1) | 0 0 0 0
//                            x(0) x(1) ...  x(N-1) | 0 0
//
// so that sum x(t) y(t-j) for j = -order ... order needs no case for the interval's ends. Each
// shifted vector is loaded once and enters up to four products: with the reference, with a
// surrogate and with the voxel itself; or with several surrogates.
//
// The sums over the W lanes are left to a later step that does them for W voxels at once:
// `partials` is [statistic][voxel lane][W], see statistics below.
#ifndef TAVMAP_TAV_KERNEL_LAG_SUMS_INL_H
#define TAVMAP_TAV_KERNEL_LAG_SUMS_INL_H

#include "tav/kernel/plan_view.h"

namespace tav::kernel {
namespace {

// Statistics of a pass: cross sums of row 0 at shifts -order ... order, the same of the next rows;
// behind two rows, own sums at lags 0 ... order.
constexpr int crossStatistic(int order, int row, int shift) {
  return row * (2 * order + 1) + order + shift;
}
constexpr int ownStatistic(int order, int lag) {
  return 2 * (2 * order + 1) + lag;
}

// The rows of all intervals that are summed together.
struct LagRowsList {
  const LagRows* intervals;
  int count;
};

// A partial sum of about this many vectors goes to memory, so that rounding grows with the root of
// this number and not of the number of time points.
inline constexpr int kVectorsPerSum = 64;

// Products at shifts first ... first + kShifts - 1: of kRows reference rows, and of the voxel with
// itself at shifts from first + kOwnFrom on.
template <class S, int kRows, int kShifts, int kOwnFrom>
struct LagProducts {
  static constexpr int kOwn = kShifts - kOwnFrom;
  // Whether there are registers for the rows beside the sums and two shifted vectors; left to itself
  // the compiler loads a row's vector again for every product.
  static constexpr bool kKeepsRows = kRows * kShifts + kOwn + kRows + 2 <= S::kRegisters;
  static constexpr std::ptrdiff_t kStep = static_cast<std::ptrdiff_t>(S::kWidth) * S::kWidth;
  using Floats = typename S::Floats;

  Floats cross[extent(kRows)][extent(kShifts)], own[extent(kOwn + 1)];

  void clear() {
    for (auto& row : cross) {
      for (auto& sum : row) sum = S::zero();
    }
    for (auto& sum : own) sum = S::zero();
  }

  [[gnu::always_inline]] void add(const LagRows& rows, int first, int start, int end) {
    const float* shifted = rows.voxel - first;
    Floats before = S::loadAny(shifted + start - S::kWidth);
    for (int t = start; t < end; t += S::kWidth) {
      Floats left[extent(kRows)];
#pragma GCC unroll 4
      for (int r = 0; r < kRows; ++r) {
        left[r] = S::load(rows.references[r] + t);
        if constexpr (kKeepsRows) S::pin(left[r]);
      }
      Floats self = S::zero();
      if constexpr (kOwn > 0) self = S::load(rows.voxel + t);
      const Floats here = S::loadAny(shifted + t);
      addShifts<0>(left, self, shifted + t, here, before);
      before = here;
    }
  }

  // The products at shift kShift and those behind it. `here`: what stands at `shifted`; `before`: the
  // vector in front of it.
  template <int kShift>
  [[gnu::always_inline]] void addShifts(const Floats* left, Floats self, const float* shifted, Floats here,
                                        Floats before) {
    const Floats right = S::template shifted<kShift>(shifted, here, before);
#pragma GCC unroll 4
    for (int r = 0; r < kRows; ++r) cross[r][kShift] = S::madd(left[r], right, cross[r][kShift]);
    if constexpr (kShift >= kOwnFrom) own[kShift - kOwnFrom] = S::madd(self, right, own[kShift - kOwnFrom]);
    if constexpr (kShift + 1 < kShifts) addShifts<kShift + 1>(left, self, shifted, here, before);
  }

  // Calls `use` with each sum and its place.
  template <class Use>
  [[gnu::always_inline]] void forEach(float* partials, int order, int first, Use use) const {
    for (int r = 0; r < kRows; ++r) {
      for (int j = 0; j < kShifts; ++j)
        use(partials + kStep * crossStatistic(order, r, first + j), cross[r][j]);
    }
    for (int j = kOwnFrom; j < kShifts; ++j)
      use(partials + kStep * ownStatistic(order, first + j), own[j - kOwnFrom]);
  }

  void putTo(float* partials, int order, int first, bool isFirst) const {
    if (isFirst) {
      forEach(partials, order, first, [](float* place, Floats v) { S::store(place, v); });
    } else {
      forEach(partials, order, first, [](float* place, Floats v) { S::store(place, S::load(place) + v); });
    }
  }
};

// Sums them over all intervals into the voxel's lane, at which `partials` points.
template <class S, int kRows, int kShifts, int kOwnFrom>
[[gnu::noinline]] void sumLagProducts(const LagRowsList& rows, int order, int first, float* partials) {
  LagProducts<S, kRows, kShifts, kOwnFrom> products;
  products.clear();
  bool isFirst = true;
  int vectors = 0;
  for (int i = 0; i < rows.count; ++i) {
    const LagRows& interval = rows.intervals[i];
    for (int start = 0; start < interval.paddedLength; start += kVectorsPerSum * S::kWidth) {
      if (vectors >= kVectorsPerSum) {
        products.putTo(partials, order, first, isFirst);
        products.clear();
        isFirst = false;
        vectors = 0;
      }
      const int left = interval.paddedLength - start, most = kVectorsPerSum * S::kWidth;
      products.add(interval, first, start, start + (left < most ? left : most));
      vectors += (left < most ? left : most) / S::kWidth;
    }
  }
  products.putTo(partials, order, first, isFirst);
}

using LagFunction = void (*)(const LagRowsList&, int, int, float*);

// Most shifts that a loop carries: of two rows with own products, and of some rows without.
template <class S>
inline constexpr int kShiftsWithOwn = S::kAccumulators / 3;
template <class S, int kRows>
inline constexpr int kShiftsOf = S::kAccumulators / kRows < 12 ? S::kAccumulators / kRows : 12;

// table[n - 1]: n shifts, all with own products or none.
template <class S, int kRows, bool kWithOwn, int... kCounts>
LagFunction pick(int n) {
  static constexpr LagFunction table[] = {&sumLagProducts < S, kRows, kCounts + 1,
                                          kWithOwn ? 0 : kCounts + 1 > ...};
  return table[n - 1];
}

template <class S, int kRows, bool kWithOwn, class List>
struct Picker;
template <int... kCounts>
struct Counts {};
template <int kN, int... kCounts>
struct CountsTo : CountsTo<kN - 1, kN - 1, kCounts...> {};
template <int... kCounts>
struct CountsTo<0, kCounts...> {
  using Type = Counts<kCounts...>;
};
template <class S, int kRows, bool kWithOwn, int... kCounts>
struct Picker<S, kRows, kWithOwn, Counts<kCounts...>> {
  static LagFunction of(int n) { return pick<S, kRows, kWithOwn, kCounts...>(n); }
};

// Sums shifts first ... last in loops of at most kMost.
template <class S, int kRows, bool kWithOwn, int kMost>
void sumShifts(const LagRowsList& rows, int order, int first, int last, float* partials) {
  using Loops = Picker<S, kRows, kWithOwn, typename CountsTo<kMost>::Type>;
  const int loops = (last - first + kMost) / kMost;
  for (int loop = loops; loop > 0; --loop) {
    const int count = (last - first + 1) / loop;  // even shares
    Loops::of(count)(rows, order, first, partials);
    first += count;
  }
}

// All statistics of a voxel with two rows.
template <class S>
void sumAllLags(const LagRowsList& rows, int order, float* partials) {
  if (order == 1) return sumLagProducts<S, 2, 3, 1>(rows, order, -1, partials);
  if constexpr (S::kAccumulators >= 23) {
    if (order == 2) return sumLagProducts<S, 2, 5, 2>(rows, order, -2, partials);
    if (order == 3) return sumLagProducts<S, 2, 7, 3>(rows, order, -3, partials);
    if (order == 4) return sumLagProducts<S, 2, 9, 4>(rows, order, -4, partials);
    if (order == 5) return sumLagProducts<S, 2, 11, 5>(rows, order, -5, partials);
  }
  sumShifts<S, 2, false, kShiftsOf<S, 2>>(rows, order, -order, -1, partials);
  sumShifts<S, 2, true, kShiftsWithOwn<S>>(rows, order, 0, order, partials);
}

// Row 0 at shifts 0 ... order, where row 0 is the voxel's own.
template <class S>
void sumOwnLags(const LagRowsList& rows, int order, float* partials) {
  sumShifts<S, 1, false, kShiftsOf<S, 1>>(rows, order, 0, order, partials);
}

template <class S, int kRows>
void sumCrossLags(const LagRowsList& rows, int order, float* partials) {
  sumShifts<S, kRows, false, kShiftsOf<S, kRows>>(rows, order, -order, order, partials);
}

// The cross statistics of the first `nrOfRows` rows, 1 ... kMaxRows.
template <class S>
void sumCrossLags(const LagRowsList& rows, int nrOfRows, int order, float* partials) {
  switch (nrOfRows) {
    case 1:
      return sumCrossLags<S, 1>(rows, order, partials);
    case 2:
      return sumCrossLags<S, 2>(rows, order, partials);
    case 3:
      return sumCrossLags<S, 3>(rows, order, partials);
    default:
      return sumCrossLags<S, 4>(rows, order, partials);
  }
}

}  // namespace
}  // namespace tav::kernel

#endif
