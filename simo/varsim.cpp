#include "simo/varsim.h"

#include "simo/cholesky.h"
#include "simo/gaussian.h"
#include "simo/lower_triangular.h"
#include "simo/randomness.h"

namespace simo {
namespace {

// Turns every column z into L z.
template <class T>
void colour(const LTMatrix<T>& factor, Matrix<T>& x) {
  Vector<T> z(x.nRows, 0, T{0});
  for (int t = x.colBase; t < x.colEnd; ++t)
    for (int i = 0; i < x.nRows; ++i) {
      z[i] = x[x.rowBase + i][t];
      const T* const weights = factor[factor.rowBase + i] + factor.colBase;
      double sum = 0;
      for (int j = 0; j <= i; ++j) sum += static_cast<double>(z[j]) * static_cast<double>(weights[j]);
      x[x.rowBase + i][t] = static_cast<T>(sum);
    }
}

// Adds to x(t), series i, what the columns before t contribute.
template <class T>
void addPast(const Vector<Matrix<T>>& a, int i, int t, Matrix<T>& x) {
  T value = x[x.rowBase + i][t];
  for (int k = 1; k <= a.n; ++k) {
    const T* const weights = a[k][a[k].rowBase + i] + a[k].colBase;
    for (int j = 0; j < x.nRows; ++j) value += weights[j] * x[x.rowBase + j][t - k];
  }
  x[x.rowBase + i][t] = value;
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
  for (int t = x.colBase + a.n; t < x.colEnd; ++t)
    for (int i = 0; i < x.nRows; ++i) addPast(a, i, t, x);
  return true;
}

template bool varsim<float>(Matrix<float>&, const Vector<Matrix<float>>&, const Matrix<float>&, unsigned int);
template bool varsim<float>(Matrix<float>&, const Vector<Matrix<float>>&, const Matrix<float>&, RandomStream&,
                            unsigned int);

}  // namespace simo
