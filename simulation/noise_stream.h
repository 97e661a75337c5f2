// Random numbers that are the same on every machine: the generator is specified bit by bit, and
// the transforms use nothing but comparisons and exactly rounded arithmetic, no function of the C
// mathematics library.
#ifndef TAVMAP_SIMULATION_NOISE_STREAM_H
#define TAVMAP_SIMULATION_NOISE_STREAM_H

#include <cstdint>
#include <random>

namespace simulation {

class NoiseStream {
 public:
  // Streams of one seed and different numbers are unrelated: one for the head, one for each run.
  NoiseStream(std::uint64_t seed, std::uint32_t participant, std::uint32_t number);

  // Uniform in [0, 1), a multiple of 2^-53.
  double uniform();

  // Uniform in [low, high).
  double between(double low, double high) { return low + (high - low) * uniform(); }

  // Standard normal. Karney 2016, Sampling exactly from the normal distribution, ACM Transactions
  // on Mathematical Software 42(1), algorithm N. Ten uniform numbers on average.
  double normal();

 private:
  bool bernoulliExpMinus(double z);
  int geometricWholePart();
  bool acceptWholePart(int k);
  bool acceptFraction(int k, double x);

  std::mt19937_64 engine_;
};

}  // namespace simulation

#endif
