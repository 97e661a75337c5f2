// Autoregressive series of order 1 for tests.
#ifndef TAVMAP_TESTS_SUPPORT_AUTOREGRESSIVE_H
#define TAVMAP_TESTS_SUPPORT_AUTOREGRESSIVE_H

#include <cstddef>
#include <random>
#include <vector>

// x(t) = coefficient x(t-1) + noise(), called once per point; the point before the first is `start`.
template <typename Noise>
[[nodiscard]] std::vector<double> autoregressive(std::size_t count, double coefficient, Noise&& noise,
                                                 double start = 0.0) {
  std::vector<double> series(count);
  double last = start;
  for (double& value : series) value = last = coefficient * last + noise();
  return series;
}

// Standard normal numbers from a generator, which must outlive it.
template <typename Generator>
[[nodiscard]] auto normalFrom(Generator& generator) {
  return [&generator, normal = std::normal_distribution<double>()]() mutable { return normal(generator); };
}

#endif
