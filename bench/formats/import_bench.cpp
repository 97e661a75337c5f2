// Import of a compressed run into a VTC, against bare decompression of the same file.
//
// Every case takes turns with the decompression, so that both meet the same machine. `cpu_ratio` and
// `wall_ratio` are the best import over the best decompression: both are to stay below 2, and the
// first one is the steadier. TAVMAP_BENCH_IMAGE names a run to import in place of the one that stands
// for a scanner's, TAVMAP_BENCH_MASK a mask of its grid.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/formats/samples.h"
#include "bench/formats/timing.h"
#include "formats/byte_source.h"
#include "formats/vtc_import.h"

namespace {

using bench::Run;
using bench::Seconds;
using formats::VtcType;

constexpr std::size_t kInMemory = std::size_t{160} << 20U;
constexpr std::size_t kThroughFile = std::size_t{16} << 20U;  // below every case, masked ones too

std::string namedOr(const char* variable, std::string (*made)()) {
  const char* named = std::getenv(variable);
  return named != nullptr ? named : made();
}

std::string fileOf(Run run) {
  if (run != Run::kScanner) return bench::sampleRun(run);
  return namedOr("TAVMAP_BENCH_IMAGE", [] { return bench::sampleRun(Run::kScanner); });
}

std::string maskOf(Run run) {
  return run == Run::kScanner ? namedOr("TAVMAP_BENCH_MASK", bench::sampleMask) : bench::sampleMask();
}

std::size_t decompress(const std::string& path) {
  static std::vector<char> piece(std::size_t{1} << 20U);
  const auto source = formats::openPlainOrGzip(path);
  std::size_t total = 0;
  while (const std::size_t got = source->read(piece.data(), piece.size())) total += got;
  return total;
}

void import(benchmark::State& state, Run run, VtcType type, std::size_t memoryBytes, bool masked) {
  const std::string image = fileOf(run), vtc = bench::scratchFile("run.vtc");
  formats::ImportOptions options;
  options.type = type;
  options.memoryBytes = memoryBytes;
  options.durability = formats::Durability::kCached;
  if (masked) options.maskPath = maskOf(run);
  Seconds bestBare, best;
  std::size_t bytes = 0;
  for (auto _ : state) {
    bench::timed([&] { bytes = decompress(image); }, bestBare);
    std::filesystem::remove(vtc);  // replacing a large file would count the freeing of the older one
    state.SetIterationTime(bench::timed([&] { formats::importVtc(image, vtc, options); }, best).wall);
  }
  for (const char* ending : {"", ".json"}) std::filesystem::remove(vtc + ending);
  state.counters["MB"] = static_cast<double>(bytes) / 1e6;
  state.counters["cpu_ratio"] = best.cpu / bestBare.cpu;
  state.counters["wall_ratio"] = best.wall / bestBare.wall;
}

void add(Run run, VtcType type, std::size_t memoryBytes, bool masked) {
  const std::string name =
      std::string("import/") + nameOf(run) + (type == VtcType::kFloat32 ? "/to_float32" : "/to_uint16") +
      (masked ? "/masked" : "/whole") + (memoryBytes == kInMemory ? "/in_memory" : "/through_file");
  benchmark::RegisterBenchmark(name.c_str(), import, run, type, memoryBytes, masked)
      ->Unit(benchmark::kMillisecond)
      ->MinTime(1.5)
      ->UseManualTime();
}

const bool added = [] {
  for (const Run run : {Run::kScanner, Run::kPreprocessed, Run::kStripped}) {
    for (const VtcType type : {VtcType::kFloat32, VtcType::kUint16}) {
      for (const bool masked : {false, true}) {
        add(run, type, kInMemory, masked);
        add(run, type, kThroughFile, masked);
      }
    }
  }
  return true;
}();

}  // namespace
