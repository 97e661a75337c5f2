#include "simo/residual_surrogates.h"

#include <cmath>
#include <cstddef>

#include "simo/spikes.h"

namespace simo {
namespace {

constexpr int kWarmUp = 200;

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

// Marks the values of the stretch that follow a spike within `length` values. A spike among them begins
// nothing new: it may be the model's answer. spikes: one flag per value of the stretch.
void markFollowers(std::vector<bool>::const_iterator spikes, const Stretch& stretch, int length,
                   std::vector<bool>& follows) {
  int end = stretch.first;  // behind the last value that follows
  for (int t = stretch.first; t < stretch.end; ++t, ++spikes) {
    if (t < end)
      follows[static_cast<std::size_t>(t)] = true;
    else if (*spikes)
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
  model_ = fitBetweenSpikes(withoutLine(series, stretches), stretches);
  const std::vector<bool> spikes = spikesAmong(model_.residuals);
  std::size_t first = 0;  // of the stretch, among the residuals
  for (const Stretch& stretch : stretches) {
    for (int t = stretch.first; t < stretch.end; ++t) {
      const std::size_t offset = first + static_cast<std::size_t>(t - stretch.first);
      innovations_[static_cast<std::size_t>(t)] = model_.residuals[offset];
      known_[static_cast<std::size_t>(t)] = true;
    }
    markFollowers(spikes.begin() + static_cast<std::ptrdiff_t>(first), stretch, model_.order(), follows_);
    first += static_cast<std::size_t>(stretch.end - stretch.first);
  }
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
