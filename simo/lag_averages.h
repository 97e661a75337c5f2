// Averages of lagged products, all that a model fit needs to know of a time course.
#ifndef TAVMAP_SIMO_LAG_AVERAGES_H
#define TAVMAP_SIMO_LAG_AVERAGES_H

#include "simo/lag_pair_form.h"
#include "simo/lower_triangular.h"
#include "simo/matrix.h"
#include "simo/vector.h"

namespace simo {

// The averages of n series up to lag p, and the work matrices of their accumulation. New records
// are all zero. Intervals add up; clear() before the first interval of another model.
template <class T>
struct FosAvg {
  int n;
  int p;
  Vector<Matrix<T>> lagSums;        // 0 ... p: sum of x(t) x(t-k)^T over the latest interval
  Vector<Matrix<T>> lagAvgs;        // 0 ... p: accumulated averages Gamma(k)
  LTMatrix<Matrix<T>> lagPairAvgs;  // (m, k), 1 <= k <= m <= p: accumulated averages C(m, k)
  Matrix<T> edgeWork;
  Matrix<T> scaleWork;

  FosAvg(int seriesCount, int order);
  FosAvg(const FosAvg&) = delete;
  FosAvg& operator=(const FosAvg&) = delete;

  // Zeroes every accumulated average. Allocates nothing.
  void clear();
  // Multiplies every accumulated average. Allocates nothing.
  void scale(T factor);
};

// Adds one interval's lag averages to lagAvgs (0 ... p) and lagPairAvgs (1 ... p), and leaves its
// raw sums in lagSums. Series x are rows xRowFirst ... xRowEnd - 1 of x over columns tFirst ...
// tEnd - 1; series y are rows yRowFirst ... yRowEnd - 1 of y, whose column yColFirst is the time of
// x's column tFirst. The target matrices are 0-based, one row per x series, one column per y series.
//
// The divisor is the interval's length N for every lag, not N - k. Sums run in double, are stored
// as U and combined as U. Each lag takes all pairs inside the interval and none beyond it.
//
// C(m, k) is the sum at lag m - k without its latest k products. The consistent form needs x and y
// to be the same rows; see LagPairForm for what the written one does with two series and more.
//
// With p < 0 it returns at once. An empty interval divides by zero. Allocates nothing; about
// (p + 1) N multiply-adds per pair of series. Instantiated for float.
template <class T, class U>
void accum_actavgs(const Matrix<T>& x, int xRowFirst, int xRowEnd, int tFirst, int tEnd, const Matrix<T>& y,
                   int yRowFirst, int yRowEnd, int yColFirst, Vector<Matrix<U>>& lagSums,
                   Vector<Matrix<U>>& lagAvgs, LTMatrix<Matrix<U>>& lagPairAvgs, int p, Matrix<U>& edgeWork,
                   Matrix<U>& scaleWork, LagPairForm form = LagPairForm::kWritten);

// The same with x and y both rows rowFirst ... rowEnd - 1 of x, into one record of its order.
template <class T, class U>
void accum_actavgs(const Matrix<T>& x, int rowFirst, int rowEnd, int tFirst, int tEnd, FosAvg<U>& avg,
                   LagPairForm form = LagPairForm::kWritten);

extern template struct FosAvg<float>;

}  // namespace simo

#endif
