#include "simo/slow_waves.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace simo {

SlowWaves::SlowWaves(int count, const std::vector<bool>& known) {
  const double n = static_cast<double>(known.size());
  const auto used = static_cast<double>(std::count(known.begin(), known.end(), true));
  for (const bool flag : known) weights_.push_back(flag ? 2 / used : 0);
  for (int k = 1; k <= count; ++k) {
    auto& cosine = cosines_.emplace_back();
    auto& sine = sines_.emplace_back();
    for (std::size_t t = 0; t < known.size(); ++t) {
      const double angle = 2 * std::numbers::pi * k * static_cast<double>(t) / n;
      cosine.push_back(std::cos(angle));
      sine.push_back(std::sin(angle));
    }
  }
}

double SlowWaves::Wave::amplitude() const {
  return std::hypot(cosine, sine);
}

// Four sums at a time, since one waits for itself.
SlowWaves::Wave SlowWaves::waveOf(std::size_t k, std::span<const double> series) const {
  constexpr std::size_t kSums = 4;
  const double *cosine = cosines_[k].data(), *sine = sines_[k].data();
  double c[kSums] = {}, s[kSums] = {};
  for (std::size_t t = 0; t < series.size(); ++t) {
    const double value = weights_[t] > 0 ? weights_[t] * series[t] : 0;
    c[t % kSums] += value * cosine[t];
    s[t % kSums] += value * sine[t];
  }
  return {c[0] + c[1] + c[2] + c[3], s[0] + s[1] + s[2] + s[3]};
}

std::vector<double> SlowWaves::amplitudes(std::span<const double> series) const {
  std::vector<double> amplitudes;
  for (std::size_t k = 0; k < count(); ++k) amplitudes.push_back(waveOf(k, series).amplitude());
  return amplitudes;
}

void SlowWaves::scaleTo(std::span<const double> amplitudes, std::span<double> series) const {
  for (std::size_t k = 0; k < count(); ++k) {
    const Wave wave = waveOf(k, series);
    if (!(wave.amplitude() > 0)) continue;
    const double more = amplitudes[k] / wave.amplitude() - 1;
    for (std::size_t t = 0; t < series.size(); ++t)
      if (weights_[t] > 0) series[t] += more * (wave.cosine * cosines_[k][t] + wave.sine * sines_[k][t]);
  }
}

}  // namespace simo
