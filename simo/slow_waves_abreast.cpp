#include <cmath>

#include "simo/slow_waves.h"

namespace simo {
namespace {

constexpr std::size_t kSeries = std::tuple_size_v<Abreast>;
constexpr std::size_t kSums = 4;

// Adds in the order of waveOf(), so that the sums are the same.
struct FourSums {
  Abreast sums[kSums] = {};
  [[nodiscard]] double total(std::size_t s) const {
    return sums[0][s] + sums[1][s] + sums[2][s] + sums[3][s];
  }
};

}  // namespace

std::array<SlowWaves::Wave, kSeries> SlowWaves::wavesOf(std::size_t k,
                                                        std::span<const Abreast> series) const {
  const double *cosine = cosines_[k].data(), *sine = sines_[k].data();
  FourSums c, s;
  for (std::size_t t = 0; t < series.size(); ++t) {
    if (!(weights_[t] > 0)) continue;  // would add 0
    Abreast &ofCosine = c.sums[t % kSums], &ofSine = s.sums[t % kSums];
    for (std::size_t i = 0; i < kSeries; ++i) {
      const double value = weights_[t] * series[t][i];
      ofCosine[i] += value * cosine[t];
      ofSine[i] += value * sine[t];
    }
  }
  std::array<Wave, kSeries> waves;
  for (std::size_t i = 0; i < kSeries; ++i) waves[i] = {c.total(i), s.total(i)};
  return waves;
}

void SlowWaves::scaleTo(std::span<const double> amplitudes, std::span<Abreast> series) const {
  for (std::size_t k = 0; k < count(); ++k) {
    const std::array<Wave, kSeries> waves = wavesOf(k, series);
    Abreast cosine{}, sine{}, more{};
    for (std::size_t i = 0; i < kSeries; ++i) {
      cosine[i] = waves[i].cosine;
      sine[i] = waves[i].sine;
      const double amplitude = waves[i].amplitude();
      more[i] = amplitude > 0 ? amplitudes[k] / amplitude - 1 : 0;
    }
    for (std::size_t t = 0; t < series.size(); ++t) {
      if (!(weights_[t] > 0)) continue;
      for (std::size_t i = 0; i < kSeries; ++i)
        series[t][i] += more[i] * (cosine[i] * cosines_[k][t] + sine[i] * sines_[k][t]);
    }
  }
}

}  // namespace simo
