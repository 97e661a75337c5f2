#include "simo/cholesky.h"

#include <cmath>

namespace simo {
namespace {

// a[i][j] less the part that the factor's columns before i explain. The two factor rows are those
// of indices i and j, each with its first element at index 0.
template <class T>
double remainder(T element, const T* rowI, const T* rowJ, int i) {
  double s = static_cast<double>(element);
  for (int k = i - 1; k >= 0; --k) s -= static_cast<double>(rowI[k]) * static_cast<double>(rowJ[k]);
  return s;
}

template <class T>
T* factorRow(LTMatrix<T>& l, int i) {
  return l[l.rowBase + i] + l.colBase;
}

}  // namespace

template <class T>
bool cholDcmpP(const Matrix<T>& a, int lo, int hi, LTMatrix<T>& l) {
  for (int i = 0; i < hi - lo; ++i) {
    T* const rowI = factorRow(l, i);
    const double pivot = remainder(a[lo + i][lo + i], rowI, rowI, i);
    if (pivot <= 0) return false;
    rowI[i] = static_cast<T>(std::sqrt(pivot));
    for (int j = i + 1; j < hi - lo; ++j) {
      T* const rowJ = factorRow(l, j);
      rowJ[i] = static_cast<T>(remainder(a[lo + i][lo + j], rowI, rowJ, i) / static_cast<double>(rowI[i]));
    }
  }
  return true;
}

template <class T>
T squaredDiagonalProduct(const LTMatrix<T>& l) {
  double product = 1;
  for (int i = 0; i < l.n; ++i) product *= static_cast<double>(l[l.rowBase + i][l.colBase + i]);
  return static_cast<T>(product * product);
}

template <class T>
bool detPosDef(const Matrix<T>& a, LTMatrix<T>& l, T& det) {
  if (!cholDcmpP(a, a.rowBase, a.rowEnd, l)) return false;
  det = squaredDiagonalProduct(l);
  return true;
}

template bool cholDcmpP<float>(const Matrix<float>&, int, int, LTMatrix<float>&);
template float squaredDiagonalProduct<float>(const LTMatrix<float>&);
template bool detPosDef<float>(const Matrix<float>&, LTMatrix<float>&, float&);

}  // namespace simo
