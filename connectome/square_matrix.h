// Inverses of symmetric positive definite matrices, in double precision.
#ifndef TAVMAP_CONNECTOME_SQUARE_MATRIX_H
#define TAVMAP_CONNECTOME_SQUARE_MATRIX_H

#include <cstddef>
#include <optional>
#include <vector>

namespace connectome {

struct SquareMatrix {
  explicit SquareMatrix(std::size_t n = 0) : size(n), values(n * n, 0.0) {}
  std::size_t size;
  std::vector<double> values;
  [[nodiscard]] double& at(std::size_t i, std::size_t j) { return values[i * size + j]; }
  [[nodiscard]] double at(std::size_t i, std::size_t j) const { return values[i * size + j]; }
};

// By Cholesky. Nothing when a pivot is not above 1e-10 of its diagonal element. O(n^3).
[[nodiscard]] std::optional<SquareMatrix> inverseOf(SquareMatrix matrix);

}  // namespace connectome

#endif
