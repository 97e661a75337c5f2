// Runs with known properties, for the checks to find or to leave alone.
#ifndef TAVMAP_TESTS_SUITABILITY_SIMULATED_H
#define TAVMAP_TESTS_SUITABILITY_SIMULATED_H

#include <random>
#include <string>
#include <vector>

#include "suitability/warnings.h"

namespace simulated {

using Values = std::vector<double>;

// Owns what an input refers to.
struct Run {
  double trSeconds = 2;
  Values reference;
  std::vector<Values> voxels;
  std::vector<suitability::Interval> intervals;

  std::size_t length() const { return reference.size(); }
  // Applies to every series: f(values, number), 0 for the reference.
  template <class F>
  void each(F f) {
    f(reference, std::size_t{0});
    for (std::size_t v = 0; v < voxels.size(); ++v) f(voxels[v], v + 1);
  }
};

Values autoregressive(double a, std::size_t n, std::mt19937& random);
Values white(std::size_t n, std::mt19937& random);
// White neural activity seen through a haemodynamic response, standard deviation 1, and measurement noise.
Values haemodynamic(double trSeconds, double noise, std::size_t n, std::mt19937& random);

inline constexpr std::size_t kVoxels = 30;
// A run of unrelated series, one interval.
Run independent(double a, double trSeconds, std::size_t n, unsigned seed);
Run vascular(double trSeconds, double noise, std::size_t n, unsigned seed);
// Voxels in a line, smoothed over their neighbours, with a common signal of the given size; the reference is
// the mean of five.
Run smoothField(double a, double trSeconds, std::size_t n, unsigned seed, double common = 1);

// The warnings of a run, all known facts being none.
std::vector<std::string> warningsOf(const Run& run, int order = 1);
bool anyContains(const std::vector<std::string>& warnings, const std::string& words);

}  // namespace simulated

#endif
