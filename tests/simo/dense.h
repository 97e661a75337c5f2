// Small dense algebra in double, written without the library under test.
#ifndef TAVMAP_TESTS_SIMO_DENSE_H
#define TAVMAP_TESTS_SIMO_DENSE_H

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace test {

struct Dense {
  std::size_t rows;
  std::size_t cols;
  std::vector<double> values;

  Dense(std::size_t r, std::size_t c) : rows(r), cols(c), values(r * c, 0.0) {}
  Dense(std::size_t r, std::size_t c, std::vector<double> v) : rows(r), cols(c), values(std::move(v)) {}
  double& operator()(std::size_t r, std::size_t c) { return values[r * cols + c]; }
  double operator()(std::size_t r, std::size_t c) const { return values[r * cols + c]; }
};

inline Dense transposed(const Dense& a) {
  Dense t(a.cols, a.rows);
  for (std::size_t i = 0; i < a.rows; ++i)
    for (std::size_t j = 0; j < a.cols; ++j) t(j, i) = a(i, j);
  return t;
}

inline Dense product(const Dense& a, const Dense& b) {
  Dense c(a.rows, b.cols);
  for (std::size_t i = 0; i < a.rows; ++i)
    for (std::size_t k = 0; k < a.cols; ++k)
      for (std::size_t j = 0; j < b.cols; ++j) c(i, j) += a(i, k) * b(k, j);
  return c;
}

// The x with a x = b, by elimination with row exchanges. `a` must not be singular.
inline Dense solve(Dense a, Dense b) {
  for (std::size_t i = 0; i < a.rows; ++i) {
    std::size_t pivot = i;
    for (std::size_t r = i + 1; r < a.rows; ++r)
      if (std::abs(a(r, i)) > std::abs(a(pivot, i))) pivot = r;
    for (std::size_t c = 0; c < a.cols; ++c) std::swap(a(i, c), a(pivot, c));
    for (std::size_t c = 0; c < b.cols; ++c) std::swap(b(i, c), b(pivot, c));
    for (std::size_t r = 0; r < a.rows; ++r) {
      if (r == i) continue;
      const double factor = a(r, i) / a(i, i);
      for (std::size_t c = i; c < a.cols; ++c) a(r, c) -= factor * a(i, c);
      for (std::size_t c = 0; c < b.cols; ++c) b(r, c) -= factor * b(i, c);
    }
  }
  for (std::size_t i = 0; i < a.rows; ++i)
    for (std::size_t c = 0; c < b.cols; ++c) b(i, c) /= a(i, i);
  return b;
}

}  // namespace test

#endif
