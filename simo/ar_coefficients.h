// From the orthogonal representation of a fitted model to ordinary autoregressive coefficients.
#ifndef TAVMAP_SIMO_AR_COEFFICIENTS_H
#define TAVMAP_SIMO_AR_COEFFICIENTS_H

#include "simo/orthogonal_search.h"

namespace simo {

// Writes the coefficient matrices a_1 ... a_p for which the sum of a_k x(t-k) is the orthogonal
// predictor of mfosP: back substitution from the highest lag down,
//   a_m = (F_m - sum over j > m of a_j A(j, m)) Li_m.
// coefs, invFactors and alphas as mfosP left them (0-based matrices); `a` has elements 1 ... p of
// the same size and any row and column bases.
// Sums run in double and are rounded once. Allocates nothing. Instantiated for float.
template <class T>
void arCoefficients(const Vector<Matrix<T>>& coefs, const Vector<LTMatrix<T>>& invFactors,
                    const LTMatrix<Matrix<T>>& alphas, int p, Vector<Matrix<T>>& a);

}  // namespace simo

#endif
