#include "simo/residual_surrogates.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "simo/spikes.h"

namespace simo {
namespace {

constexpr int kWarmUp = 200;

// Takes one straight line off, fitted to what is known.
void takeLine(const std::vector<bool>& known, std::span<double> series) {
  double n = 0, times = 0, values = 0;
  const auto forEachKnown = [&](auto use) {
    for (std::size_t t = 0; t < series.size(); ++t)
      if (known[t]) use(static_cast<double>(t), series[t]);
  };
  forEachKnown([&](double t, double value) { n += 1, times += t, values += value; });
  const double middle = times / n, mean = values / n;
  double products = 0, squares = 0;
  forEachKnown([&](double t, double value) {
    products += (t - middle) * (value - mean);
    squares += (t - middle) * (t - middle);
  });
  const double slope = squares > 0 ? products / squares : 0;
  for (std::size_t t = 0; t < series.size(); ++t)
    series[t] -= mean + slope * (static_cast<double>(t) - middle);
}

std::vector<bool> knownIn(const std::vector<Stretch>& stretches, std::size_t length) {
  std::vector<bool> known(length, false);
  for (const Stretch& stretch : stretches)
    for (int t = stretch.first; t < stretch.end; ++t) known[static_cast<std::size_t>(t)] = true;
  return known;
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

}  // namespace

ResidualSurrogates::ResidualSurrogates(std::span<const float> series, const std::vector<Stretch>& stretches)
    : innovations_(series.size(), 0.0),
      known_(knownIn(stretches, series.size())),
      follows_(series.size(), false),
      simulated_(kWarmUp + series.size(), 0.0) {
  if (stretches.empty()) return;
  std::vector<double> course(series.begin(), series.end());
  takeLine(known_, course);
  model_ = fitBetweenSpikes(course, stretches);
  keepResiduals(stretches);
  const auto values = static_cast<int>(model_.residuals.size());
  waves_ = SlowWaves(values / mostBurgOrder(values), known_);
  amplitudes_ = waves_.amplitudes(course);
}

void ResidualSurrogates::keepResiduals(const std::vector<Stretch>& stretches) {
  const std::vector<bool> spikes = spikesAmong(model_.residuals);
  std::size_t first = 0;  // of the stretch, among the residuals
  for (const Stretch& stretch : stretches) {
    const auto begin = static_cast<std::ptrdiff_t>(first);
    const auto length = static_cast<std::size_t>(stretch.end - stretch.first);
    std::copy_n(model_.residuals.begin() + begin, length, innovations_.begin() + stretch.first);
    markFollowers(spikes.begin() + begin, stretch, model_.order(), follows_);
    first += length;
  }
}

bool ResidualSurrogates::isDefined() const {
  return std::isfinite(model_.errorVariance) && model_.errorVariance > 0;
}

double ResidualSurrogates::signFrom(int number) {
  return (number >> 20 & 1) != 0 ? 1.0 : -1.0;
}

double ResidualSurrogates::resampled(RandomStream& random) const {
  const auto index = static_cast<std::size_t>(random.next()) % model_.residuals.size();
  return model_.residuals[index];
}

std::uint64_t ResidualSurrogates::numbersPerDraw() const {
  const auto own = static_cast<std::size_t>(std::count(known_.begin(), known_.end(), true));
  return 2 * simulated_.size() - own;  // a sign each, and an index for what is resampled
}

void ResidualSurrogates::draw(RandomStream& random, std::span<float> surrogate) {
  const auto order = model_.coefficients.size();
  double sign = 1;
  for (std::size_t t = 0; t < simulated_.size(); ++t) {
    const double ownSign = signFrom(random.next());
    const bool isOwn = t >= kWarmUp && known_[t - kWarmUp];
    if (!isOwn || !follows_[t - kWarmUp]) sign = ownSign;
    double value = sign * (isOwn ? innovations_[t - kWarmUp] : resampled(random));
    for (std::size_t k = 1; k <= order && k <= t; ++k)
      value += model_.coefficients[k - 1] * simulated_[t - k];
    simulated_[t] = value;
  }
  const std::span<double> drawn(simulated_.data() + kWarmUp, surrogate.size());
  takeLine(known_, drawn);
  waves_.scaleTo(amplitudes_, drawn);
  for (std::size_t t = 0; t < surrogate.size(); ++t) surrogate[t] = static_cast<float>(drawn[t]);
}

}  // namespace simo
