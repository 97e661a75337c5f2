#include "connectome/square_matrix.h"

#include <cmath>

namespace connectome {
namespace {

constexpr double kLeastPivotOfSquare = 1e-10;

// The lower triangle becomes L.
bool factor(SquareMatrix& matrix) {
  for (std::size_t i = 0; i < matrix.size; ++i) {
    double* const row = &matrix.at(i, 0);
    const double diagonal = row[i];
    for (std::size_t j = 0; j <= i; ++j) {
      const double* const other = &matrix.at(j, 0);
      double sum = row[j];
      for (std::size_t k = 0; k < j; ++k) sum -= row[k] * other[k];
      row[j] = j < i ? sum / other[j] : sum;
    }
    if (!(row[i] > kLeastPivotOfSquare * diagonal)) return false;
    row[i] = std::sqrt(row[i]);
  }
  return true;
}

// L^-1, its rows transposed, so that products run along memory: column j of the inverse is row j here.
SquareMatrix transposedInverse(const SquareMatrix& lower) {
  SquareMatrix inverse(lower.size);
  for (std::size_t j = 0; j < lower.size; ++j) {
    double* const column = &inverse.at(j, 0);
    column[j] = 1 / lower.at(j, j);
    for (std::size_t i = j + 1; i < lower.size; ++i) {
      double sum = 0;
      for (std::size_t k = j; k < i; ++k) sum -= lower.at(i, k) * column[k];
      column[i] = sum / lower.at(i, i);
    }
  }
  return inverse;
}

}  // namespace

std::optional<SquareMatrix> inverseOf(SquareMatrix matrix) {
  if (!factor(matrix)) return std::nullopt;
  const SquareMatrix columns = transposedInverse(matrix);
  for (std::size_t i = 0; i < matrix.size; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      double sum = 0;
      for (std::size_t k = i; k < matrix.size; ++k) sum += columns.at(i, k) * columns.at(j, k);
      matrix.at(i, j) = matrix.at(j, i) = sum;
    }
  }
  return matrix;
}

}  // namespace connectome
