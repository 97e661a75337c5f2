// What containers cost: none of this happens in an inner loop but assign and element access.
#include <benchmark/benchmark.h>

#include "simo/smatrix.h"

namespace {

void MatrixConstructAndDestroy(benchmark::State& state) {
  for (auto _ : state) {
    simo::Matrix<float> m(2, static_cast<int>(state.range(0)), 0, 1, 0.F);
    benchmark::DoNotOptimize(m.elements());
  }
}
BENCHMARK(MatrixConstructAndDestroy)->Arg(2)->Arg(300);

void MatrixAssign(benchmark::State& state) {
  const int size = static_cast<int>(state.range(0));
  const simo::Matrix<float> source(size + 1, size + 1, 0, 0, 1.F);
  simo::Matrix<float> target(size, size, 0, 0);
  for (auto _ : state) benchmark::DoNotOptimize(target.assign(source, 1, 1).elements());
}
BENCHMARK(MatrixAssign)->Arg(1)->Arg(2)->Arg(50);

void LowerTriangleOfMatricesConstruct(benchmark::State& state) {
  const simo::Matrix<float> element(2, 2, 0, 0, 0.F);
  for (auto _ : state) {
    simo::LTMatrix<simo::Matrix<float>> triangle(static_cast<int>(state.range(0)), 1, 1, element);
    benchmark::DoNotOptimize(triangle.store.elements());
  }
}
BENCHMARK(LowerTriangleOfMatricesConstruct)->Arg(1)->Arg(20);

void Array3DWalk(benchmark::State& state) {
  Array3D<float> a(46, 40, 58);
  for (auto _ : state) {
    for (std::size_t i = 0; i < a.size(); ++i) a.elements()[i] = 1.F;
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(a.size()));
}
BENCHMARK(Array3DWalk);

}  // namespace
