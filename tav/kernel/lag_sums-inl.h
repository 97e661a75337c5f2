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

// CountsTo<n>::Type is Counts<0, 1, ... n - 1>.
template <int... kCounts>
struct Counts {};
template <int kN, int... kCounts>
struct CountsTo : CountsTo<kN - 1, kN - 1, kCounts...> {};
template <int... kCounts>
struct CountsTo<0, kCounts...> {
  using Type = Counts<kCounts...>;
};

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

  Floats cross[extent(kRows * kShifts)] = {}, own[extent(kOwn + 1)] = {};  // cross: row after row

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
    for (int r = 0; r < kRows; ++r) {
      Floats& sum = cross[r * kShifts + kShift];
      sum = S::madd(left[r], right, sum);
    }
    if constexpr (kShift >= kOwnFrom) own[kShift - kOwnFrom] = S::madd(self, right, own[kShift - kOwnFrom]);
    if constexpr (kShift + 1 < kShifts) addShifts<kShift + 1>(left, self, shifted, here, before);
  }

  // Puts the sums, or adds them, to the statistics of a voxel, at whose lane `partials` points.
  template <bool kAdds>
  [[gnu::always_inline]] void putTo(float* partials, int order, int first) const {
    float* const atCross = partials + kStep * crossStatistic(order, 0, first);
    const std::ptrdiff_t rowStep = kStep * (2 * order + 1);
    putAll<kAdds>(cross, atCross, rowStep, typename CountsTo<kRows * kShifts>::Type());
    if constexpr (kOwn > 0) {
      float* const atOwn = partials + kStep * ownStatistic(order, first + kOwnFrom);
      putAll<kAdds>(own, atOwn, 0, typename CountsTo<kOwn>::Type());
    }
  }

  // By constant indices, without which the compiler keeps the sums in memory.
  template <bool kAdds, int... i>
  [[gnu::always_inline]] static void putAll(const Floats* sums, float* place, std::ptrdiff_t rowStep,
                                            Counts<i...>) {
    (put<kAdds>(place + i / kShifts * rowStep + i % kShifts * kStep, sums[i]), ...);
  }

  template <bool kAdds>
  [[gnu::always_inline]] static void put(float* place, Floats sum) {
    S::store(place, kAdds ? S::load(place) + sum : sum);
  }
};

// Sums them over all intervals into the voxel's lane, at which `partials` points. kOrder: the order,
// when the compiler knows it, or 0.
template <class S, int kRows, int kShifts, int kOwnFrom, int kOrder>
[[gnu::noinline]] void sumLagProducts(const LagRowsList& rows, int anyOrder, int first, float* partials) {
  using Products = LagProducts<S, kRows, kShifts, kOwnFrom>;
  constexpr int kMost = kVectorsPerSum * S::kWidth;
  const int order = kOrder > 0 ? kOrder : anyOrder;
  Products products;
  if (rows.count == 1 && rows.intervals->paddedLength <= kMost) {
    products.add(*rows.intervals, first, 0, rows.intervals->paddedLength);
    return products.template putTo<false>(partials, order, first);
  }
  bool isFirst = true;
  int vectors = 0;
  for (int i = 0; i < rows.count; ++i) {
    const LagRows& interval = rows.intervals[i];
    for (int start = 0; start < interval.paddedLength; start += kMost) {
      if (vectors >= kVectorsPerSum) {
        isFirst ? products.template putTo<false>(partials, order, first)
                : products.template putTo<true>(partials, order, first);
        products = Products();
        isFirst = false;
        vectors = 0;
      }
      const int left = interval.paddedLength - start, count = left < kMost ? left : kMost;
      products.add(interval, first, start, start + count);
      vectors += count / S::kWidth;
    }
  }
  isFirst ? products.template putTo<false>(partials, order, first)
          : products.template putTo<true>(partials, order, first);
}

using LagFunction = void (*)(const LagRowsList&, int, int, float*);

// Most shifts that a loop carries: of two rows with own products, and of some rows without.
template <class S>
inline constexpr int kShiftsWithOwn = S::kAccumulators / 3;
template <class S, int kRows>
inline constexpr int kShiftsOf = S::kAccumulators / kRows < 12 ? S::kAccumulators / kRows : 12;

