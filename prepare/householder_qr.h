// Householder QR factorisation with column pivoting (Businger & Golub 1965; Golub & Van Loan,
// Matrix Computations, algorithm 5.4.1), for the tall and thin matrices of regression designs.
#ifndef TAVMAP_PREPARE_HOUSEHOLDER_QR_H
#define TAVMAP_PREPARE_HOUSEHOLDER_QR_H

#include <cstddef>
#include <vector>

namespace study {

class HouseholderQr {
 public:
  // columns: k vectors of n values each, finite. Columns whose remaining norm has fallen below
  // relativeTolerance times the largest column norm are dependent and left out of the rank.
  explicit HouseholderQr(std::vector<std::vector<double>> columns, double relativeTolerance = 1e-8);

  [[nodiscard]] std::size_t rank() const { return rank_; }
  // Index of the given column that stands at pivot position j < rank().
  [[nodiscard]] std::size_t pivot(std::size_t j) const { return pivots_[j]; }
  // R[i][j], i <= j < rank().
  double r(std::size_t i, std::size_t j) const { return i == j ? diagonal_[j] : columns_[j][i]; }
  // Column j of Q, n values.
  std::vector<double> q(std::size_t j) const;

 private:
  void bringLargestForward(std::size_t step);
  void reflect(std::size_t step);
  [[nodiscard]] double remainingNorm(std::size_t column, std::size_t step) const;
  void applyReflector(std::size_t step, std::vector<double>& column) const;

  std::vector<std::vector<double>> columns_;  // below the diagonal: the reflectors; above: R
  std::vector<double> diagonal_;
  std::vector<std::size_t> pivots_;
  std::size_t rank_ = 0;
};

}  // namespace study

#endif
