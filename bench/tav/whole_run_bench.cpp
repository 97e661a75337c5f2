// One whole run, from Init to the saved maps, on a synthetic data set: autoregressive voxels with
// a base of 10,000, a fifth of them coupled to the reference, 16-bit, 1,000 surrogates.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <sstream>

#include "tav/tav.h"
#include "tests/fakes/vtc_file.h"
#include "tests/support/scratch.h"

namespace {

struct Workload {
  int x, y, z, volumes;
};
constexpr Workload kWorkload = {58, 40, 46, 300};

std::vector<float> makeData(const Workload& workload) {
  std::mt19937 generator(1);
  std::normal_distribution<float> normal;
  const auto volumes = static_cast<std::size_t>(workload.volumes);
  std::vector<float> reference(volumes);
  for (std::size_t t = 1; t < volumes; ++t) reference[t] = 0.5F * reference[t - 1] + normal(generator);
  const auto voxels = static_cast<std::size_t>(workload.x) * static_cast<std::size_t>(workload.y) *
                      static_cast<std::size_t>(workload.z);
  std::vector<float> data(voxels * volumes);
  for (std::size_t voxel = 0; voxel < voxels; ++voxel) {
    float* const course = data.data() + voxel * volumes;
    const float coupling = voxel % 5 == 0 ? 0.4F : 0.0F;
    float value = 0.0F;
    for (std::size_t t = 0; t < volumes; ++t) {
      value = 0.4F * value + normal(generator) + (t > 0 ? coupling * reference[t - 1] : 0.0F);
      course[t] = voxel == 0 ? 10000.0F + 100.0F * reference[t] : 10000.0F + 100.0F * value;
    }
  }
  return data;
}

// Written once for all benchmarks of the program.
const std::string& dataFile() {
  static const Scratch folder;
  static const std::string path = [] {
    const Workload& w = kWorkload;
    fakes::writeVtc(folder.file("run.vtc"), fakes::cellGrid(w.x, w.y, w.z, w.volumes), makeData(w));
    return folder.file("run.vtc");
  }();
  return path;
}

tav::TAV_Pars makeRequest(int order, std::vector<tav::TAV_intv> intervals) {
  static const std::int32_t voxel[] = {0, 0, 0};
  tav::TAV_Pars pars;
  pars.arOrder = order;
  pars.vtcXStart = pars.vtcYStart = pars.vtcZStart = 0;
  pars.vtcXEnd = kWorkload.x;
  pars.vtcYEnd = kWorkload.y;
  pars.vtcZEnd = kWorkload.z;
  pars.vtcResolution = 1;
  pars.vtcMaxNrOfVolumes = kWorkload.volumes;
  pars.resultPathPrefix = dataFile() + ".maps";
  pars.vois.push_back({"seed", 0, 1, voxel, 0});
  pars.conds.push_back({"all", {{dataFile(), dataFile(), std::move(intervals)}}});
  return pars;
}

void runAll(benchmark::State& state, const tav::TAV_Pars& pars, const tav::RunOptions& options) {
  for (auto _ : state) {
    std::ostringstream errors;
    tav::Computer computer(options);
    if (computer.computeTAVs(pars, errors) != tav::kSuccess) state.SkipWithError(errors.str().c_str());
  }
}

void BM_WholeRun(benchmark::State& state) {
  runAll(state, makeRequest(static_cast<int>(state.range(0)), {{1, kWorkload.volumes}}), {});
}
BENCHMARK(BM_WholeRun)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_WholeRunFourIntervals(benchmark::State& state) {
  const std::vector<tav::TAV_intv> intervals = {{1, 60}, {71, 130}, {141, 200}, {211, 270}};
  runAll(state, makeRequest(static_cast<int>(state.range(0)), intervals), {});
}
BENCHMARK(BM_WholeRunFourIntervals)->Arg(5)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
