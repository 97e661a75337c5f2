// Removal of mean and linear trend.
#ifndef TAVMAP_SIMO_DETREND_H
#define TAVMAP_SIMO_DETREND_H

#include "simo/matrix.h"

namespace simo {

// Writes the residuals of src[r][c], rowFirst <= r < rowEnd and colFirst <= c < colEnd, about each
// row's own mean and least-squares line to dst, from dst[dstRow][dstCol] on. One row per series,
// one column per time point. Single precision throughout. dst must not overlap the rows it is read
// from, except that a block may be detrended onto itself.
// One time point alone has no line: its residual is NaN, which the later fit passes on.
// Allocates nothing. Instantiated for float.
template <class T, class U>
void dtrendRowsToRes(const Matrix<T>& src, int rowFirst, int rowEnd, int colFirst, int colEnd, Matrix<U>& dst,
                     int dstRow, int dstCol);

// The same of one row of `count` values, at least 2, in double precision; instantiated for float,
// double and std::uint16_t. False, with residuals of 0, when what is left is no more than rounding: a root
// mean square below 1e-9 of the values' or the trend's size. Not finite values give residuals that are not
// finite, and true.
template <class T>
[[nodiscard]] bool detrendRow(const T* values, int count, double* residuals);

}  // namespace simo

#endif
