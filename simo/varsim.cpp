#include "simo/varsim.h"

#include <vector>

#include "simo/cholesky.h"
#include "simo/gaussian.h"
#include "simo/lower_triangular.h"
#include "simo/randomness.h"

namespace simo {
namespace {

// Turns every column z into L z. From the last series up, so that what is still needed stands.
template <class T>
void colour(const LTMatrix<T>& factor, Matrix<T>& x) {
  for (int i = x.nRows - 1; i >= 0; --i) {
    T* const row = x[x.rowBase + i];
    const T* const weights = factor[factor.rowBase + i] + factor.colBase;
    for (int t = x.colBase; t < x.colEnd; ++t) {
      double sum = 0;
      for (int j = 0; j <= i; ++j)
        sum += static_cast<double>(x[x.rowBase + j][t]) * static_cast<double>(weights[j]);
      row[t] = static_cast<T>(sum);
    }
  }
}

// The coefficients of series i, lag by lag, and within a lag series by series.
template <class T>
std::vector<T> weightsOf(const Vector<Matrix<T>>& a, int i) {
  std::vector<T> weights;
  for (int k = 1; k <= a.n; ++k) {
    const T* const row = a[k][a[k].rowBase + i] + a[k].colBase;
    weights.insert(weights.end(), row, row + a[k].nCols);
  }
  return weights;
}

// Adds to every column but the first a.n what the columns before it contribute.
template <class T>
void addPast(const Vector<Matrix<T>>& a, Matrix<T>& x) {
  const int order = a.n, series = x.nRows;
  std::vector<std::vector<T>> weights;
  std::vector<T*> rows;
  for (int i = 0; i < series; ++i) weights.push_back(weightsOf(a, i)), rows.push_back(x[x.rowBase + i]);
  for (int t = x.colBase + order; t < x.colEnd; ++t) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const T* weight = weights[i].data();
      T value = rows[i][t];
      for (int k = 1; k <= order; ++k)
        for (T* const row : rows) value += *weight++ * row[t - k];
      rows[i][t] = value;
    }
  }
}

}  // namespace

template <class T>
bool varsim(Matrix<T>& x, const Vector<Matrix<T>>& a, const Matrix<T>& sigma, unsigned int seed) {
  return varsim(x, a, sigma, randomStream(), static_cast<unsigned>(timeBase()) + seed);
}

template <class T>
bool varsim(Matrix<T>& x, const Vector<Matrix<T>>& a, const Matrix<T>& sigma, RandomStream& random,
            unsigned int start) {
  LTMatrix<T> factor(sigma.nRows, sigma.rowBase, sigma.rowBase, T{0});
  if (!cholDcmpP(sigma, sigma.rowBase, sigma.rowEnd, factor)) return false;
  randn(x, x.rowBase, x.rowEnd, x.colBase, x.colEnd, random, start);
  colour(factor, x);
  addPast(a, x);
  return true;
}

template bool varsim<float>(Matrix<float>&, const Vector<Matrix<float>>&, const Matrix<float>&, unsigned int);
template bool varsim<float>(Matrix<float>&, const Vector<Matrix<float>>&, const Matrix<float>&, RandomStream&,
                            unsigned int);

}  // namespace simo
