#include "tests/kernel/oracle.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace oracle {
namespace {

using Square = std::vector<std::vector<double>>;

Square squareOf(std::size_t n) {
  return Square(n, std::vector<double>(n, 0.0));
}

// Moments of the variables (series s, lag m), m = 0 ... p, at index 2 m + s.
class Moments {
 public:
  Moments(const std::vector<Segment>& segments, int order, bool leastSquares)
      : order_(order),
        leastSquares_(leastSquares),
        matrix_(squareOf(2 * static_cast<std::size_t>(order + 1))) {
    for (const Segment& segment : segments) add({detrended(segment.x), detrended(segment.y)});
  }
  [[nodiscard]] double at(int s, int m, int t, int k) const { return matrix_[index(s, m)][index(t, k)]; }

 private:
  static std::size_t index(int s, int m) { return static_cast<std::size_t>(2 * m + s); }

  void add(const std::array<Series, 2>& data) {
    for (int m = 0; m <= order_; ++m) {
      for (int k = 0; k <= m; ++k) {
        for (int i = 0; i < 2; ++i) {
          for (int j = 0; j < 2; ++j) addPair(data, i, m, j, k);
        }
      }
    }
  }

  // Row (i, lag m), column (j, lag k), m >= k. With k = 0 the average of all pairs at distance m,
  // the current value belonging to j.
  void addPair(const std::array<Series, 2>& data, int i, int m, int j, int k) {
    const Series& a = data[static_cast<std::size_t>(i)];
    const Series& b = data[static_cast<std::size_t>(j)];
    const auto n = a.size(), d = static_cast<std::size_t>(m - k);
    double sum = 0.0;
    if (leastSquares_) {
      for (auto t = static_cast<std::size_t>(order_); t < n; ++t)
        sum += a[t - static_cast<std::size_t>(m)] * b[t - static_cast<std::size_t>(k)];
      matrix_[index(i, m)][index(j, k)] += sum;
      if (m != k) matrix_[index(j, k)][index(i, m)] += sum;
      return;
    }
    for (std::size_t t = d; t < n; ++t) {
      sum += k == 0 ? a[t - d] * b[t] : a[t] * b[t - d];
    }
    for (std::size_t t = n - static_cast<std::size_t>(k); t < n; ++t) sum -= a[t - d] * b[t];
    sum /= static_cast<double>(n);
    matrix_[index(i, m)][index(j, k)] += sum;
    if (m != k) matrix_[index(j, k)][index(i, m)] += sum;
  }

  int order_;
  bool leastSquares_;
  Square matrix_;
};

struct Variable {
  int series, lag;
};

// Covariance of the last `targets` variables given the others, by Cholesky. False at a pivot <= 0.
bool residualCovariance(const Moments& moments, const std::vector<Variable>& variables, std::size_t targets,
                        Square& result) {
  const std::size_t n = variables.size(), given = n - targets;
  Square a = squareOf(n);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      a[i][j] = moments.at(variables[i].series, variables[i].lag, variables[j].series, variables[j].lag);
    }
  }
  for (std::size_t k = 0; k < n; ++k) {
    if (a[k][k] <= 0.0) return false;
    if (k >= given && k + 1 == n) break;
    if (k == given) {
      result = squareOf(targets);
      for (std::size_t i = 0; i < targets; ++i) {
        for (std::size_t j = 0; j < targets; ++j) result[i][j] = a[given + i][given + j];
      }
    }
    for (std::size_t i = k + 1; i < n; ++i) {
      for (std::size_t j = k + 1; j < n; ++j) a[i][j] -= a[i][k] * a[k][j] / a[k][k];
    }
  }
  if (targets == 1) result = {{a[given][given]}};
  return true;
}

// 1 / Frobenius norm of the inverse of the scaled moments, by Gauss-Jordan without pivoting: they
// are positive definite here.
double conditioningOf(const Moments& moments, const std::vector<Variable>& variables) {
  const std::size_t n = variables.size();
  const auto moment = [&](std::size_t i, std::size_t j) {
    return moments.at(variables[i].series, variables[i].lag, variables[j].series, variables[j].lag);
  };
  Square a = squareOf(n);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) a[i][j] = moment(i, j) / std::sqrt(moment(i, i) * moment(j, j));
  }
  for (std::size_t k = 0; k < n; ++k) {
    const double pivot = a[k][k];
    a[k][k] = 1.0;
    for (double& v : a[k]) v /= pivot;
    for (std::size_t i = 0; i < n; ++i) {
      if (i == k) continue;
      const double factor = a[i][k];
      a[i][k] = 0.0;
      for (std::size_t j = 0; j < n; ++j) a[i][j] -= factor * a[k][j];
    }
  }
  double squares = 0.0;
  for (const auto& row : a) {
    for (double v : row) squares += v * v;
  }
  return 1.0 / std::sqrt(squares);
}

}  // namespace

Series detrended(const Series& values) {
  const double n = static_cast<double>(values.size());
  double mean = 0.0, rampSquares = 0.0, product = 0.0;
  for (double v : values) mean += v / n;
  const auto ramp = [&](std::size_t t) { return static_cast<double>(t) / (n - 1.0) - 0.5; };
  for (std::size_t t = 0; t < values.size(); ++t) {
    rampSquares += ramp(t) * ramp(t);
    product += ramp(t) * (values[t] - mean);
  }
  Series residuals(values.size());
  for (std::size_t t = 0; t < values.size(); ++t)
    residuals[t] = values[t] - mean - ramp(t) * product / rampSquares;
  return residuals;
}

Answer geweke(const std::vector<Segment>& segments, int order, bool leastSquares) {
  const Moments moments(segments, order, leastSquares);
  Answer answer;
  std::vector<Variable> joint, single[2];
  for (int m = 1; m <= order; ++m) {
    for (int s = 0; s < 2; ++s) {
      joint.push_back({s, m});
      single[s].push_back({s, m});
    }
  }
  joint.push_back({0, 0});
  joint.push_back({1, 0});
  Square errors, alone[2];
  if (!residualCovariance(moments, joint, 2, errors)) return answer;
  for (int s = 0; s < 2; ++s) {
    single[s].push_back({s, 0});
    if (!residualCovariance(moments, single[s], 1, alone[s])) return answer;
  }
  if (errors[1][1] <= 0.0) return answer;
  const double determinant = errors[0][0] * errors[1][1] - errors[0][1] * errors[1][0];
  answer.exists = true;
  answer.conditioning = conditioningOf(moments, joint);
  answer.measures = {std::log(alone[1][0][0] / errors[1][1]), std::log(alone[0][0][0] / errors[0][0]),
                     std::log(errors[0][0] * errors[1][1] / determinant)};
  return answer;
}

}  // namespace oracle
