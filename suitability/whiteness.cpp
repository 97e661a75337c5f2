#include "suitability/whiteness.h"

#include <algorithm>
#include <cmath>

#include "suitability/detrending_bias.h"

namespace suitability {
namespace {

struct Product {
  double sum = 0;
  double pairs = 0;
};

std::size_t totalLength(const std::vector<Series>& residuals) {
  std::size_t n = 0;
  for (const Series& stretch : residuals) n += stretch.size();
  return n;
}

Product productAt(const std::vector<Series>& residuals, std::size_t lag) {
  Product product;
  for (const Series& e : residuals) {
    if (e.size() <= lag) continue;
    for (std::size_t t = lag; t < e.size(); ++t) product.sum += e[t] * e[t - lag];
    product.pairs += static_cast<double>(e.size() - lag);
  }
  return product;
}

std::vector<Interval> testedIntervals(const Courses& courses) {
  std::vector<Interval> tested;
  for (const Interval& interval : courses.intervals)
    if (interval.length >= kShortestTested) tested.push_back(interval);
  return tested;
}

std::optional<int> lowestWhiteOrder(const std::vector<Series>& stretches, int order) {
  for (int p = order + 1; p <= kHighestOrder; ++p) {
    const std::optional<OwnModel> model = fitOwnModel(stretches, p);
    if (!model) return std::nullopt;
    const std::optional<LjungBox> test = ljungBox(*model);
    if (test && test->p > kWhite) return p;
  }
  return std::nullopt;
}

}  // namespace

// Q(a + 1, x) = Q(a, x) + x^a e^-x / Gamma(a + 1) for the incomplete gamma function, from Q(1/2, x) or Q(1,
// x) on (Abramowitz & Stegun 1964, Handbook of Mathematical Functions, 26.4.4 and 26.4.5).
double chiSquareTail(double x, int degrees) {
  if (x <= 0) return 1;
  const double half = x / 2;
  const bool odd = degrees % 2 == 1;
  double a = odd ? 0.5 : 1;
  double tail = odd ? std::erfc(std::sqrt(half)) : std::exp(-half);
  for (; a < degrees / 2.0; ++a) tail += std::exp(a * std::log(half) - half - std::lgamma(a + 1));
  return std::min(tail, 1.0);
}

std::vector<LaggedCorrelation> residualCorrelations(const OwnModel& model, int lags) {
  std::vector<LaggedCorrelation> correlations;
  const double squares = sumOfSquares(model.residuals);
  if (!(squares > 0)) return correlations;
  const std::vector<double> bias = detrendingBias(model, lags);
  for (std::size_t lag = 1; lag <= bias.size(); ++lag) {
    const Product product = productAt(model.residuals, lag);
    correlations.push_back({product.sum / squares, bias[lag - 1], product.pairs});
  }
  return correlations;
}

std::optional<LjungBox> ljungBox(const OwnModel& model) {
  const std::size_t n = totalLength(model.residuals);
  const auto count = static_cast<double>(n);
  LjungBox test;
  const std::size_t lags = static_cast<std::size_t>(model.order()) + std::min<std::size_t>(20, n / 5);
  for (const LaggedCorrelation& at : residualCorrelations(model, static_cast<int>(lags))) {
    if (at.pairs < count / 2) break;
    const double correlation = at.seen - at.expected;
    test.statistic += count * (count + 2) * correlation * correlation / at.pairs;
    ++test.degrees;
  }
  test.degrees -= model.order();
  if (test.degrees < 1) return std::nullopt;
  test.p = chiSquareTail(test.statistic, test.degrees);
  return test;
}

std::optional<OwnResiduals> ownResiduals(const Courses& courses, int order) {
  const auto model = fitOwnModel(detrendedStretches(courses.reference, testedIntervals(courses)), order);
  if (!model) return std::nullopt;
  return OwnResiduals{*model, ljungBox(*model)};
}

std::optional<NotWhite> findNotWhite(const Courses& courses, const OwnResiduals& residuals) {
  if (!residuals.test || !(residuals.test->p < kNotWhite)) return std::nullopt;
  const std::vector<Series> stretches = detrendedStretches(courses.reference, testedIntervals(courses));
  return NotWhite{*residuals.test, lowestWhiteOrder(stretches, residuals.model.order())};
}

}  // namespace suitability
