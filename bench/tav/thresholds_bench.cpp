// The threshold search on chi-square-like magnitudes.
#include <benchmark/benchmark.h>

#include <random>

#include "tav/fdr_thresholds.h"

namespace {

std::vector<float> magnitudes(std::size_t size, double driven, unsigned seed) {
  std::mt19937 generator(seed);
  std::normal_distribution<float> normal;
  std::uniform_real_distribution<double> uniform;
  std::vector<float> values(size);
  for (float& value : values) {
    const float z = normal(generator) + (uniform(generator) < driven ? 4.0F : 0.0F);
    value = z * z;
  }
  return values;
}

void BM_Thresholds(benchmark::State& state) {
  const auto rule = state.range(1) == 0 ? tav::ThresholdRule::kWalk : tav::ThresholdRule::kStepUp;
  const auto observed = magnitudes(static_cast<std::size_t>(state.range(0)), 0.05, 1);
  const auto null = magnitudes(static_cast<std::size_t>(state.range(0)), 0.0, 2);
  for (auto _ : state) {
    auto a = observed;
    auto b = null;
    benchmark::DoNotOptimize(tav::searchThresholds(rule, {0.01F, 0.05F, 0.1F}, a, b, 2));
  }
}
BENCHMARK(BM_Thresholds)
    ->Args({106720, 0})
    ->Args({106720, 1})
    ->Args({231691, 0})
    ->Unit(benchmark::kMillisecond);

}  // namespace
