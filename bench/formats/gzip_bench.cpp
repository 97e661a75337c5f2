// Writing a compressed map: the program's writer, and plain zlib at level 4 for comparison.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "bench/formats/samples.h"
#include "formats/byte_source.h"
#include "formats/gzip_writer.h"

namespace {

void writeHere(formats::AtomicFile& file, const void* data, std::size_t bytes) {
  formats::GzipWriter writer(file);
  writer.write(data, bytes);
  writer.finish();
}

void writeByZlib(formats::AtomicFile& file, const void* data, std::size_t bytes) {
  z_stream state{};
  if (deflateInit2(&state, 4, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK) return;
  std::vector<Bytef> output(deflateBound(&state, static_cast<uLong>(bytes)));
  state.next_in = static_cast<Bytef*>(const_cast<void*>(data));
  state.avail_in = static_cast<uInt>(bytes);
  state.next_out = output.data();
  state.avail_out = static_cast<uInt>(output.size());
  deflate(&state, Z_FINISH);
  file.write(output.data(), output.size() - state.avail_out);
  deflateEnd(&state);
}

template <typename Value>
void write(benchmark::State& state, void (*how)(formats::AtomicFile&, const void*, std::size_t),
           std::vector<Value> (*made)()) {
  const std::vector<Value> values = made();
  const std::string path = bench::scratchFile("map.gz");
  for (auto _ : state) {
    formats::AtomicFile file(path, formats::Durability::kCached);
    how(file, values.data(), values.size() * sizeof(Value));
    file.commit();
  }
  state.counters["KB"] = static_cast<double>(formats::kindOfFile(path).bytes) / 1e3;
  std::filesystem::remove(path);
}
BENCHMARK_CAPTURE(write, map, writeHere, bench::sampleMap)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write, map_by_zlib, writeByZlib, bench::sampleMap)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write, status, writeHere, bench::sampleStatus)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write, status_by_zlib, writeByZlib, bench::sampleStatus)->Unit(benchmark::kMillisecond);

}  // namespace
