// Random jobs through every kernel and through the reference path: any difference beyond rounding
// is a crash. The input's bytes are the seed.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/kernel/differential.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::uint32_t seed = 2166136261U;  // FNV-1a
  for (std::size_t i = 0; i < size; ++i) seed = (seed ^ data[i]) * 16777619U;
  for (const auto& kernel : tav::kernel::allKernels()) {
    if (!kernel.isSupported()) continue;
    const std::string difference = differential::check(kernel, seed);
    if (difference.empty()) continue;
    std::fprintf(stderr, "seed %u, %s: %s\n", seed, kernel.name, difference.c_str());
    std::abort();
  }
  return 0;
}
