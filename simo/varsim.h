// Simulation of vector autoregressive processes.
#ifndef TAVMAP_SIMO_VARSIM_H
#define TAVMAP_SIMO_VARSIM_H

#include "simo/matrix.h"
#include "simo/random_stream.h"
#include "simo/vector.h"

namespace simo {

// Overwrites x, one row per series and one column per time point, with a realisation of
//   x(t) = sum over k of a[k] x(t-k) + e(t),  e(t) normal with covariance sigma.
// a has elements 1 ... p; a[k][i][j] is the weight of series j at lag k in the equation of series
// i. The first p columns are innovations alone: the process starts cold, and callers discard a
// leading stretch. x, a[k] and sigma may have bases of their own; sigma's two are equal.
//
// The noise is that of randn(x, ..., seed). Innovations are summed in double, the recursion adds
// lag by lag and series by series in single precision.
// False, with x untouched and nothing drawn, when sigma is not positive definite. Allocates the
// factor of sigma and one column per call. Instantiated for float.
//
// Luetkepohl 2005, New Introduction to Multiple Time Series Analysis, appendix D.1.
template <class T>
[[nodiscard]] bool varsim(Matrix<T>& x, const Vector<Matrix<T>>& a, const Matrix<T>& sigma,
                          unsigned int seed);

// The same with the noise of randn(x, ..., random, start).
template <class T>
[[nodiscard]] bool varsim(Matrix<T>& x, const Vector<Matrix<T>>& a, const Matrix<T>& sigma,
                          RandomStream& random, unsigned int start);

}  // namespace simo

#endif
