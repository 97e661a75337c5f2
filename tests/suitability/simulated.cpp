#include "tests/suitability/simulated.h"

#include <algorithm>
#include <cmath>

namespace simulated {
namespace {

using Courses = std::vector<Values>;

Run wholeRun(double trSeconds, Courses courses) {
  Run run{trSeconds, courses.back(), {}, {{0, static_cast<int>(courses.back().size())}}};
  courses.pop_back();
  run.voxels = std::move(courses);
  return run;
}

// Two gamma functions, the second an undershoot.
double response(double t) {
  const auto gamma = [t](double shape) {
    return std::exp((shape - 1) * std::log(t) - t - std::lgamma(shape));
  };
  return t <= 0 ? 0 : gamma(6) - gamma(16) / 6;
}

void standardise(Values& values) {
  double sum = 0, squares = 0;
  for (const double v : values) sum += v;
  for (const double v : values) squares += v * v;
  const auto n = static_cast<double>(values.size());
  const double mean = sum / n, sd = std::sqrt(squares / n - mean * mean);
  for (double& v : values) v = (v - mean) / sd;
}

}  // namespace

Values white(std::size_t n, std::mt19937& random) {
  return autoregressive(0, n, random);
}

Values autoregressive(double a, std::size_t n, std::mt19937& random) {
  std::normal_distribution<double> normal;
  double state = normal(random) / std::sqrt(1 - a * a);
  Values x(n);
  for (double& value : x) value = state = a * state + normal(random);
  return x;
}

Values haemodynamic(double trSeconds, double noise, std::size_t n, std::mt19937& random) {
  const auto lags = static_cast<std::size_t>(32 / trSeconds);
  Values responses(lags);
  for (std::size_t k = 0; k < lags; ++k) responses[k] = response(static_cast<double>(k) * trSeconds);
  const Values activity = white(n + lags, random), measured = white(n, random);
  Values x(n);
  for (std::size_t t = 0; t < n; ++t)
    for (std::size_t k = 0; k < lags; ++k) x[t] += responses[k] * activity[t + lags - k];
  standardise(x);
  for (std::size_t t = 0; t < n; ++t) x[t] += noise * measured[t];
  return x;
}

Run independent(double a, double trSeconds, std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  Courses courses(kVoxels + 1);
  for (Values& course : courses) course = autoregressive(a, n, random);
  return wholeRun(trSeconds, std::move(courses));
}

Run vascular(double trSeconds, double noise, std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  Courses courses(kVoxels + 1);
  for (Values& course : courses) course = haemodynamic(trSeconds, noise, n, random);
  return wholeRun(trSeconds, std::move(courses));
}

Run smoothField(double a, double trSeconds, std::size_t n, unsigned seed, double common) {
  std::mt19937 random(seed);
  const Values shared = autoregressive(a, n, random);
  Courses sources(kVoxels + 4), courses(kVoxels + 1, Values(n));
  for (Values& source : sources) source = autoregressive(a, n, random);
  constexpr double kKernel[] = {0.14, 0.61, 1, 0.61, 0.14};
  for (std::size_t v = 0; v < kVoxels; ++v)
    for (std::size_t t = 0; t < n; ++t) {
      courses[v][t] = common * shared[t];
      for (std::size_t k = 0; k < 5; ++k) courses[v][t] += kKernel[k] * sources[v + k][t];
    }
  for (std::size_t v = 0; v < 5; ++v)
    for (std::size_t t = 0; t < n; ++t) courses[kVoxels][t] += courses[v][t] / 5;
  return wholeRun(trSeconds, std::move(courses));
}

std::vector<std::string> warningsOf(const Run& run, int order) {
  const auto stored = [](const Values& values) {
    std::vector<float> floats;
    for (const double v : values) floats.push_back(static_cast<float>(1000 + 10 * v));
    return floats;
  };
  suitability::SuitabilityInput input;
  input.run = "rest";
  input.reference = "M1";
  input.trSeconds = run.trSeconds;
  input.order = order;
  input.intervals = run.intervals;
  const std::vector<float> reference = stored(run.reference);
  std::vector<std::vector<float>> voxels;
  for (const Values& voxel : run.voxels) voxels.push_back(stored(voxel));
  input.referenceSeries = reference;
  input.voxels.assign(voxels.begin(), voxels.end());
  return suitability::runWarnings(input);
}

bool anyContains(const std::vector<std::string>& warnings, const std::string& words) {
  return std::any_of(warnings.begin(), warnings.end(),
                     [&](const std::string& text) { return text.find(words) != std::string::npos; });
}

}  // namespace simulated
