// The routines of the voxel loop, alone and together.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "simo/smatrix.h"

namespace {

constexpr int kVolumes = 300;

// Two noisy series with a drift, around the values that scanners give.
simo::Matrix<float> rawPair() {
  simo::Matrix<float> pair(2, kVolumes, 0, 0);
  simo::randn(pair, 0, 2, 0, kVolumes, 1);
  for (int r = 0; r < 2; ++r)
    for (int t = 0; t < kVolumes; ++t)
      pair[r][t] = 10000.F + 0.3F * static_cast<float>(t) + 100.F * pair[r][t];
  return pair;
}

simo::Matrix<float> detrendedPair() {
  const simo::Matrix<float> raw = rawPair();
  simo::Matrix<float> pair(2, kVolumes, 0, 0);
  simo::dtrendRowsToRes(raw, 0, 2, 0, kVolumes, pair, 0, 0);
  return pair;
}

// A record and work areas of one order, the averages filled.
struct Models {
  simo::FosAvg<float> avg;
  simo::FosOrth<float> full;
  simo::FosOrth<float> restrX;
  simo::FosOrth<float> restrY;

  explicit Models(int order) : avg(2, order), full(2, order), restrX(1, order), restrY(1, order) {
    simo::accum_actavgs(detrendedPair(), 0, 2, 0, kVolumes, avg);
  }
  bool measure() {
    float fx2y = 0;
    float fy2x = 0;
    float fxy = 0;
    const bool defined = simo::gewekeX2Y(avg, 0, 1, full, restrX, restrY, fx2y, fy2x, fxy);
    benchmark::DoNotOptimize(fx2y + fy2x + fxy);
    return defined;
  }
};

void Orders(benchmark::internal::Benchmark* benchmark) {
  for (const int order : {1, 2, 5, 20}) benchmark->Arg(order);
}

void DetrendRow(benchmark::State& state) {
  const simo::Matrix<float> raw = rawPair();
  simo::Matrix<float> residuals(1, kVolumes, 0, 0);
  for (auto _ : state) {
    simo::dtrendRowsToRes(raw, 0, 1, 0, kVolumes, residuals, 0, 0);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(DetrendRow);

void AccumulatePair(benchmark::State& state, simo::LagPairForm form) {
  const simo::Matrix<float> pair = detrendedPair();
  simo::FosAvg<float> avg(2, static_cast<int>(state.range(0)));
  for (auto _ : state) {
    avg.clear();
    simo::accum_actavgs(pair, 0, 2, 0, kVolumes, avg, form);
    benchmark::ClobberMemory();
  }
}
BENCHMARK_CAPTURE(AccumulatePair, written, simo::LagPairForm::kWritten)->Apply(Orders);
BENCHMARK_CAPTURE(AccumulatePair, consistent, simo::LagPairForm::kConsistent)->Apply(Orders);

void OrthogonalSearch(benchmark::State& state) {
  Models models(static_cast<int>(state.range(0)));
  simo::FosOrth<float>& m = models.full;
  for (auto _ : state)
    benchmark::DoNotOptimize(simo::mfosP(models.avg.lagAvgs, 0, 0, models.avg.lagPairAvgs, 0, 0, m.p, m.coefs,
                                         m.invFactors, m.alphas, m.work, m.factor));
}
BENCHMARK(OrthogonalSearch)->Apply(Orders);

void ErrorCovariance(benchmark::State& state) {
  Models models(static_cast<int>(state.range(0)));
  if (!models.measure()) state.SkipWithError("ill-defined pair");
  simo::FosOrth<float>& m = models.full;
  for (auto _ : state) {
    simo::varEP(models.avg.lagAvgs, 0, 0, m.coefs, m.p, m.errCov, m.explained);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(ErrorCovariance)->Apply(Orders);

void OrdinaryCoefficients(benchmark::State& state) {
  Models models(static_cast<int>(state.range(0)));
  if (!models.measure()) state.SkipWithError("ill-defined pair");
  const simo::FosOrth<float>& m = models.full;
  simo::Vector<simo::Matrix<float>> a(m.p, 1, simo::Matrix<float>(2, 2, 0, 0));
  for (auto _ : state) {
    simo::arCoefficients(m.coefs, m.invFactors, m.alphas, m.p, a);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(OrdinaryCoefficients)->Apply(Orders);

void Cholesky(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  simo::Matrix<float> a(n, n, 0, 0, 0.5F);
  for (int i = 0; i < n; ++i) a[i][i] = 2.F;
  simo::LTMatrix<float> l(n, 0, 0, 0.F);
  for (auto _ : state) benchmark::DoNotOptimize(simo::cholDcmpP(a, 0, n, l));
}
BENCHMARK(Cholesky)->Arg(1)->Arg(2)->Arg(40);

void Determinant(benchmark::State& state) {
  simo::Matrix<float> a(2, 2, 0, 0, 0.5F);
  a[0][0] = a[1][1] = 2.F;
  simo::LTMatrix<float> l(2, 0, 0, 0.F);
  float det = 0;
  for (auto _ : state) benchmark::DoNotOptimize(simo::detPosDef(a, l, det));
}
BENCHMARK(Determinant);

void GewekeMeasures(benchmark::State& state) {
  Models models(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(models.measure());
}
BENCHMARK(GewekeMeasures)->Apply(Orders);

// One voxel as the engine computes it: its own course detrended once, true and surrogate reference
// (detrended before) accumulated and measured.
void WholeVoxel(benchmark::State& state) {
  Models models(static_cast<int>(state.range(0)));
  const simo::Matrix<float> raw = rawPair();
  const simo::Matrix<float> reference = detrendedPair();
  simo::Matrix<float> segment(2, kVolumes, 0, 0);
  for (auto _ : state) {
    simo::dtrendRowsToRes(raw, 1, 2, 0, kVolumes, segment, 1, 0);
    for (int pass = 0; pass < 2; ++pass) {
      models.avg.clear();
      std::copy_n(reference[pass], kVolumes, segment[0]);
      simo::accum_actavgs(segment, 0, 2, 0, kVolumes, models.avg);
      benchmark::DoNotOptimize(models.measure());
    }
  }
}
BENCHMARK(WholeVoxel)->Apply(Orders)->Unit(benchmark::kMicrosecond);

}  // namespace
