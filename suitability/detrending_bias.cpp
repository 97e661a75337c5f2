#include "suitability/detrending_bias.h"

#include <algorithm>
#include <cstdlib>

namespace suitability {
namespace {

constexpr std::size_t kMemory = 100;  // volumes that an error is followed for

// The sum over t of h(t, t + lag), h the projection on mean and trend of n values.
double projected(std::size_t length, std::size_t lag) {
  if (length <= lag || length < 3) return 0;
  const auto n = static_cast<double>(length), k = static_cast<double>(lag);
  const double middle = (n - 1) / 2, rampSquares = n * (n * n - 1) / 12;
  double ramp = 0;
  for (double t = 0; t < n - k; ++t) ramp += (t - middle) * (t + k - middle);
  return (n - k) / n + ramp / rampSquares;
}

// At [lag], per residual.
Series projectionsOf(const std::vector<Series>& residuals, std::size_t lags) {
  Series sums(lags + 1);
  double n = 0;
  for (const Series& stretch : residuals) {
    n += static_cast<double>(stretch.size());
    for (std::size_t lag = 0; lag <= lags; ++lag) sums[lag] += projected(stretch.size(), lag);
  }
  for (double& sum : sums) sum /= n;
  return sums;
}

// What an error of 1 makes of the series [m] volumes later.
Series impulseResponse(const Series& a) {
  Series response(kMemory, 0.0);
  response[0] = 1;
  for (std::size_t m = 1; m < kMemory; ++m)
    for (std::size_t k = 1; k <= std::min(m, a.size()); ++k) response[m] += a[k - 1] * response[m - k];
  return response;
}

// How x(t + d) and e(t) are related when errors are white: directly, and through mean and trend, which hold
// e(t) and what errors made of x.
class Relation {
 public:
  Relation(const OwnModel& model, const Series& coefficients, std::size_t lags)
      : response_(impulseResponse(coefficients)),
        projections_(
            projectionsOf(model.residuals, lags + static_cast<std::size_t>(model.order()) + kMemory)) {}

  [[nodiscard]] double projection(int lag) const { return projections_[static_cast<std::size_t>(lag)]; }
  [[nodiscard]] double throughTrend(int d) const {
    double sum = 0;
    for (int m = 0; m < static_cast<int>(kMemory); ++m)
      sum += response_[static_cast<std::size_t>(m)] * projection(std::abs(d - m));
    return sum;
  }
  [[nodiscard]] double operator()(int d) const {
    return (d < 0 ? 0 : response_[static_cast<std::size_t>(d)]) - throughTrend(d);
  }

 private:
  Series response_, projections_;
};

// How much too small each coefficient is: mean and trend relate x(t - j) and e(t).
Series shortfall(const OwnModel& model, const Relation& relation) {
  const double squares = sumOfSquares(model.residuals) / (1 - relation.projection(0));
  Series right;
  for (int j = 1; j <= model.order(); ++j) right.push_back(squares * relation.throughTrend(-j));
  return solveLags(model.moments, std::move(right));
}

Series sumOf(Series a, const Series& b) {
  for (std::size_t i = 0; i < a.size(); ++i) a[i] += b[i];
  return a;
}

}  // namespace

std::vector<double> detrendingBias(const OwnModel& model, int lags) {
  const auto reach = static_cast<std::size_t>(lags);
  const Series first = shortfall(model, Relation(model, model.coefficients, reach));
  // Once more with coefficients that are nearer to the true ones.
  const Relation relation(model, sumOf(model.coefficients, first), reach);
  const Series missing = shortfall(model, relation);
  std::vector<double> bias;
  for (int lag = 1; lag <= lags; ++lag) {
    double correlation = -relation.projection(lag);
    for (int j = 1; j <= model.order(); ++j)
      correlation += missing[static_cast<std::size_t>(j - 1)] * (relation(lag - j) + relation(-lag - j));
    bias.push_back(correlation);
  }
  return bias;
}

}  // namespace suitability
