#include "tests/calibration/influence_test.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace calibration {
namespace {

double dot(const Course& a, const Course& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

// Takes off what `direction` explains of it.
void project(const Course& direction, Course& course) {
  const double share = dot(direction, course) / dot(direction, direction);
  for (std::size_t i = 0; i < course.size(); ++i) course[i] -= share * direction[i];
}

Course withoutLine(const Course& course, int first, int last) {
  Course part(course.begin() + first - 1, course.begin() + last);
  Course ones(part.size(), 1.0), line(part.size());
  for (std::size_t t = 0; t < line.size(); ++t) line[t] = static_cast<double>(t);
  project(ones, line);
  project(ones, part);
  project(line, part);
  return part;
}

// The response, and the lags of both series one after the other: first the effect's.
struct Regression {
  Course response;
  std::vector<Course> lags;
};

void append(const Course& effect, const Course& cause, int order, Regression& regression) {
  const auto p = static_cast<std::size_t>(order);
  for (std::size_t t = p; t < effect.size(); ++t) {
    regression.response.push_back(effect[t]);
    for (std::size_t k = 1; k <= p; ++k) {
      regression.lags[k - 1].push_back(effect[t - k]);
      regression.lags[p + k - 1].push_back(cause[t - k]);
    }
  }
}

// What is left of the response's sum of squares without and with the second half of the lags.
std::pair<double, double> errorsOf(Regression& regression) {
  const std::size_t half = regression.lags.size() / 2;
  double own = 0;
  for (std::size_t i = 0; i < regression.lags.size(); ++i) {
    for (std::size_t before = 0; before < i; ++before) project(regression.lags[before], regression.lags[i]);
    project(regression.lags[i], regression.response);
    if (i + 1 == half) own = dot(regression.response, regression.response);
  }
  return {own, dot(regression.response, regression.response)};
}

// The continued fraction of the incomplete beta function by Lentz's method (DLMF 8.17.22).
double betaFraction(double a, double b, double x) {
  constexpr int kMost = 500;
  constexpr double kTiny = 1e-300;
  const auto safe = [](double v) { return std::abs(v) < kTiny ? kTiny : v; };
  double c = 1, d = 1 / safe(1 - (a + b) * x / (a + 1)), value = d;
  for (int m = 1; m < kMost; ++m) {
    const double even = m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m));
    const double odd = -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1));
    for (const double term : {even, odd}) {
      d = 1 / safe(1 + term * d);
      c = safe(1 + term / c);
      value *= c * d;
    }
    if (std::abs(c * d - 1) < std::numeric_limits<double>::epsilon()) break;
  }
  return value;
}

double incompleteBeta(double a, double b, double x) {
  if (x <= 0) return 0;
  if (x >= 1) return 1;
  const double front =
      std::exp(std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) + a * std::log(x) + b * std::log1p(-x));
  if (x < (a + 1) / (a + b + 2)) return front * betaFraction(a, b, x) / a;
  return 1 - front * betaFraction(b, a, 1 - x) / b;
}

}  // namespace

double upperTailOfF(double f, double numerator, double denominator) {
  return incompleteBeta(denominator / 2, numerator / 2, denominator / (denominator + numerator * f));
}

InfluenceTest testInfluence(const Course& cause, const Course& effect,
                            const std::vector<std::pair<int, int>>& intervals, int order) {
  Regression regression{{}, std::vector<Course>(2 * static_cast<std::size_t>(order))};
  for (const auto& [first, last] : intervals)
    append(withoutLine(effect, first, last), withoutLine(cause, first, last), order, regression);
  const auto [own, joint] = errorsOf(regression);
  // Mean and line of each interval were estimated as well.
  const double free = static_cast<double>(regression.response.size()) - 2.0 * order -
                      2.0 * static_cast<double>(intervals.size());
  const double f = (own - joint) / order / (joint / free);
  return {std::log(own / joint), upperTailOfF(f, order, free)};
}

std::vector<bool> rejected(const std::vector<double>& p, double q) {
  std::vector<double> sorted = p;
  std::sort(sorted.begin(), sorted.end());
  double least = -1;
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    if (sorted[i] <= q * static_cast<double>(i + 1) / static_cast<double>(sorted.size())) least = sorted[i];
  }
  std::vector<bool> flags;
  for (const double value : p) flags.push_back(value <= least);
  return flags;
}

}  // namespace calibration
