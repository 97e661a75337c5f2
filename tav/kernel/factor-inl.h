// Cholesky factors of W = kWidth moment matrices at once, one lane each, and which of their pivots are
// certain. Included once per CPU file, behind its Simd.
//
// When is the sign of a pivot certain? Moments and factor carry errors of about 2p eps = 2.4e-6 of
// the series' sum of squares (from which the moments were got by subtraction), here as in the
// reference. They change a pivot by that times the squared norm of the inverse factor's row. Its
// size is estimated as in Cline, Moler, Stewart & Wilkinson 1979 (SIAM J. Numer. Anal. 16, 368):
// along with the factor L the system L u = e is solved, the signs of e being chosen so that u
// grows. A pivot further from 0 than kCertain and than kPerGrowth |u|^2, both relative to the sum
// of squares or, where it is larger, to what was subtracted from it, has the same sign in the
// reference, whatever the order of variables. In least squares the value counts as well: the margins
// kAccurate and kAccuratePerGrowth leave it two to three digits of what remains, and everything closer
// to singular goes to the fits in double precision.
#ifndef TAVMAP_TAV_KERNEL_FACTOR_INL_H
#define TAVMAP_TAV_KERNEL_FACTOR_INL_H

#include "tav/kernel/layout.h"
#include "tav/kernel/plan_view.h"

namespace tav::kernel {
namespace {

inline constexpr float kCertain = 1e-4F, kPerGrowth = 4e-6F;
inline constexpr float kAccurate = 1e-3F, kAccuratePerGrowth = 5e-4F;

// Lanes whose model certainly does not exist, and lanes that the reference path has to decide.
template <class S, class View>
struct Doubts {
  static constexpr float kMargin = View::leastSquares ? kAccurate : kCertain;
  static constexpr float kGrowthMargin = View::leastSquares ? kAccuratePerGrowth : kPerGrowth;

  typename S::Mask failed = 0;
  typename S::Mask unsure = 0;
  typename S::Mask flat = 0;              // no variance at all: failed, whatever else is unsure
  typename S::Floats growth = S::zero();  // |u|^2 so far

