#include "simo/lag_averages.h"

#include <algorithm>

namespace simo {
namespace {

// Sum of a[t] b[t] in double. Four partial sums, because one would wait for itself at every term.
template <class T>
double dotProduct(const T* a, const T* b, int count) {
  double sums[4] = {0, 0, 0, 0};
  int t = 0;
  for (; t + 4 <= count; t += 4)
    for (int s = 0; s < 4; ++s) sums[s] += static_cast<double>(a[t + s]) * static_cast<double>(b[t + s]);
  for (; t < count; ++t) sums[0] += static_cast<double>(a[t]) * static_cast<double>(b[t]);
  return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

// One interval of two sets of series, addressed from its first time point on. Only the block of
// their size in the target matrices takes part: a record may be larger than the model.
template <class T>
struct IntervalPair {
  const Matrix<T>& x;
  int xRow;
  int xCol;
  int xCount;
  const Matrix<T>& y;
  int yRow;
  int yCol;
  int yCount;
  int length;

  const T* xSeries(int i) const { return x[xRow + i] + xCol; }
  const T* ySeries(int j) const { return y[yRow + j] + yCol; }

  template <class Update>
  void forEachElement(Update update) const {
    for (int i = 0; i < xCount; ++i)
      for (int j = 0; j < yCount; ++j) update(i, j);
  }
};

// sum[i][j] = sum of x_i(t) y_j(t - lag) over all t for which both lie inside the interval.
template <class T, class U>
void sumLag(const IntervalPair<T>& pair, int lag, Matrix<U>& sum) {
  const int first = std::min(lag, pair.length);
  pair.forEachElement([&](int i, int j) {
    sum[i][j] = static_cast<U>(dotProduct(pair.xSeries(i) + first, pair.ySeries(j), pair.length - first));
  });
}

// edge[i][j] = sum of x_i(u - d) y_j(u) over the k latest u: the earlier time point on the x side,
// which for two series is the transpose of sumLag's orientation.
template <class T, class U>
void sumEdge(const IntervalPair<T>& pair, int k, int d, Matrix<U>& edge) {
  const int first = std::min(std::max(pair.length - k, d), pair.length);
  const int count = pair.length - first;
  pair.forEachElement([&](int i, int j) {
    const T* const earlier = pair.xSeries(i) + std::max(first - d, 0);
    edge[i][j] = static_cast<U>(dotProduct(earlier, pair.ySeries(j) + first, count));
  });
}

// The lag sum without its edge. The written form subtracts across orientations, deliberately: for
// two series the off-diagonal elements lose each other's edge products, and from order 2 on they
// enter the models transposed. Repairing it here would change what the plug-in has always computed.
template <class T, class U>
void subtractEdge(const IntervalPair<T>& pair, const Matrix<U>& lagSum, const Matrix<U>& edge,
                  LagPairForm form, Matrix<U>& result) {
  const bool transposed = form == LagPairForm::kConsistent;
  pair.forEachElement(
      [&](int i, int j) { result[i][j] = (transposed ? lagSum[j][i] : lagSum[i][j]) - edge[i][j]; });
}

template <class T, class U>
void addPerPoint(const IntervalPair<T>& pair, const Matrix<U>& term, Matrix<U>& total) {
  const U perPoint = U{1} / static_cast<U>(pair.length);
  pair.forEachElement([&](int i, int j) { total[i][j] += term[i][j] * perPoint; });
}

template <class T, class U>
void addLagPair(const IntervalPair<T>& pair, int m, int k, const Vector<Matrix<U>>& lagSums, LagPairForm form,
                Matrix<U>& edgeWork, Matrix<U>& scaleWork, Matrix<U>& total) {
  sumEdge(pair, k, m - k, edgeWork);
  subtractEdge(pair, lagSums[m - k], edgeWork, form, scaleWork);
  addPerPoint(pair, scaleWork, total);
}

}  // namespace

template <class T>
FosAvg<T>::FosAvg(int seriesCount, int order)
    : n(seriesCount),
      p(order),
      lagSums(order + 1, 0, Matrix<T>(n, n, 0, 0, T{0})),
      lagAvgs(order + 1, 0, Matrix<T>(n, n, 0, 0, T{0})),
      lagPairAvgs(order, 1, 1, Matrix<T>(n, n, 0, 0, T{0})),
      edgeWork(n, n, 0, 0, T{0}),
      scaleWork(n, n, 0, 0, T{0}) {}

template <class T>
void FosAvg<T>::clear() {
  for (int k = 0; k <= p; ++k) lagAvgs[k].fill(T{0});
  for (int m = 1; m <= p; ++m)
    for (int k = 1; k <= m; ++k) lagPairAvgs[m][k].fill(T{0});
}

template <class T>
void FosAvg<T>::scale(T factor) {
  const auto scaleMatrix = [factor](Matrix<T>& m) {
    std::for_each_n(m.elements(), m.size(), [factor](T& element) { element *= factor; });
  };
  for (int k = 0; k <= p; ++k) scaleMatrix(lagAvgs[k]);
  for (int m = 1; m <= p; ++m)
    for (int k = 1; k <= m; ++k) scaleMatrix(lagPairAvgs[m][k]);
}

template <class T, class U>
void accum_actavgs(const Matrix<T>& x, int xRowFirst, int xRowEnd, int tFirst, int tEnd, const Matrix<T>& y,
                   int yRowFirst, int yRowEnd, int yColFirst, Vector<Matrix<U>>& lagSums,
                   Vector<Matrix<U>>& lagAvgs, LTMatrix<Matrix<U>>& lagPairAvgs, int p, Matrix<U>& edgeWork,
                   Matrix<U>& scaleWork, LagPairForm form) {
  if (p < 0) return;
  const IntervalPair<T> pair{x,         xRowFirst,           tFirst,       xRowEnd - xRowFirst, y, yRowFirst,
                             yColFirst, yRowEnd - yRowFirst, tEnd - tFirst};
  for (int k = 0; k <= p; ++k) sumLag(pair, k, lagSums[k]);
  for (int m = 1; m <= p; ++m)
    for (int k = 1; k <= m; ++k)
      addLagPair(pair, m, k, lagSums, form, edgeWork, scaleWork, lagPairAvgs[m][k]);
  for (int k = 0; k <= p; ++k) addPerPoint(pair, lagSums[k], lagAvgs[k]);
}

template <class T, class U>
void accum_actavgs(const Matrix<T>& x, int rowFirst, int rowEnd, int tFirst, int tEnd, FosAvg<U>& avg,
                   LagPairForm form) {
  accum_actavgs(x, rowFirst, rowEnd, tFirst, tEnd, x, rowFirst, rowEnd, tFirst, avg.lagSums, avg.lagAvgs,
                avg.lagPairAvgs, avg.p, avg.edgeWork, avg.scaleWork, form);
}

template struct FosAvg<float>;
template void accum_actavgs<float, float>(const Matrix<float>&, int, int, int, int, const Matrix<float>&, int,
                                          int, int, Vector<Matrix<float>>&, Vector<Matrix<float>>&,
                                          LTMatrix<Matrix<float>>&, int, Matrix<float>&, Matrix<float>&,
                                          LagPairForm);
template void accum_actavgs<float, float>(const Matrix<float>&, int, int, int, int, FosAvg<float>&,
                                          LagPairForm);

}  // namespace simo
