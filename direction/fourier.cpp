#include "direction/fourier.h"

#include <fftw3.h>

#include <algorithm>
#include <mutex>

namespace direction {
namespace {

// FFTW's planner has one state for all threads.
std::mutex& plannerMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

struct Fourier::Plans {
  double* series;
  fftw_complex* spectrum;
  fftw_plan forward, inverse;
};

Fourier::Fourier(int length) : length_(length), plans_(std::make_unique<Plans>()) {
  const std::lock_guard lock(plannerMutex());
  plans_->series = fftw_alloc_real(static_cast<std::size_t>(length));
  plans_->spectrum = fftw_alloc_complex(nrOfFrequencies());
  // Estimated plans do not depend on the machine's speed of the day, so that results repeat.
  plans_->forward = fftw_plan_dft_r2c_1d(length, plans_->series, plans_->spectrum, FFTW_ESTIMATE);
  plans_->inverse = fftw_plan_dft_c2r_1d(length, plans_->spectrum, plans_->series, FFTW_ESTIMATE);
}

Fourier::~Fourier() {
  const std::lock_guard lock(plannerMutex());
  fftw_destroy_plan(plans_->forward);
  fftw_destroy_plan(plans_->inverse);
  fftw_free(plans_->series);
  fftw_free(plans_->spectrum);
}

void Fourier::forward(std::span<const double> series, std::vector<std::complex<double>>& spectrum) {
  std::copy(series.begin(), series.end(), plans_->series);
  fftw_execute(plans_->forward);
  spectrum.resize(nrOfFrequencies());
  for (std::size_t k = 0; k < spectrum.size(); ++k)
    spectrum[k] = {plans_->spectrum[k][0], plans_->spectrum[k][1]};
}

void Fourier::inverse(std::span<const std::complex<double>> spectrum, std::span<double> series) {
  for (std::size_t k = 0; k < spectrum.size(); ++k) {
    plans_->spectrum[k][0] = spectrum[k].real();
    plans_->spectrum[k][1] = spectrum[k].imag();
  }
  fftw_execute(plans_->inverse);
  for (std::size_t t = 0; t < series.size(); ++t) series[t] = plans_->series[t] / length_;
}

}  // namespace direction
