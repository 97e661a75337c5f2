// The slowest waves of a series: how strong they are, and the same strength for another series.
#ifndef TAVMAP_SIMO_SLOW_WAVES_H
#define TAVMAP_SIMO_SLOW_WAVES_H

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace simo {

// A value of several series.
using Abreast = std::array<double, 8>;

// Sines and cosines of 1 ... count cycles over all values of a series.
class SlowWaves {
 public:
  SlowWaves() = default;  // none
  // known: one flag per value of the series; values that are not known play no part, whatever they are.
  SlowWaves(int count, const std::vector<bool>& known);

  [[nodiscard]] std::size_t count() const { return cosines_.size(); }
  // Of wave k + 1 at [k], in units of the series: of a cosine of height h it is h when all values are known.
  [[nodiscard]] std::vector<double> amplitudes(std::span<const double> series) const;
  // Gives each wave of the series the amplitude, `count` of them, and leaves its phase: adds waves to the
  // known values. A wave that the series has not at all stays away. Allocates nothing.
  void scaleTo(std::span<const double> amplitudes, std::span<double> series) const;
  // The same of several series at once, with the same results.
  void scaleTo(std::span<const double> amplitudes, std::span<Abreast> series) const;

 private:
  struct Wave {
    double cosine = 0, sine = 0;
    [[nodiscard]] double amplitude() const;
  };
  [[nodiscard]] Wave waveOf(std::size_t k, std::span<const double> series) const;
  struct WavesAbreast;
  [[nodiscard]] WavesAbreast changed(const WavesAbreast& by, std::size_t k, std::span<Abreast> series) const;

  std::vector<std::vector<double>> cosines_, sines_;  // per wave: at every value of the series
  std::vector<double> weights_;                       // 2 / known values where known, else 0
};

}  // namespace simo

#endif
