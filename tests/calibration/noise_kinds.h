// Kinds of time courses that tests draw: stationary noise of many spectra.
#ifndef TAVMAP_TESTS_CALIBRATION_NOISE_KINDS_H
#define TAVMAP_TESTS_CALIBRATION_NOISE_KINDS_H

#include <cstddef>
#include <functional>
#include <random>
#include <vector>

namespace calibration {

using Course = std::vector<double>;
using Generator = std::mt19937_64;
// Draws a course of so many volumes, with a standard deviation of about 1 unless said otherwise.
using CourseKind = std::function<Course(std::size_t volumes, Generator& generator)>;

enum class Innovations { kGaussian, kHeavyTailed };  // t with 3 degrees of freedom

// x(t) = sum a_k x(t - k) + e(t). Not scaled: e has the standard deviation 1, heavy tails one of 3^(1/2).
[[nodiscard]] CourseKind autoregressive(std::vector<double> coefficients,
                                        Innovations innovations = Innovations::kGaussian);
// Of order 2, about a cycle in `period` volumes.
[[nodiscard]] CourseKind oscillating(double period, double radius);
// Spectral density 1 / f^exponent.
[[nodiscard]] CourseKind powerLaw(double exponent);
// Gaussian noise through a Butterworth filter of second order, forwards and backwards.
[[nodiscard]] CourseKind bandPassed(double lowHz, double highHz, double trSeconds);
// White noise through a haemodynamic response (two gamma densities, peak after 5 s, undershoot after 15 s),
// and white noise of the scanner: its standard deviation against the filtered one's.
[[nodiscard]] CourseKind haemodynamic(double trSeconds, double scannerNoise);

// The same haemodynamic signal twice, the second later.
struct DelayedSignal {
  Course first, second;
};
[[nodiscard]] std::function<DelayedSignal(Generator&)> delayedSignals(std::size_t volumes, double trSeconds,
                                                                      double delaySeconds);

// Takes off the mean and divides by the standard deviation.
void standardise(Course& course);
void addNoise(double standardDeviation, Course& course, Generator& generator);

}  // namespace calibration

#endif
