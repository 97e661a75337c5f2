// Several surrogates of one series abreast: the steps of ResidualSurrogates::draw(), each of all of them.
#include <cstddef>

#include "simo/residual_surrogates.h"

namespace simo {
namespace {

constexpr std::size_t kMany = ResidualSurrogates::kTogether;

// Takes a straight line off each, fitted to what is known.
void takeLines(const std::vector<bool>& known, std::span<Abreast> series) {
  double n = 0, times = 0, squares = 0;
  Abreast values{}, products{};
  for (std::size_t t = 0; t < series.size(); ++t) {
    if (!known[t]) continue;
    n += 1;
    times += static_cast<double>(t);
    for (std::size_t i = 0; i < kMany; ++i) values[i] += series[t][i];
  }
  const double middle = times / n;
  for (std::size_t i = 0; i < kMany; ++i) values[i] /= n;
  for (std::size_t t = 0; t < series.size(); ++t) {
    if (!known[t]) continue;
    const double from = static_cast<double>(t) - middle;
    squares += from * from;
    for (std::size_t i = 0; i < kMany; ++i) products[i] += from * (series[t][i] - values[i]);
  }
  for (std::size_t t = 0; t < series.size(); ++t) {
    for (std::size_t i = 0; i < kMany; ++i) {
      const double slope = squares > 0 ? products[i] / squares : 0;
      series[t][i] -= values[i] + slope * (static_cast<double>(t) - middle);
    }
  }
}

}  // namespace

void ResidualSurrogates::simulateTogether(std::span<RandomStream, kTogether> random) {
  const auto order = model_.coefficients.size();
  const std::size_t warmUp = simulated_.size() - innovations_.size();
  Abreast signs;
  signs.fill(1);
  for (std::size_t t = 0; t < together_.size(); ++t) {
    const bool isOwn = t >= warmUp && known_[t - warmUp];
    const bool isNew = !isOwn || !follows_[t - warmUp];
    Abreast& value = together_[t];
    for (std::size_t i = 0; i < kTogether; ++i) {
      const double ownSign = signFrom(random[i].next());
      if (isNew) signs[i] = ownSign;
      value[i] = signs[i] * (isOwn ? innovations_[t - warmUp] : resampled(random[i]));
    }
    for (std::size_t k = 1; k <= order && k <= t; ++k)
      for (std::size_t i = 0; i < kTogether; ++i)
        value[i] += model_.coefficients[k - 1] * together_[t - k][i];
  }
}

void ResidualSurrogates::drawTogether(std::span<RandomStream, kTogether> random,
                                      std::span<float> surrogates) {
  together_.resize(simulated_.size());
  simulateTogether(random);
  const std::size_t length = innovations_.size();
  const std::span<Abreast> drawn = std::span(together_).last(length);
  takeLines(known_, drawn);
  waves_.scaleTo(amplitudes_, drawn);
  for (std::size_t i = 0; i < kTogether; ++i)
    for (std::size_t t = 0; t < length; ++t) surrogates[i * length + t] = static_cast<float>(drawn[t][i]);
}

}  // namespace simo
