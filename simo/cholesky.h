// Cholesky factors and determinants of small symmetric positive-definite matrices.
#ifndef TAVMAP_SIMO_CHOLESKY_H
#define TAVMAP_SIMO_CHOLESKY_H

#include "simo/lower_triangular.h"
#include "simo/matrix.h"

namespace simo {

// Factorises the principal block of `a` with indices lo ... hi - 1, rows and columns alike, into
// the first rows of l. Reads the upper triangle and the diagonal only. An empty block succeeds and
// writes nothing.
// False at the first pivot <= 0; rows before it stay written. A NaN pivot is not <= 0: it passes
// and propagates, on purpose, since voxels with NaN are not counted as ill-defined.
// Sums and roots in double, each element rounded when stored. Allocates nothing. For float.
// Golub & Van Loan 2013, Matrix Computations, 4th edition, section 4.2.
template <class T>
[[nodiscard]] bool cholDcmpP(const Matrix<T>& a, int lo, int hi, LTMatrix<T>& l);

// Factorises the whole of `a` into l, which must have as many rows, and gives its determinant.
// False when `a` is not positive definite; det then stays as it was. For float.
template <class T>
[[nodiscard]] bool detPosDef(const Matrix<T>& a, LTMatrix<T>& l, T& det);

// The determinant of l l^T: the square of the product of l's diagonal, taken in double and rounded
// once. 1 for a factor without rows. For float.
template <class T>
[[nodiscard]] T squaredDiagonalProduct(const LTMatrix<T>& l);

}  // namespace simo

#endif
