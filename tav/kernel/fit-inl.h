// Autoregressive fits of W = kWidth voxels at once, one lane each. Included once per CPU file,
// behind its Simd.
//
// Only error covariances are needed. The block Gram-Schmidt search of the reference path is a
// Cholesky factorisation of the moment matrix of the lagged values, and what remains of the
// current values' covariance after it does not depend on the order of the variables. Here the
// voxel's lags y come before the reference's lags x:
//
//                 y lags   x lags
//       y lags  [ yRows          ]      factored once per voxel; yields E_y
//       x lags  [ xRows          ]      per reference or surrogate
//       y now   [ yLast          ]      first half once per voxel
//       x now   [ xLast          ]
//
// so that the voxel's own part is shared by its single model and by the joint models with the
// reference and with every surrogate.
//
// Element (m, k) of a block of moments is the lag sum at distance m - k over fewer samples: in the
// written form without the products of the interval's end, in least squares without those of its start
// as well, so that all moments run over the samples t = p ... n - 1. Along a diagonal:
//       M(m, k) = M(m - 1, k - 1) - sum over intervals of tail(m - 1) tail(k - 1)
//                                 + sum over intervals of head(p - m) head(p - k),
// the heads being taken off from the diagonal's end, where there is none, so that nothing is added back.
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
#ifndef TAVMAP_TAV_KERNEL_FIT_INL_H
#define TAVMAP_TAV_KERNEL_FIT_INL_H

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

// Own lag sums and edges of one series, in lanes.
struct Series {
  const float* own;    // [lag]
  const float* edges;  // [interval]: by distance from the end; in least squares then from the start
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

// Sum over intervals of the products of value i of a's edges and value j of b's.
template <class S, class View>
typename S::Floats edge(const View& plan, const Series& a, int i, const Series& b, int j) {
  const int size = edgeSize(plan.order, View::leastSquares);
  auto sum = at<S>(a.edges, i) * at<S>(b.edges, j);
  for (int n = 1; n < plan.nrOfIntervals; ++n)
    sum = S::madd(at<S>(a.edges, n * size + i), at<S>(b.edges, n * size + j), sum);
  return sum;
}

// Moments of a's lags (rows) with b's (columns from `column` on) along one diagonal, from the lag sum
// over all pairs. Returns the moment before the diagonal's first, of which one series has lag 0.
template <class S, class View>
typename S::Floats fillDiagonal(const View& plan, const Series& a, const Series& b, typename S::Floats sum,
                                int distance, float* const* rows, int column) {
  const int p = plan.order, first = distance < 0 ? -distance : 0, end = distance > 0 ? p - distance : p;
  auto moment = sum;
  for (int k = first; k < end; ++k) {
    moment = moment - edge<S>(plan, a, k + distance, b, k);
    put<S>(rows[k + distance], column + k, moment);
  }
  if (!View::leastSquares) return sum;
  auto heads = S::zero();
  for (int k = end - 1; k >= first; --k) {
    float* const row = rows[k + distance];
    put<S>(row, column + k, at<S>(row, column + k) - heads);
    heads = heads + edge<S>(plan, a, 2 * p - 1 - k - distance, b, 2 * p - 1 - k);
  }
  return sum - heads;
}

// Moments of a series' lags among themselves into columns column ... of the rows, and with its
// current value into `last` from there on. Returns the current value's own.
template <class S, class View>
typename S::Floats fillOwnMoments(const View& plan, const Series& series, float* const* rows, int column,
                                  float* last) {
  const auto squares = fillDiagonal<S>(plan, series, series, at<S>(series.own, 0), 0, rows, column);
  for (int distance = 1; distance <= plan.order; ++distance)
    put<S>(last, column + distance - 1,
           fillDiagonal<S>(plan, series, series, at<S>(series.own, distance), distance, rows, column));
  return squares;
}

// Moments of the reference's lags (rows) with the voxel's (columns), and of each one's current value
// with the other's lags. Returns those of the current values. `cross` points at shift 0.
template <class S, class View>
typename S::Floats fillCrossMoments(const View& plan, const Series& x, const Series& y, const float* cross,
                                    float* const* rows, float* xLast, float* yLast) {
  const int p = plan.order;
  auto current = S::zero();
  for (int distance = -p; distance <= p; ++distance) {
    const auto sum = at<S>(cross, -distance);
    const auto start =
        fillDiagonal<S>(plan, x, y, View::leastSquares ? sum : at<S>(cross, distance), distance, rows, 0);
    const auto moment = View::leastSquares ? start : sum;
    if (distance < 0) put<S>(xLast, -distance - 1, moment);
    if (distance > 0) put<S>(yLast, p + distance - 1, moment);
    if (distance == 0) current = moment;
  }
  return current;
}

// Fits one series alone: factors its p rows, fills `last`, returns the error variance.
template <class S, class View>
typename S::Floats fitAlone(const View& plan, const Series& series, const Factor& factor, float* last,
                            Doubts<S, View>& doubts) {
  const int p = plan.order;
  const auto squares = at<S>(series.own, 0);
  const auto current = fillOwnMoments<S>(plan, series, factor.rows, 0, last);
  factorRows<S>(factor, 0, p, squares, doubts);
  eliminate<S, 1>(factor, &last, 0, p);
  const auto error = current - sumOfSquares<S>(last, 0, p);
  doubts.check(error, squares);
  return error;
}

// Error covariance of a joint model.
template <class S>
struct JointErrors {
  typename S::Floats xx, xy, yy;
};

// Behind fitAlone() of y with the same factor: adds the p rows of x. `cross` points at shift 0;
// `yError` is E_y. The doubts then hold for a pivot behind x's current value as well.
template <class S, class View>
JointErrors<S> fitJoint(const View& plan, const Series& x, const Series& y, const float* cross,
                        typename S::Floats yError, const Factor& factor, float* yLast, float* xLast,
                        Doubts<S, View>& doubts) {
  const int p = plan.order;
  float* const* xRows = factor.rows + p;
  const auto squares = at<S>(x.own, 0);
  const auto between = fillCrossMoments<S>(plan, x, y, cross, xRows, xLast, yLast);
  const auto current = fillOwnMoments<S>(plan, x, xRows, p, xLast);
  factorRows<S>(factor, p, 2 * p, squares, doubts);
  eliminate<S, 1>(factor, &xLast, 0, p);
  float* const lasts[2] = {xLast, yLast};
  eliminate<S, 2>(factor, lasts, p, 2 * p);
  const auto xx = current - sumOfSquares<S>(xLast, 0, 2 * p);
  const auto yy = yError - sumOfSquares<S>(yLast, p, 2 * p);
  doubts.check(xx, squares);
  doubts.check(yy, at<S>(y.own, 0));
  const auto probe = nextProbe<S>(factor, xLast, 2 * p, squares, S::all(1.0F) / S::root(xx));
  doubts.growth = S::madd(probe, probe, doubts.growth);
  return {xx, between - dot<S>(xLast, yLast, 2 * p), yy};
}

}  // namespace
}  // namespace tav::kernel

#endif
