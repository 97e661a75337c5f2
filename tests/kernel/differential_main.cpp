// Compares every kernel that this CPU runs with the reference path on random jobs for a given
// time: kernel_differential SECONDS [FIRST_SEED]. Ends with status 1 and the seeds of up to twenty
// differences.
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "tests/kernel/differential.h"

namespace {

using Clock = std::chrono::steady_clock;

int checkSeed(std::uint32_t seed) {
  int failures = 0;
  for (const auto& kernel : tav::kernel::allKernels()) {
    if (!kernel.isSupported()) continue;
    const std::string difference = differential::check(kernel, seed);
    if (difference.empty()) continue;
    std::printf("seed %u, %s: %s\n", seed, kernel.name, difference.c_str());
    ++failures;
  }
  return failures;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: %s SECONDS [FIRST_SEED]\n", argv[0]);
    return 2;
  }
  const auto end = Clock::now() + std::chrono::seconds(std::atoi(argv[1]));
  auto seed = static_cast<std::uint32_t>(argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 1U);
  const std::uint32_t first = seed;
  int failures = 0;
  while (Clock::now() < end && failures < 20) failures += checkSeed(seed++);
  std::printf("%u jobs per kernel, %d differences\n", seed - first, failures);
  return failures == 0 ? 0 : 1;
}