// table[n - 1]: n shifts, all with own products or none.
template <class S, int kOrder, int kRows, bool kWithOwn, int... kCounts>
LagFunction pick(int n) {
  static constexpr LagFunction table[] = {&sumLagProducts < S, kRows, kCounts + 1, kWithOwn ? 0 : kCounts + 1,
                                          kOrder > ...};
  return table[n - 1];
}

template <class S, int kOrder, int kRows, bool kWithOwn, class List>
struct Picker;
template <class S, int kOrder, int kRows, bool kWithOwn, int... kCounts>
struct Picker<S, kOrder, kRows, kWithOwn, Counts<kCounts...>> {
  static LagFunction of(int n) { return pick<S, kOrder, kRows, kWithOwn, kCounts...>(n); }
};

// The loops that together sum all statistics of a kind of pass, chosen once for many voxels. kOrder as
// in sumLagProducts.
template <class S, int kOrder>
class LagLoops {
 public:
  template <int kRows, int kShifts, int kOwnFrom>
  void add(int firstShift) {
    loops_[count_++] = {&sumLagProducts<S, kRows, kShifts, kOwnFrom, kOrder>, firstShift};
  }

  // Shifts first ... last of kRows rows, with their own products if there are any, in loops of at most
  // kMost shifts.
  template <int kRows, bool kWithOwn, int kMost>
  void addShifts(int first, int last) {
    constexpr int kAll = 2 * kOrder + 1;
    using Counted = typename CountsTo<(kOrder > 0 && kAll < kMost ? kAll : kMost)>::Type;
    for (int loop = (last - first + kMost) / kMost; loop > 0; --loop) {
      const int count = (last - first + 1) / loop;  // even shares
      loops_[count_++] = {Picker<S, kOrder, kRows, kWithOwn, Counted>::of(count), first};
      first += count;
    }
  }

  // Into the voxel's lane, at which `partials` points.
  void run(const LagRowsList& rows, int order, float* partials) const {
    for (int i = 0; i < count_; ++i) loops_[i].sum(rows, order, loops_[i].firstShift, partials);
  }

 private:
  struct Loop {
    LagFunction sum;
    int firstShift;
  };
  // Cross sums of kMaxRows rows at all shifts, at least two in a loop.
  static_assert(kShiftsOf<S, kMaxRows> >= 2);
  static constexpr int kMostLoops = kMaxOrder + 1;

  Loop loops_[extent(kMostLoops)];
  int count_ = 0;
};

// All statistics of a voxel with two rows.
template <class S, int kOrder>
LagLoops<S, kOrder> loopsForAll(int order) {
  LagLoops<S, kOrder> loops;
  if constexpr (kOrder == 1) {
    loops.template add<2, 3, 1>(-1);
    return loops;
  } else if constexpr (S::kAccumulators >= 23) {
    if (order == 2) loops.template add<2, 5, 2>(-2);
    if (order == 3) loops.template add<2, 7, 3>(-3);
    if (order == 4) loops.template add<2, 9, 4>(-4);
    if (order == 5) loops.template add<2, 11, 5>(-5);
    if (order >= 2 && order <= 5) return loops;
  }
  loops.template addShifts<2, false, kShiftsOf<S, 2>>(-order, -1);
  loops.template addShifts<2, true, kShiftsWithOwn<S>>(0, order);
  return loops;
}

// Row 0 at shifts 0 ... order, where row 0 is the voxel's own.
template <class S, int kOrder>
LagLoops<S, kOrder> loopsForOwn(int order) {
  LagLoops<S, kOrder> loops;
  loops.template addShifts<1, false, kShiftsOf<S, 1>>(0, order);
  return loops;
}

// The cross statistics of the first kRows rows.
template <class S, int kOrder, int kRows>
LagLoops<S, kOrder> loopsForCross(int order) {
  LagLoops<S, kOrder> loops;
  loops.template addShifts<kRows, false, kShiftsOf<S, kRows>>(-order, order);
  return loops;
}

}  // namespace
}  // namespace tav::kernel

#endif
