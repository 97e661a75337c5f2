// Vector autoregressive fits from lag averages alone, by orthogonalisation of the lagged blocks.
#ifndef TAVMAP_SIMO_ORTHOGONAL_SEARCH_H
#define TAVMAP_SIMO_ORTHOGONAL_SEARCH_H

#include "simo/lag_averages.h"
#include "simo/lower_triangular.h"
#include "simo/matrix.h"
#include "simo/vector.h"

namespace simo {

// One fitted model of n series and order p, and its work area. Reused from fit to fit. The lagged
// blocks x(t-m) are turned into orthonormal ones, q_m = Li_m (x(t-m) - sum over k < m of A(m,k) q_k),
// and the model predicts x(t) by the sum of F_m q_m.
template <class T>
struct FosOrth {
  int n;
  int p;
  Vector<Matrix<T>> coefs;         // 1 ... p: the orthogonal coefficients F_m
  Vector<LTMatrix<T>> invFactors;  // 1 ... p: Li_m, inverse Cholesky factors of the orthogonalised blocks
  LTMatrix<Matrix<T>> alphas;      // (m, k), 1 <= k < m <= p: the normalised cross terms A(m, k)
  Matrix<T> work;
  Matrix<T> spare;
  LTMatrix<T> factor;           // Cholesky factor, n rows
  Matrix<T> errCov;             // prediction-error covariance E
  Vector<Matrix<T>> explained;  // 1 ... p: F_k F_k^T

  FosOrth(int seriesCount, int order);
  FosOrth(const FosOrth&) = delete;
  FosOrth& operator=(const FosOrth&) = delete;
};

// The orthogonal search: fills coefs, invFactors and alphas from the averages. Every average is read
// as the block of work's size that starts at (row, col) in lagAvgs' matrices and at (pairRow,
// pairCol) in lagPairAvgs' matrices, so that one FosAvg serves the joint model and, with blocks of
// one element, the model of each series alone. Everything else is 0-based.
//
// False when an orthogonalised block is not positive definite (a constant or perfectly predictable
// series); what earlier lags gave stays written. NaN does not fail and passes on.
// Single precision; the factorisations in double. Allocates nothing; about p^3 n^3 / 6
// multiply-adds. Instantiated for float.
//
// Block Gram-Schmidt on moments, the idea of the fast orthogonal search: Korenberg 1988, Annals of
// Biomedical Engineering 16, 123-142, doi:10.1007/BF02367385.
template <class T>
[[nodiscard]] bool mfosP(const Vector<Matrix<T>>& lagAvgs, int row, int col,
                         const LTMatrix<Matrix<T>>& lagPairAvgs, int pairRow, int pairCol, int p,
                         Vector<Matrix<T>>& coefs, Vector<LTMatrix<T>>& invFactors,
                         LTMatrix<Matrix<T>>& alphas, Matrix<T>& work, LTMatrix<T>& factor);

// The prediction-error covariance of a fitted model, errCov = Gamma(0) - sum over k of F_k F_k^T,
// with Gamma(0) the block of errCov's size at (row, col) of lagAvgs[0]. The products are left in
// explained. errCov may have any bases. Allocates nothing. Instantiated for float.
template <class T>
void varEP(const Vector<Matrix<T>>& lagAvgs, int row, int col, const Vector<Matrix<T>>& coefs, int p,
           Matrix<T>& errCov, Vector<Matrix<T>>& explained);

// Both on whole records: the model of model.n series from (first, first) on, order model.p, with
// its error covariance. False as mfosP; then errCov stays as it was.
template <class T>
[[nodiscard]] bool fitModel(const FosAvg<T>& avg, int first, FosOrth<T>& model);

extern template struct FosOrth<float>;

}  // namespace simo

#endif
