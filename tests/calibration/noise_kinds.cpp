#include "tests/calibration/noise_kinds.h"

#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <utility>

#include "direction/fourier.h"

namespace calibration {
namespace {

constexpr std::size_t kWarmUp = 200;
constexpr double kHeavyDegrees = 3;

// Noise of a given amplitude spectrum: a stretch of a periodic course of twice the length, so that its ends
// do not meet. Amplitudes by frequency in cycles per volume, 0 ... 1/2.
class SpectralNoise {
 public:
  SpectralNoise(std::size_t volumes, const std::function<double(double)>& amplitude)
      : fourier_(static_cast<int>(2 * volumes)), spectrum_(volumes + 1), series_(2 * volumes) {
    for (std::size_t k = 0; k <= volumes; ++k)
      amplitudes_.push_back(k == 0 ? 0
                                   : amplitude(0.5 * static_cast<double>(k) / static_cast<double>(volumes)));
  }

  void drawSpectrum(Generator& generator) {
    std::normal_distribution<double> normal;
    for (std::size_t k = 0; k < amplitudes_.size(); ++k)
      spectrum_[k] = amplitudes_[k] * std::complex<double>(normal(generator), normal(generator));
  }

  // The course of that spectrum, so many volumes late.
  Course course(double delay = 0) {
    auto delayed = spectrum_;
    for (std::size_t k = 0; k < delayed.size(); ++k)
      delayed[k] *= std::polar(1.0, -std::numbers::pi * delay * static_cast<double>(k) / volumes());
    fourier_.inverse(delayed, series_);
    return {series_.begin(), series_.begin() + static_cast<std::ptrdiff_t>(series_.size() / 2)};
  }

 private:
  [[nodiscard]] double volumes() const { return static_cast<double>(series_.size()) / 2; }

  direction::Fourier fourier_;
  std::vector<double> amplitudes_;
  std::vector<std::complex<double>> spectrum_;
  Course series_;
};

// A kind whose amplitudes are computed once, for the first length that is asked for.
CourseKind spectral(std::function<double(double)> amplitude) {
  auto noise = std::make_shared<std::pair<std::size_t, std::unique_ptr<SpectralNoise>>>();
  return [amplitude = std::move(amplitude), noise](std::size_t volumes, Generator& generator) {
    if (noise->first != volumes) *noise = {volumes, std::make_unique<SpectralNoise>(volumes, amplitude)};
    noise->second->drawSpectrum(generator);
    Course course = noise->second->course();
    standardise(course);
    return course;
  };
}

double gammaDensity(double t, double shape) {
  return t <= 0 ? 0 : std::exp((shape - 1) * std::log(t) - t - std::lgamma(shape));
}

// |H(f)| of the response, f in Hz.
double haemodynamicAmplitude(double hz) {
  constexpr double kStep = 0.05, kEnd = 32;
  std::complex<double> sum = 0;
  for (double t = kStep; t < kEnd; t += kStep) {
    const double response = gammaDensity(t, 6) - gammaDensity(t, 16) / 6;
    sum += response * std::polar(kStep, -2 * std::numbers::pi * hz * t);
  }
  return std::abs(sum);
}

double drawInnovation(Innovations innovations, Generator& generator) {
  std::normal_distribution<double> normal;
  const double value = normal(generator);
  if (innovations == Innovations::kGaussian) return value;
  std::chi_squared_distribution<double> chiSquared(kHeavyDegrees);
  return value / std::sqrt(chiSquared(generator) / kHeavyDegrees);
}

}  // namespace

void standardise(Course& course) {
  const auto n = static_cast<double>(course.size());
  double mean = 0, squares = 0;
  for (const double value : course) mean += value / n;
  for (const double value : course) squares += (value - mean) * (value - mean) / n;
  for (double& value : course) value = (value - mean) / std::sqrt(squares);
}

void addNoise(double standardDeviation, Course& course, Generator& generator) {
  if (standardDeviation == 0) return;
  std::normal_distribution<double> normal(0, standardDeviation);
  for (double& value : course) value += normal(generator);
}

CourseKind autoregressive(std::vector<double> coefficients, Innovations innovations) {
  return [coefficients = std::move(coefficients), innovations](std::size_t volumes, Generator& generator) {
    Course course(kWarmUp + volumes, 0.0);
    for (std::size_t t = coefficients.size(); t < course.size(); ++t) {
      course[t] = drawInnovation(innovations, generator);
      for (std::size_t k = 0; k < coefficients.size(); ++k) course[t] += coefficients[k] * course[t - k - 1];
    }
    return Course(course.begin() + kWarmUp, course.end());
  };
}

CourseKind oscillating(double period, double radius) {
  return autoregressive({2 * radius * std::cos(2 * std::numbers::pi / period), -radius * radius});
}

CourseKind powerLaw(double exponent) {
  return spectral([exponent](double f) { return std::pow(f, -exponent / 2); });
}

CourseKind bandPassed(double lowHz, double highHz, double trSeconds) {
  return spectral([=](double f) {
    const double hz = f / trSeconds;
    return 1 / (1 + std::pow(hz / highHz, 4)) / (1 + std::pow(lowHz / hz, 4));
  });
}

CourseKind haemodynamic(double trSeconds, double scannerNoise) {
  const CourseKind signal = spectral([=](double f) { return haemodynamicAmplitude(f / trSeconds); });
  return [=](std::size_t volumes, Generator& generator) {
    Course course = signal(volumes, generator);
    addNoise(scannerNoise, course, generator);
    return course;
  };
}

std::function<DelayedSignal(Generator&)> delayedSignals(std::size_t volumes, double trSeconds,
                                                        double delaySeconds) {
  const auto noise = std::make_shared<SpectralNoise>(
      volumes, [=](double f) { return haemodynamicAmplitude(f / trSeconds); });
  return [=](Generator& generator) {
    noise->drawSpectrum(generator);
    DelayedSignal signal{noise->course(), noise->course(delaySeconds / trSeconds)};
    standardise(signal.first);
    standardise(signal.second);
    return signal;
  };
}

}  // namespace calibration
