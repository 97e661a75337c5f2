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
#ifndef TAVMAP_TAV_KERNEL_FIT_INL_H
#define TAVMAP_TAV_KERNEL_FIT_INL_H

#include "tav/kernel/factor-inl.h"
#include "tav/kernel/layout.h"
#include "tav/kernel/plan_view.h"

namespace tav::kernel {
namespace {

// Own lag sums and edges of one series, in lanes.
struct Series {
  const float* own;    // [lag]
  const float* edges;  // [interval]: by distance from the end; in least squares then from the start
};

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
