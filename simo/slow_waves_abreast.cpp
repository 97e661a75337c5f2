#include <cmath>

#include "simo/slow_waves.h"

namespace simo {
namespace {

constexpr std::size_t kSeries = std::tuple_size_v<Abreast>;
constexpr std::size_t kSums = 4;

}  // namespace

// A wave of several series, and what is to be added of it.
struct SlowWaves::WavesAbreast {
  std::size_t k = 0;
  Abreast cosine{}, sine{}, more{};
  // Four sums at a time, in the order of waveOf(), so that the totals are the same.
  void take(const Abreast (&cosines)[kSums], const Abreast (&sines)[kSums]) {
    for (std::size_t i = 0; i < kSeries; ++i) {
      cosine[i] = cosines[0][i] + cosines[1][i] + cosines[2][i] + cosines[3][i];
      sine[i] = sines[0][i] + sines[1][i] + sines[2][i] + sines[3][i];
    }
  }
  void addTo(double c, double s, Abreast& values) const {
    for (std::size_t i = 0; i < kSeries; ++i) values[i] += more[i] * (cosine[i] * c + sine[i] * s);
  }
};

// Adds one wave and, in the same pass, since the series do not stay in the nearest cache, finds the next.
SlowWaves::WavesAbreast SlowWaves::changed(const WavesAbreast& by, std::size_t k,
                                           std::span<Abreast> series) const {
  const WavesAbreast added = by;  // nothing else can change it
  const double *addedCosine = cosines_[by.k].data(), *addedSine = sines_[by.k].data();
  const double *cosine = cosines_[k].data(), *sine = sines_[k].data();
  Abreast c[kSums] = {}, s[kSums] = {};
  for (std::size_t t = 0; t < series.size(); ++t) {
    const double weight = weights_[t];
    if (!(weight > 0)) continue;
    Abreast values = series[t];
    added.addTo(addedCosine[t], addedSine[t], values);
    series[t] = values;
    Abreast &ofCosine = c[t % kSums], &ofSine = s[t % kSums];
    for (std::size_t i = 0; i < kSeries; ++i) {
      const double value = weight * values[i];
      ofCosine[i] += value * cosine[t];
      ofSine[i] += value * sine[t];
    }
  }
  WavesAbreast next{k, {}, {}, {}};
  next.take(c, s);
  return next;
}

void SlowWaves::scaleTo(std::span<const double> amplitudes, std::span<Abreast> series) const {
  WavesAbreast last;
  for (std::size_t k = 0; k < count(); ++k) {
    last = changed(last, k, series);
    for (std::size_t i = 0; i < kSeries; ++i) {
      const double amplitude = Wave{last.cosine[i], last.sine[i]}.amplitude();
      last.more[i] = amplitude > 0 ? amplitudes[k] / amplitude - 1 : 0;
    }
  }
  for (std::size_t t = 0; count() > 0 && t < series.size(); ++t)
    if (weights_[t] > 0) last.addTo(cosines_[last.k][t], sines_[last.k][t], series[t]);
}

}  // namespace simo
