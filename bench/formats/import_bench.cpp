// Import of a compressed run into a VTC, against bare decompression of the same file.
//
// The run is made up: 80 x 80 x 35 voxels, 156 volumes, int16, smooth in space, noisy in time, so
// that it compresses about as real ones do. TAVMAP_BENCH_IMAGE names another one.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "formats/byte_source.h"
#include "formats/nifti_writer.h"
#include "formats/vtc_import.h"

namespace {

namespace fs = std::filesystem;
using formats::GridSize;

fs::path scratchFolder() {
  const char* folder = std::getenv("TAVMAP_BENCH_FOLDER");
  fs::path path = folder != nullptr ? fs::path(folder) : fs::temp_directory_path() / "tavmap-bench";
  fs::create_directories(path);
  return path;
}

std::vector<float> baseImage(const GridSize& size) {
  std::vector<float> base;
  for (int z = 0; z < size.z; ++z) {
    for (int y = 0; y < size.y; ++y) {
      for (int x = 0; x < size.x; ++x) {
        const double r = std::hypot((x - 40) / 32.0, (y - 40) / 36.0, (z - 17) / 17.0);
        base.push_back(static_cast<float>(r < 1 ? 900 + 300 * std::cos(4 * r) : 15));
      }
    }
  }
  return base;
}

std::string makeRun() {
  const std::string path = (scratchFolder() / "run.nii.gz").string();
  if (fs::exists(path)) return path;
  formats::ImageHeader header;
  header.size = {80, 80, 35};
  header.volumes = 156;
  header.series = true;
  header.dataType = formats::DataType::kInt16;
  header.trMs = 2000;
  const std::vector<float> base = baseImage(header.size);
  formats::NiftiWriter writer(path, header);
  std::minstd_rand random(7);
  std::vector<float> volume(base.size());
  for (int t = 0; t < header.volumes; ++t) {
    for (std::size_t i = 0; i < base.size(); ++i) {
      const float noise = static_cast<float>(random() % 64 + random() % 64) / 64.0F - 1.0F;
      volume[i] = base[i] * (1.0F + 0.02F * noise) + 8 * noise + 8;
    }
    writer.writeValues(volume.data(), volume.size());
  }
  writer.commit();
  return path;
}

const std::string& runPath() {
  static const std::string path = std::getenv("TAVMAP_BENCH_IMAGE") != nullptr ? std::getenv("TAVMAP_BENCH_IMAGE") : makeRun();
  return path;
}

double bestDecompressSeconds = 0;

void noteBest(double& best, double seconds) {
  if (best == 0 || seconds < best) best = seconds;
}

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void bareDecompression(benchmark::State& state) {
  (void)runPath();  // made outside the measured loop
  std::vector<char> piece(std::size_t{1} << 20U);
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    const auto source = formats::openPlainOrGzip(runPath());
    std::size_t total = 0;
    while (const std::size_t got = source->read(piece.data(), piece.size())) total += got;
    benchmark::DoNotOptimize(total);
    noteBest(bestDecompressSeconds, secondsSince(start));
    state.counters["MB"] = static_cast<double>(total) / 1e6;
  }
}
BENCHMARK(bareDecompression)->Unit(benchmark::kMillisecond)->MinTime(2)->UseRealTime();

// `ratio` is the best import over the best bare decompression of the same process.
void import(benchmark::State& state, formats::VtcType type, std::size_t memoryBytes) {
  formats::ImportOptions options;
  options.type = type;
  options.durability = formats::Durability::kCached;
  options.memoryBytes = memoryBytes;
  const std::string vtc = (scratchFolder() / "run.vtc").string();
  double best = 0;
  for (auto _ : state) {
    state.PauseTiming();  // replacing a large file would count the freeing of the older one
    fs::remove(vtc);
    state.ResumeTiming();
    const auto start = std::chrono::steady_clock::now();
    formats::importVtc(runPath(), vtc, options);
    noteBest(best, secondsSince(start));
  }
  if (bestDecompressSeconds > 0) state.counters["ratio"] = best / bestDecompressSeconds;
}
BENCHMARK_CAPTURE(import, float32, formats::VtcType::kFloat32, std::size_t{160} << 20U)
    ->Unit(benchmark::kMillisecond)->MinTime(2)->UseRealTime();
BENCHMARK_CAPTURE(import, uint16, formats::VtcType::kUint16, std::size_t{160} << 20U)
    ->Unit(benchmark::kMillisecond)->MinTime(2)->UseRealTime();
BENCHMARK_CAPTURE(import, float32_through_a_file, formats::VtcType::kFloat32, std::size_t{32} << 20U)
    ->Unit(benchmark::kMillisecond)->MinTime(2)->UseRealTime();

}  // namespace
