// Random numbers and surrogates: a run draws 1,000 simulated courses of some 400 time points.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "simo/smatrix.h"

namespace {

constexpr int kSurrogates = 1000;
constexpr int kSimulatedPoints = 400;

void DrawCLibrary(benchmark::State& state) {
  std::srand(1);
  for (auto _ : state) benchmark::DoNotOptimize(std::rand());
}
BENCHMARK(DrawCLibrary);

void DrawOwnState(benchmark::State& state) {
  simo::randomStream().seed(1);
  for (auto _ : state) benchmark::DoNotOptimize(simo::randomStream().next());
}
BENCHMARK(DrawOwnState);

void Seed(benchmark::State& state) {
  unsigned seed = 0;
  for (auto _ : state) simo::randomStream().seed(++seed);
}
BENCHMARK(Seed);

void NoiseOfAllSurrogates(benchmark::State& state) {
  simo::Matrix<float> x(1, kSimulatedPoints, 1, 1);
  for (auto _ : state)
    for (unsigned s = 0; s < kSurrogates; ++s) {
      simo::randn(x, 1, 2, 1, kSimulatedPoints + 1, s);
      benchmark::ClobberMemory();
    }
}
BENCHMARK(NoiseOfAllSurrogates)->Unit(benchmark::kMillisecond);

void SimulateAllSurrogates(benchmark::State& state) {
  simo::Matrix<float> x(1, kSimulatedPoints, 1, 1);
  const int order = static_cast<int>(state.range(0));
  const float weight = 0.9F / static_cast<float>(order);
  const simo::Vector<simo::Matrix<float>> a(order, 1, simo::Matrix<float>(1, 1, 1, 1, weight));
  const simo::Matrix<float> sigma(1, 1, 1, 1, 4.F);
  for (auto _ : state)
    for (unsigned s = 0; s < kSurrogates; ++s) benchmark::DoNotOptimize(simo::varsim(x, a, sigma, s));
}
BENCHMARK(SimulateAllSurrogates)->Arg(1)->Arg(5)->Arg(20)->Unit(benchmark::kMillisecond);

}  // namespace
