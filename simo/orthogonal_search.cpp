#include "simo/orthogonal_search.h"

#include <algorithm>

#include "simo/cholesky.h"

namespace simo {
namespace {

// to -= x y^T, row against row.
template <class T>
void subtractProduct(const Matrix<T>& x, const Matrix<T>& y, Matrix<T>& to) {
  for (int a = 0; a < to.nRows; ++a)
    for (int b = 0; b < to.nCols; ++b)
      for (int c = 0; c < to.nCols; ++c) to[a][b] -= x[a][c] * y[b][c];
}

// x = x l^T for a lower triangle l, formed in work.
template <class T>
void timesTransposed(const LTMatrix<T>& l, Matrix<T>& work, Matrix<T>& x) {
  work.fill(T{0});
  for (int a = 0; a < x.nRows; ++a)
    for (int b = 0; b < x.nCols; ++b)
      for (int c = 0; c <= b; ++c) work[a][b] += x[a][c] * l[b][c];
  x.assign(work, 0, 0);
}

// inverse = factor^-1, column by column by forward substitution.
template <class T>
void invertFactor(const LTMatrix<T>& factor, LTMatrix<T>& inverse) {
  for (int i = 0; i < factor.n; ++i) {
    inverse[i][i] = T{1} / factor[i][i];
    for (int j = i + 1; j < factor.n; ++j) {
      T sum = 0;
      for (int k = i; k < j; ++k) sum -= factor[j][k] * inverse[k][i];
      inverse[j][i] = sum / factor[j][j];
    }
  }
}

// A(m, k): the cross term of lag blocks m and k < m, freed of what earlier blocks explain and
// normalised by block k. Leaves nothing of use in work.
template <class T>
void crossTerm(const Matrix<T>& pairAvg, int pairRow, int pairCol, int m, int k,
               const Vector<LTMatrix<T>>& invFactors, LTMatrix<Matrix<T>>& alphas, Matrix<T>& work) {
  Matrix<T>& term = alphas[m][k];
  term.assign(pairAvg, pairRow, pairCol);
  for (int j = 1; j < k; ++j) subtractProduct(alphas[m][j], alphas[k][j], term);
  timesTransposed(invFactors[k], work, term);
}

// F_m: what lag block m explains beyond the blocks before it.
template <class T>
void coefficient(const Matrix<T>& lagAvg, int row, int col, int m, const LTMatrix<Matrix<T>>& alphas,
                 const Vector<LTMatrix<T>>& invFactors, Matrix<T>& work, Vector<Matrix<T>>& coefs) {
  Matrix<T>& coef = coefs[m];
  coef.assign(lagAvg, row, col);
  for (int k = 1; k < m; ++k) subtractProduct(coefs[k], alphas[m][k], coef);
  timesTransposed(invFactors[m], work, coef);
}

// product = x x^T, each element summed in double.
template <class T>
void squareRows(const Matrix<T>& x, Matrix<T>& product) {
  for (int a = 0; a < x.nRows; ++a)
    for (int b = 0; b < x.nRows; ++b) {
      double sum = 0;
      for (int c = 0; c < x.nCols; ++c) sum += static_cast<double>(x[a][c]) * static_cast<double>(x[b][c]);
      product[a][b] = static_cast<T>(sum);
    }
}

template <class T>
void subtract(const Matrix<T>& term, Matrix<T>& from) {
  for (int i = 0; i < from.nRows; ++i)
    for (int j = 0; j < from.nCols; ++j) from[from.rowBase + i][from.colBase + j] -= term[i][j];
}

}  // namespace

template <class T>
FosOrth<T>::FosOrth(int seriesCount, int order)
    : n(seriesCount),
      p(order),
      coefs(order, 1, Matrix<T>(n, n, 0, 0, T{0})),
      invFactors(order, 1, LTMatrix<T>(n, 0, 0, T{0})),
      alphas(std::max(order - 1, 0), 2, 1, Matrix<T>(n, n, 0, 0, T{0})),
      work(n, n, 0, 0, T{0}),
      spare(n, n, 0, 0, T{0}),
      factor(n, 0, 0, T{0}),
      errCov(n, n, 0, 0, T{0}),
      explained(order, 1, Matrix<T>(n, n, 0, 0, T{0})) {}

template <class T>
bool mfosP(const Vector<Matrix<T>>& lagAvgs, int row, int col, const LTMatrix<Matrix<T>>& lagPairAvgs,
           int pairRow, int pairCol, int p, Vector<Matrix<T>>& coefs, Vector<LTMatrix<T>>& invFactors,
           LTMatrix<Matrix<T>>& alphas, Matrix<T>& work, LTMatrix<T>& factor) {
  for (int m = 1; m <= p; ++m) {
    for (int k = 1; k < m; ++k)
      crossTerm(lagPairAvgs[m][k], pairRow, pairCol, m, k, invFactors, alphas, work);
    work.assign(lagPairAvgs[m][m], pairRow, pairCol);
    for (int k = 1; k < m; ++k) subtractProduct(alphas[m][k], alphas[m][k], work);
    if (!cholDcmpP(work, 0, work.nRows, factor)) return false;
    invertFactor(factor, invFactors[m]);
    coefficient(lagAvgs[m], row, col, m, alphas, invFactors, work, coefs);
  }
  return true;
}

template <class T>
void varEP(const Vector<Matrix<T>>& lagAvgs, int row, int col, const Vector<Matrix<T>>& coefs, int p,
           Matrix<T>& errCov, Vector<Matrix<T>>& explained) {
  errCov.assign(lagAvgs[0], row, col);
  for (int k = 1; k <= p; ++k) {
    squareRows(coefs[k], explained[k]);
    subtract(explained[k], errCov);
  }
}

template <class T>
bool fitModel(const FosAvg<T>& avg, int first, FosOrth<T>& model) {
  if (!mfosP(avg.lagAvgs, first, first, avg.lagPairAvgs, first, first, model.p, model.coefs, model.invFactors,
             model.alphas, model.work, model.factor))
    return false;
  varEP(avg.lagAvgs, first, first, model.coefs, model.p, model.errCov, model.explained);
  return true;
}

template struct FosOrth<float>;
template bool mfosP<float>(const Vector<Matrix<float>>&, int, int, const LTMatrix<Matrix<float>>&, int, int,
                           int, Vector<Matrix<float>>&, Vector<LTMatrix<float>>&, LTMatrix<Matrix<float>>&,
                           Matrix<float>&, LTMatrix<float>&);
template void varEP<float>(const Vector<Matrix<float>>&, int, int, const Vector<Matrix<float>>&, int,
                           Matrix<float>&, Vector<Matrix<float>>&);
template bool fitModel<float>(const FosAvg<float>&, int, FosOrth<float>&);

}  // namespace simo
