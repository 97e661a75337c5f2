// Surrogates of a reference that keep what it shares with a voxel at the same moment, and nothing of
// who leads.
#ifndef TAVMAP_DIRECTION_ZERO_PHASE_SURROGATES_H
#define TAVMAP_DIRECTION_ZERO_PHASE_SURROGATES_H

#include <complex>
#include <span>
#include <vector>

#include "direction/fourier.h"
#include "simo/random_stream.h"

namespace direction {

// x = h * y + rest, with h the filter without phase that explains most of x by y at every frequency:
// the real part of their smoothed cross-spectrum over y's smoothed spectrum. A surrogate is h * y and
// the rest with random phases. Unequal noise, the usual cause of false directions (Nolte et al. 2008,
// Physical Review Letters 100, doi:10.1103/PhysRevLett.100.234101), is kept; a lag is not.
class ZeroPhaseSurrogates {
 public:
  // Of pairs of series of one length. Spectra are smoothed over about sqrt(length) frequencies by a
  // triangle.
  explicit ZeroPhaseSurrogates(int length);

  // The pair; both without mean, of the length.
  void begin(std::span<const double> x, std::span<const double> y);
  // One surrogate of x. Takes a number from the stream for every frequency.
  void draw(simo::RandomStream& random, std::span<double> surrogate);

 private:
  using Spectrum = std::vector<std::complex<double>>;
  void splitSpectrum();

  Fourier fourier_;
  int halfWidth_;
  Spectrum x_, y_;
  Spectrum shared_;           // of h * y
  std::vector<double> rest_;  // magnitudes
  Spectrum drawn_;
};

}  // namespace direction

#endif
