#include "suitability/density.h"

#include <cmath>
#include <numbers>

namespace suitability {

Density::Density(int length, Taper taper)
    : fourier_(length), taper_(static_cast<std::size_t>(length), 1.0), tapered_(taper_.size()) {
  if (taper == Taper::kNone) return;
  for (std::size_t t = 0; t < taper_.size(); ++t)
    taper_[t] = 1 - std::cos(2 * std::numbers::pi * static_cast<double>(t) / length);
}

std::vector<double> Density::of(std::span<const double> series) {
  for (std::size_t t = 0; t < taper_.size(); ++t) tapered_[t] = taper_[t] * series[t];
  fourier_.forward(tapered_, spectrum_);
  std::vector<double> shares(spectrum_.size());
  double sum = 0;
  for (std::size_t k = 0; k < shares.size(); ++k) {
    const bool isItsOwnMirror = k == 0 || 2 * k == taper_.size();
    sum += shares[k] = std::norm(spectrum_[k]) * (isItsOwnMirror ? 1 : 2);
  }
  if (sum > 0)
    for (double& share : shares) share /= sum;
  return shares;
}

}  // namespace suitability
