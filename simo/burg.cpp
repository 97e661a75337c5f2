#include "simo/burg.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace simo {
namespace {

constexpr int kMostOrder = 40;
// What is left of the variance where a model tells nearly all: further lags would make it unstable by
// rounding.
constexpr double kNothingLeft = 1e-9;

// The lattice of growing order over all stretches: forward and backward errors of every value.
class Lattice {
 public:
  Lattice(std::span<const double> series, const std::vector<Stretch>& stretches) {
    for (const Stretch& stretch : stretches) {
      const std::size_t start = forward_.size();
      for (int t = stretch.first; t < stretch.end; ++t)
        forward_.push_back(series[static_cast<std::size_t>(t)]);
      ends_.push_back({start, forward_.size()});
    }
    backward_ = forward_;
    residuals_ = forward_;
    for (const double value : forward_) variance_ += value * value;
    if (!forward_.empty()) variance_ /= static_cast<double>(forward_.size());
    scales_.assign(forward_.size(), variance_);
  }

  [[nodiscard]] double variance() const { return variance_; }
  [[nodiscard]] std::size_t size() const { return forward_.size(); }
  [[nodiscard]] const std::vector<double>& coefficients() const { return coefficients_; }

  // Goes to the next order. False when no stretch is long enough or nothing is left.
  bool grow() {
    const std::size_t order = coefficients_.size() + 1;
    const double reflection = reflectionOf(order);
    if (!std::isfinite(reflection)) return false;
    addCoefficient(reflection);
    for (const auto& [start, end] : ends_) step(start, end, order, reflection);
    variance_ *= 1 - reflection * reflection;
    return true;
  }

  // Residuals of the present order, all of its variance.
  [[nodiscard]] std::vector<double> residuals() const {
    std::vector<double> scaled = residuals_;
    for (std::size_t i = 0; i < scaled.size(); ++i)
      scaled[i] *= scales_[i] > 0 ? std::sqrt(variance_ / scales_[i]) : 0;
    return scaled;
  }

 private:
  struct Ends {
    std::size_t start, end;
  };

  [[nodiscard]] double reflectionOf(std::size_t order) const {
    double products = 0, squares = 0;
    for (const auto& [start, end] : ends_) {
      for (std::size_t t = start + order; t < end; ++t) {
        products += forward_[t] * backward_[t - 1];
        squares += forward_[t] * forward_[t] + backward_[t - 1] * backward_[t - 1];
      }
    }
    return 2 * products / squares;  // NaN when there is nothing
  }

  // Levinson's recursion.
  void addCoefficient(double reflection) {
    const std::vector<double> before = coefficients_;
    for (std::size_t k = 0; k < before.size(); ++k)
      coefficients_[k] -= reflection * before[before.size() - 1 - k];
    coefficients_.push_back(reflection);
  }

  // From the end, since backward errors move by one. The first `order` values keep the residual of a
  // lower order, which has all the past that there is.
  void step(std::size_t start, std::size_t end, std::size_t order, double reflection) {
    for (std::size_t t = end; t-- > start + order;) {
      const double forward = forward_[t], backward = backward_[t - 1];
      forward_[t] = forward - reflection * backward;
      backward_[t] = backward - reflection * forward;
      residuals_[t] = forward_[t];
      scales_[t] = variance_ * (1 - reflection * reflection);
    }
  }

  std::vector<double> forward_, backward_;
  std::vector<double> residuals_, scales_;  // scales: the variance of each residual's model
  std::vector<Ends> ends_;
  std::vector<double> coefficients_;
  double variance_ = 0;
};

}  // namespace

int mostBurgOrder(int values) {
  return std::clamp(values / 4, 1, kMostOrder);
}

BurgModel fitBurg(std::span<const double> series, const std::vector<Stretch>& stretches, int mostOrder) {
  Lattice lattice(series, stretches);
  const double n = static_cast<double>(lattice.size()), least = kNothingLeft * lattice.variance();
  const auto criterion = [&](int order) { return n * std::log(lattice.variance()) + 2 * order; };
  BurgModel best{{}, lattice.variance(), lattice.residuals()};
  double lowest = criterion(0);
  for (int order = 1; order <= mostOrder && lattice.variance() > least && lattice.grow(); ++order) {
    if (!(criterion(order) < lowest)) continue;
    lowest = criterion(order);
    best = {lattice.coefficients(), lattice.variance(), lattice.residuals()};
  }
  return best;
}

}  // namespace simo
