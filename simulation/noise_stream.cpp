#include "simulation/noise_stream.h"

namespace simulation {
namespace {

constexpr double kExpMinusHalf = 0.60653065971263342;

std::mt19937_64 engineFor(std::uint64_t seed, std::uint32_t participant, std::uint32_t number) {
  std::seed_seq words{static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32U), participant,
                      number};
  return std::mt19937_64(words);
}

}  // namespace

NoiseStream::NoiseStream(std::uint64_t seed, std::uint32_t participant, std::uint32_t number)
    : engine_(engineFor(seed, participant, number)) {}

double NoiseStream::uniform() {
  // std::uniform_real_distribution may differ between libraries.
  return static_cast<double>(engine_() >> 11U) * 0x1p-53;
}

// True with the probability exp(-z), 0 <= z <= 1: the length of a falling run of uniform numbers
// that starts below z is even (von Neumann 1951).
bool NoiseStream::bernoulliExpMinus(double z) {
  bool even = true;
  for (double last = z, next = uniform(); next < last; next = uniform()) {
    last = next;
    even = !even;
  }
  return even;
}

int NoiseStream::geometricWholePart() {
  int k = 0;
  while (uniform() < kExpMinusHalf) ++k;
  return k;
}

bool NoiseStream::acceptWholePart(int k) {
  for (int trial = 0; trial < k * (k - 1); ++trial)
    if (uniform() >= kExpMinusHalf) return false;
  return true;
}

bool NoiseStream::acceptFraction(int k, double x) {
  const double z = x * (2 * k + x) / (2 * k + 2);
  for (int trial = 0; trial <= k; ++trial)
    if (!bernoulliExpMinus(z)) return false;
  return true;
}

double NoiseStream::normal() {
  for (;;) {
    const int k = geometricWholePart();
    if (!acceptWholePart(k)) continue;
    const double x = uniform();
    if (!acceptFraction(k, x)) continue;
    return uniform() < 0.5 ? -(k + x) : k + x;
  }
}

}  // namespace simulation
