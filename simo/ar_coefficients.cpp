#include "simo/ar_coefficients.h"

namespace simo {
namespace {

// F_m minus the sum over j > m of a_j A(j, m), element (row, col).
template <class T>
double remainder(const Vector<Matrix<T>>& coefs, const LTMatrix<Matrix<T>>& alphas,
                 const Vector<Matrix<T>>& a, int p, int m, int row, int col) {
  double sum = static_cast<double>(coefs[m][row][col]);
  for (int j = m + 1; j <= p; ++j)
    for (int c = 0; c < coefs[m].nCols; ++c)
      sum -= static_cast<double>(a[j][a[j].rowBase + row][a[j].colBase + c]) *
             static_cast<double>(alphas[j][m][c][col]);
  return sum;
}

}  // namespace

template <class T>
void arCoefficients(const Vector<Matrix<T>>& coefs, const Vector<LTMatrix<T>>& invFactors,
                    const LTMatrix<Matrix<T>>& alphas, int p, Vector<Matrix<T>>& a) {
  for (int m = p; m >= 1; --m)
    for (int row = 0; row < coefs[m].nRows; ++row)
      for (int col = 0; col < coefs[m].nCols; ++col) {
        double sum = 0;
        for (int c = col; c < coefs[m].nCols; ++c)
          sum += remainder(coefs, alphas, a, p, m, row, c) * static_cast<double>(invFactors[m][c][col]);
        a[m][a[m].rowBase + row][a[m].colBase + col] = static_cast<T>(sum);
      }
}

template void arCoefficients<float>(const Vector<Matrix<float>>&, const Vector<LTMatrix<float>>&,
                                    const LTMatrix<Matrix<float>>&, int, Vector<Matrix<float>>&);

}  // namespace simo
