#include "bench/kernel/limit.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

#include "bench/kernel/stopwatch.h"

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace bench {
namespace {

constexpr int kRepetitions = 7;

#ifdef __x86_64__
constexpr long kRounds = 1000000;

// Independent sums, enough of them to hide the latency of each.
[[gnu::target("avx2,fma")]] float run256() {
  __m256 sums[12];
  for (auto& sum : sums) sum = _mm256_setzero_ps();
  __m256 a = _mm256_set1_ps(1e-9F), b = _mm256_set1_ps(1.0F);
  for (long i = 0; i < kRounds; ++i) {
#pragma GCC unroll 12
    for (auto& sum : sums) sum = _mm256_fmadd_ps(a, b, sum);
    __asm__ volatile("" : "+x"(a), "+x"(b));
  }
  for (const auto& sum : sums) a = _mm256_add_ps(a, sum);
  return _mm256_cvtss_f32(a);
}

[[gnu::target("avx512f")]] float run512() {
  __m512 sums[24];
  for (auto& sum : sums) sum = _mm512_setzero_ps();
  __m512 a = _mm512_set1_ps(1e-9F), b = _mm512_set1_ps(1.0F);
  for (long i = 0; i < kRounds; ++i) {
#pragma GCC unroll 24
    for (auto& sum : sums) sum = _mm512_fmadd_ps(a, b, sum);
    __asm__ volatile("" : "+v"(a), "+v"(b));
  }
  for (const auto& sum : sums) a = _mm512_add_ps(a, sum);
  return _mm512_cvtss_f32(a);
}

double rateOf(float (*run)(), double perRun) {
  volatile float kept = 0.0F;
  const double seconds = bestSeconds(kRepetitions, [&] { kept = run(); });
  return perRun / seconds;
}
#endif

// Fits of one voxel: the factor of its own lags; per reference the factor's other half; the rows of
// the current values.
double fitMultiplyAdds(double p, double references) {
  const double own = p * p * p / 6.0 + p * p / 2.0;
  const double joint = p * p * p * (1.0 / 2.0 + 1.0 / 2.0 + 1.0 / 6.0) + p * p * (1.0 / 2.0 + 3.0);
  return own + references * joint;
}

}  // namespace

Peak measurePeak() {
  Peak peak;
#ifdef __x86_64__
  if (__builtin_cpu_supports("fma")) peak.with256 = rateOf(&run256, 12.0 * 8.0 * kRounds);
  if (__builtin_cpu_supports("avx512f")) peak.with512 = rateOf(&run512, 24.0 * 16.0 * kRounds);
#endif
  return peak;
}

double readSeconds(const std::string& file, const Workload& workload) {
  const std::size_t slice = static_cast<std::size_t>(workload.x) * static_cast<std::size_t>(workload.y) *
                            static_cast<std::size_t>(workload.volumes) * (workload.isFloat ? 4 : 2);
  const auto buffer = std::make_unique<char[]>(slice);
  return bestSeconds(kRepetitions, [&] {
    std::FILE* const stream = std::fopen(file.c_str(), "rb");
    for (int z = 0; z < workload.z; ++z) {
      if (std::fread(buffer.get(), 1, slice, stream) != slice) std::perror(file.c_str());
    }
    std::fclose(stream);
  });
}

double multiplyAdds(const Workload& workload, int draws) {
  const double p = workload.order, references = 1.0 + draws;
  const double perPoint = 4.0 + (p + 1.0) + references * (2.0 * p + 1.0);
  return workload.includedVoxels * (workload.timePoints() * perPoint + fitMultiplyAdds(p, references));
}

}  // namespace bench