  // `value` must be positive; it is `squares`, a sum of squares, less what the rows before explain.
  // NaN passes.
  void check(typename S::Floats value, typename S::Floats squares) {
    const auto size = S::larger(squares, squares - value);
    const auto margin = size * S::larger(S::all(kMargin), growth * S::all(kGrowthMargin));
    unsure |= S::lessEqual(S::magnitude(value), margin);
    failed |= S::less(value, S::zero() - margin);
  }
};

// Rows of a lower factor: pointers to [column] in lanes, 1 / diagonal, and u.
struct Factor {
  float* rows[2 * kMaxOrder];
  float* inverse;
  float* probe;
};

template <class S>
typename S::Floats at(const float* lanes, int i) {
  return S::load(lanes + static_cast<std::ptrdiff_t>(i) * S::kWidth);
}

template <class S>
void put(float* lanes, int i, typename S::Floats v) {
  S::store(lanes + static_cast<std::ptrdiff_t>(i) * S::kWidth, v);
}

template <class S>
typename S::Floats sumOfSquares(const float* row, int first, int end) {
  auto even = S::zero(), odd = S::zero();
  int i = first;
  for (; i + 1 < end; i += 2) {
    even = S::madd(at<S>(row, i), at<S>(row, i), even);
    odd = S::madd(at<S>(row, i + 1), at<S>(row, i + 1), odd);
  }
  if (i < end) even = S::madd(at<S>(row, i), at<S>(row, i), even);
  return even + odd;
}

template <class S>
typename S::Floats dot(const float* a, const float* b, int end) {
  auto even = S::zero(), odd = S::zero();
  int i = 0;
  for (; i + 1 < end; i += 2) {
    even = S::madd(at<S>(a, i), at<S>(b, i), even);
    odd = S::madd(at<S>(a, i + 1), at<S>(b, i + 1), odd);
  }
  if (i < end) even = S::madd(at<S>(a, i), at<S>(b, i), even);
  return even + odd;
}

// Turns moments into factor elements in columns first ... end - 1 of kRows rows; the columns
// before are done. Two columns at a time share the loads of the rows.
template <class S, int kRows>
void eliminate(const Factor& factor, float* const* rows, int first, int end) {
  using Floats = typename S::Floats;
  int j = first;
  for (; j + 1 < end; j += 2) {
    const float* a = factor.rows[j];
    const float* b = factor.rows[j + 1];
    Floats atA[extent(kRows)], atB[extent(kRows)];
    for (int r = 0; r < kRows; ++r) {
      atA[r] = at<S>(rows[r], j);
      atB[r] = at<S>(rows[r], j + 1);
    }
    for (int k = 0; k < j; ++k) {
      const Floats inA = at<S>(a, k), inB = at<S>(b, k);
#pragma GCC unroll 4
      for (int r = 0; r < kRows; ++r) {
        const Floats element = at<S>(rows[r], k);
        atA[r] = S::msub(element, inA, atA[r]);
        atB[r] = S::msub(element, inB, atB[r]);
      }
    }
    const Floats between = at<S>(b, j);
    for (int r = 0; r < kRows; ++r) {
      atA[r] = atA[r] * at<S>(factor.inverse, j);
      put<S>(rows[r], j, atA[r]);
      put<S>(rows[r], j + 1, S::msub(atA[r], between, atB[r]) * at<S>(factor.inverse, j + 1));
    }
  }
  if (j == end) return;
  for (int r = 0; r < kRows; ++r) {
    const Floats rest = at<S>(rows[r], j) - dot<S>(rows[r], factor.rows[j], j);
    put<S>(rows[r], j, rest * at<S>(factor.inverse, j));
  }
}

// Element i of u, from the first i elements of its row of the factor and 1 / diagonal.
template <class S>
typename S::Floats nextProbe(const Factor& factor, const float* row, int i, typename S::Floats squares,
                             typename S::Floats inverse) {
  const auto sum = dot<S>(row, factor.probe, i);
  return S::zero() - (sum + S::withSign(S::root(squares), sum)) * inverse;
}

// Completes row i, whose columns before i are done. `squares`: the series' sum of squares.
template <class S, class View>
void takePivot(const Factor& factor, int i, typename S::Floats squares, Doubts<S, View>& doubts) {
  const auto pivot = at<S>(factor.rows[i], i) - sumOfSquares<S>(factor.rows[i], 0, i);
  doubts.check(pivot, squares);
  const auto diagonal = S::root(pivot);
  const auto inverse = S::all(1.0F) / diagonal;
  put<S>(factor.rows[i], i, diagonal);
  put<S>(factor.inverse, i, inverse);
  const auto probe = nextProbe<S>(factor, factor.rows[i], i, squares, inverse);
  put<S>(factor.probe, i, probe);
  doubts.growth = S::madd(probe, probe, doubts.growth);
}

// Factors rows first ... end - 1, which hold moments, behind the finished rows before them.
template <class S, class View>
void factorRows(const Factor& factor, int first, int end, typename S::Floats squares,
                Doubts<S, View>& doubts) {
  int i = first;
  for (; i + 3 < end; i += 4) {
    eliminate<S, 4>(factor, factor.rows + i, 0, i);
    for (int r = i; r < i + 4; ++r) {
      eliminate<S, 1>(factor, factor.rows + r, i, r);
      takePivot<S>(factor, r, squares, doubts);
    }
  }
  for (; i < end; ++i) {
    eliminate<S, 1>(factor, factor.rows + i, 0, i);
    takePivot<S>(factor, i, squares, doubts);
  }
}

}  // namespace
}  // namespace tav::kernel

#endif
