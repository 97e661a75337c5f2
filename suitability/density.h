// Where in frequency a series' variance lies.
#ifndef TAVMAP_SUITABILITY_DENSITY_H
#define TAVMAP_SUITABILITY_DENSITY_H

#include <complex>
#include <span>
#include <vector>

#include "direction/fourier.h"
#include "suitability/courses.h"

namespace suitability {

enum class Taper {
  kNone,  // shares of variance as they are
  kHann,  // what is strong at one frequency stays within two bins of it
};

// Periodograms of series of one length (Percival & Walden 1993, Spectral Analysis for Physical Applications).
// One thread at a time.
class Density {
 public:
  Density(int length, Taper taper);

  // Shares of the variance, at frequencies k / (length TR) for k = 0 ... length / 2; their sum is 1. All 0
  // for a series of zeros.
  [[nodiscard]] std::vector<double> of(std::span<const double> series);

 private:
  direction::Fourier fourier_;
  Series taper_, tapered_;
  std::vector<std::complex<double>> spectrum_;
};

}  // namespace suitability

#endif
