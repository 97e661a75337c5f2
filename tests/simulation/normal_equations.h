// Ordinary least squares by the normal equations, for a handful of regressors: the yardstick for
// planted coefficients.
#ifndef TAVMAP_TESTS_SIMULATION_NORMAL_EQUATIONS_H
#define TAVMAP_TESTS_SIMULATION_NORMAL_EQUATIONS_H

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace least_squares {

struct Fit {
  std::vector<double> weights;
  double errorVariance = 0;
};

// Solves the square system in place, with pivoting.
inline std::vector<double> solve(std::vector<std::vector<double>> a, std::vector<double> b) {
  const std::size_t n = b.size();
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t pivot = k;
    for (std::size_t i = k + 1; i < n; ++i)
      if (std::fabs(a[i][k]) > std::fabs(a[pivot][k])) pivot = i;
    std::swap(a[k], a[pivot]);
    std::swap(b[k], b[pivot]);
    for (std::size_t i = 0; i < n; ++i) {
      if (i == k) continue;
      const double factor = a[i][k] / a[k][k];
      for (std::size_t j = k; j < n; ++j) a[i][j] -= factor * a[k][j];
      b[i] -= factor * b[k];
    }
  }
  for (std::size_t k = 0; k < n; ++k) b[k] /= a[k][k];
  return b;
}

// y = sum of weights x + error; no constant term.
inline Fit fit(const std::vector<std::vector<double>>& x, const std::vector<double>& y) {
  const std::size_t n = x.size();
  std::vector<std::vector<double>> products(n, std::vector<double>(n, 0));
  std::vector<double> right(n, 0);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t t = 0; t < y.size(); ++t) {
      right[i] += x[i][t] * y[t];
      for (std::size_t j = 0; j < n; ++j) products[i][j] += x[i][t] * x[j][t];
    }
  Fit result{solve(products, right), 0};
  for (std::size_t t = 0; t < y.size(); ++t) {
    double error = y[t];
    for (std::size_t i = 0; i < n; ++i) error -= result.weights[i] * x[i][t];
    result.errorVariance += error * error / static_cast<double>(y.size());
  }
  return result;
}

// A course without its mean and straight line.
inline std::vector<double> detrended(std::vector<double> course) {
  const auto n = static_cast<double>(course.size());
  double mean = 0, slope = 0, weight = 0;
  for (const double value : course) mean += value / n;
  for (std::size_t t = 0; t < course.size(); ++t) {
    const double time = static_cast<double>(t) - (n - 1) / 2;
    slope += time * course[t];
    weight += time * time;
  }
  for (std::size_t t = 0; t < course.size(); ++t)
    course[t] -= mean + slope / weight * (static_cast<double>(t) - (n - 1) / 2);
  return course;
}

inline std::vector<double> past(const std::vector<double>& course) {
  return {course.begin(), course.end() - 1};
}
inline std::vector<double> present(const std::vector<double>& course) {
  return {course.begin() + 1, course.end()};
}

}  // namespace least_squares

#endif
