#include "simo/residual_surrogates.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace simo {
namespace {

constexpr int kWarmUp = 200;
// What counts as a spike, in standard deviations of the residuals: one in 500 million of Gaussian ones.
constexpr double kSpike = 6;

// The residuals about one straight line through all stretches.
std::vector<double> withoutLine(std::span<const float> series, const std::vector<Stretch>& stretches) {
  double n = 0, times = 0, values = 0;
  const auto forEach = [&](auto use) {
    for (const Stretch& stretch : stretches)
      for (int t = stretch.first; t < stretch.end; ++t)
        use(static_cast<double>(t), static_cast<double>(series[static_cast<std::size_t>(t)]));
  };
  forEach([&](double t, double value) { n += 1, times += t, values += value; });
  const double middle = times / n, mean = values / n;
  double products = 0, squares = 0;
  forEach([&](double t, double value) {
    products += (t - middle) * (value - mean);
    squares += (t - middle) * (t - middle);
  });
  const double slope = squares > 0 ? products / squares : 0;
  std::vector<double> residuals(series.size(), 0.0);
  forEach([&](double t, double value) {
    residuals[static_cast<std::size_t>(t)] = value - mean - slope * (t - middle);
  });
  return residuals;
}

int lengthOf(const std::vector<Stretch>& stretches) {
  int length = 0;
  for (const Stretch& stretch : stretches) length += stretch.end - stretch.first;
  return length;
}

// The standard deviation of Gaussian values, from the median of their magnitudes, which spikes hardly move.
double robustDeviation(std::vector<double> values) {
  if (values.empty()) return 0;
  for (double& value : values) value = std::abs(value);
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return 1.4826 * *middle;
}

// The values that follow a spike of the stretch within `length` values. A spike among them begins nothing
// new: it may be the model's answer.
void markFollowers(const std::vector<double>& innovations, const Stretch& stretch, double limit, int length,
                   std::vector<bool>& follows) {
  int end = stretch.first;  // behind the last value that follows
  for (int t = stretch.first; t < stretch.end; ++t) {
    const auto index = static_cast<std::size_t>(t);
    if (t < end)
      follows[index] = true;
    else if (std::abs(innovations[index]) > limit)
      end = t + 1 + length;
  }
}

// Bit 20 of a number: its lowest bits are the generator's weakest.
double signFrom(int number) {
  return (number >> 20 & 1) != 0 ? 1.0 : -1.0;
}

}  // namespace

ResidualSurrogates::ResidualSurrogates(std::span<const float> series, const std::vector<Stretch>& stretches)
    : innovations_(series.size(), 0.0),
      known_(series.size(), false),
      follows_(series.size(), false),
      simulated_(kWarmUp + series.size(), 0.0) {
  if (stretches.empty()) return;
  model_ = fitBurg(withoutLine(series, stretches), stretches, mostBurgOrder(lengthOf(stretches)));
  auto residual = model_.residuals.begin();
  for (const Stretch& stretch : stretches) {
    for (int t = stretch.first; t < stretch.end; ++t) {
      innovations_[static_cast<std::size_t>(t)] = *residual++;
      known_[static_cast<std::size_t>(t)] = true;
    }
  }
  const double limit = kSpike * robustDeviation(model_.residuals);
  const auto order = static_cast<int>(model_.coefficients.size());
  for (const Stretch& stretch : stretches) markFollowers(innovations_, stretch, limit, order, follows_);
}

bool ResidualSurrogates::isDefined() const {
  return std::isfinite(model_.errorVariance) && model_.errorVariance > 0;
}

double ResidualSurrogates::resampled(RandomStream& random) const {
  const auto index = static_cast<std::size_t>(random.next()) % model_.residuals.size();
  return model_.residuals[index];
}

void ResidualSurrogates::draw(RandomStream& random, std::span<float> surrogate) {
  const auto order = model_.coefficients.size();
  double sign = 1;
  for (std::size_t t = 0; t < simulated_.size(); ++t) {
    const double drawn = signFrom(random.next());
    const bool isOwn = t >= kWarmUp && known_[t - kWarmUp];
    if (!isOwn || !follows_[t - kWarmUp]) sign = drawn;
    double value = sign * (isOwn ? innovations_[t - kWarmUp] : resampled(random));
    for (std::size_t k = 1; k <= order && k <= t; ++k)
      value += model_.coefficients[k - 1] * simulated_[t - k];
    simulated_[t] = value;
  }
  for (std::size_t t = 0; t < surrogate.size(); ++t)
    surrogate[t] = static_cast<float>(simulated_[kWarmUp + t]);
}

}  // namespace simo
