#include "suitability/autoregression.h"

#include <algorithm>
#include <cmath>

#include "simo/detrend.h"
#include "simo/pair_fit.h"

namespace suitability {
namespace {

constexpr double kDegenerate = 1e-12;
constexpr int kFewestValues = 3;

simo::LaggedMoments momentsOf(const std::vector<Series>& stretches, int order) {
  simo::LaggedMoments moments(order);
  for (const Series& stretch : stretches)
    moments.add(stretch.data(), stretch.data(), static_cast<int>(stretch.size()));
  return moments;
}

// A lower triangle, row by row, 0-based.
class Triangle {
 public:
  explicit Triangle(int n) : n_(static_cast<std::size_t>(n)), values_(n_ * n_) {}
  double& operator()(int i, int j) {
    return values_[static_cast<std::size_t>(i) * n_ + static_cast<std::size_t>(j)];
  }
  // The sum over j < end of (i, j) times (k, j).
  double rowProduct(int i, int k, int end) {
    double sum = 0;
    for (int j = 0; j < end; ++j) sum += (*this)(i, j) * (*this)(k, j);
    return sum;
  }

 private:
  std::size_t n_;
  Series values_;
};

bool factor(const simo::LaggedMoments& moments, Triangle& l) {
  for (int i = 0; i < moments.order(); ++i) {
    for (int j = 0; j < i; ++j) l(i, j) = (moments(i + 1, j + 1) - l.rowProduct(i, j, j)) / l(j, j);
    const double square = moments(i + 1, i + 1), rest = square - l.rowProduct(i, i, i);
    if (!(rest > kDegenerate * square)) return false;
    l(i, i) = std::sqrt(rest);
  }
  return true;
}

Series errorsOf(const Series& x, const Series& a) {
  Series errors;
  for (std::size_t t = a.size(); t < x.size(); ++t) {
    double error = x[t];
    for (std::size_t k = 0; k < a.size(); ++k) error -= a[k] * x[t - k - 1];
    errors.push_back(error);
  }
  return errors;
}

}  // namespace

std::vector<Series> detrendedStretches(const Series& series, const std::vector<Interval>& intervals) {
  std::vector<Series> stretches;
  for (const Interval& interval : intervals) {
    if (interval.length < kFewestValues) continue;
    Series stretch(static_cast<std::size_t>(interval.length));
    // A flat stretch becomes 0, and the fit sees to it.
    static_cast<void>(simo::detrendRow(series.data() + interval.first, interval.length, stretch.data()));
    stretches.push_back(std::move(stretch));
  }
  return stretches;
}

Series solveLags(const simo::LaggedMoments& moments, Series right) {
  const int order = moments.order();
  Triangle l(order);
  if (!factor(moments, l)) return {};
  const auto at = [&right](int i) -> double& { return right[static_cast<std::size_t>(i)]; };
  for (int i = 0; i < order; ++i) {
    for (int j = 0; j < i; ++j) at(i) -= l(i, j) * at(j);
    at(i) /= l(i, i);
  }
  for (int i = order - 1; i >= 0; --i) {
    for (int j = i + 1; j < order; ++j) at(i) -= l(j, i) * at(j);
    at(i) /= l(i, i);
  }
  return right;
}

double sumOfSquares(const std::vector<Series>& residuals) {
  double sum = 0;
  for (const Series& stretch : residuals)
    for (const double e : stretch) sum += e * e;
  return sum;
}

std::optional<OwnModel> fitOwnModel(const std::vector<Series>& stretches, int order) {
  OwnModel model{{}, {}, momentsOf(stretches, order)};
  Series right;
  for (int k = 1; k <= order; ++k) right.push_back(model.moments(0, k));
  model.coefficients = solveLags(model.moments, std::move(right));
  if (model.coefficients.empty()) return std::nullopt;
  for (const Series& stretch : stretches)
    if (stretch.size() > model.coefficients.size())
      model.residuals.push_back(errorsOf(stretch, model.coefficients));
  return model;
}

std::optional<double> predictability(const std::vector<Series>& stretches, int order) {
  const simo::LaggedMoments moments = momentsOf(stretches, order);
  const std::optional<double> error = simo::PairFit(order).singleError(moments);
  if (!error) return std::nullopt;
  return std::clamp(1 - *error / moments(0, 0), 0.0, 1.0);
}

}  // namespace suitability
