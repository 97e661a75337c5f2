#include "direction/zero_phase_surrogates.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace direction {

ZeroPhaseSurrogates::ZeroPhaseSurrogates(int length)
    : fourier_(length), halfWidth_(std::max(2, static_cast<int>(std::lround(std::sqrt(length) / 2)))) {}

void ZeroPhaseSurrogates::begin(std::span<const double> x, std::span<const double> y) {
  fourier_.forward(x, x_);
  fourier_.forward(y, y_);
  splitSpectrum();
}

// Spectra of real series go on beyond both ends as in a mirror.
void ZeroPhaseSurrogates::splitSpectrum() {
  const int last = static_cast<int>(x_.size()) - 1;
  const auto mirrored = [last](int k) {
    return static_cast<std::size_t>(k < 0 ? -k : k > last ? 2 * last - k : k);
  };
  const int half = std::min(halfWidth_, last);
  shared_.resize(x_.size());
  rest_.resize(x_.size());
  for (int k = 0; k <= last; ++k) {
    double cross = 0, own = 0;
    for (int j = -half; j <= half; ++j) {
      const std::size_t at = mirrored(k + j);
      const double weight = 1 - std::abs(j) / (half + 1.0);
      cross += weight * (x_[at] * std::conj(y_[at])).real();
      own += weight * std::norm(y_[at]);
    }
    const auto here = static_cast<std::size_t>(k);
    shared_[here] = own > 0 ? cross / own * y_[here] : 0;
    rest_[here] = std::abs(x_[here] - shared_[here]);
  }
}

// The mean stays 0, and the highest frequency of an even length is real.
void ZeroPhaseSurrogates::draw(simo::RandomStream& random, std::span<double> surrogate) {
  drawn_.resize(shared_.size());
  for (std::size_t k = 0; k < drawn_.size(); ++k) {
    const double phase = 2 * std::numbers::pi * random.next() / (simo::kRandomMax + 1.0);
    drawn_[k] = shared_[k] + std::polar(rest_[k], phase);
  }
  drawn_.front() = 0;
  if (fourier_.length() % 2 == 0) drawn_.back() = drawn_.back().real();
  fourier_.inverse(drawn_, surrogate);
}

}  // namespace direction
