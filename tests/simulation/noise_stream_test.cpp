#include "simulation/noise_stream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using simulation::NoiseStream;

std::vector<double> normals(int count, std::uint64_t seed, std::uint32_t participant, std::uint32_t number) {
  NoiseStream random(seed, participant, number);
  std::vector<double> values;
  for (int i = 0; i < count; ++i) values.push_back(random.normal());
  return values;
}

double shareBelow(const std::vector<double>& values, double limit) {
  double count = 0;
  for (const double value : values) count += value < limit ? 1 : 0;
  return count / static_cast<double>(values.size());
}

TEST(NoiseStream, RepeatsItselfForTheSameSeed) {
  EXPECT_EQ(normals(50, 7, 1, 2), normals(50, 7, 1, 2));
}

TEST(NoiseStream, DiffersBySeedParticipantAndNumber) {
  const std::vector<double> one = normals(5, 7, 1, 2);
  EXPECT_NE(one, normals(5, 8, 1, 2));
  EXPECT_NE(one, normals(5, 7 + (std::uint64_t{1} << 32U), 1, 2));
  EXPECT_NE(one, normals(5, 7, 2, 2));
  EXPECT_NE(one, normals(5, 7, 1, 3));
}

// The generator and its seeding are specified by the language standard, so these hold everywhere.
TEST(NoiseStream, UniformNumbersAreTopBitsOfTheGenerator) {
  std::seed_seq words{5U, 0U, 1U, 2U};
  std::mt19937_64 engine(words);
  NoiseStream random(5, 1, 2);
  for (int i = 0; i < 20; ++i) {
    const double value = random.uniform();
    EXPECT_EQ(value, std::ldexp(static_cast<double>(engine() >> 11U), -53));
    EXPECT_GE(value, 0);
    EXPECT_LT(value, 1);
  }
}

// No mathematics library is involved, so any compiler and machine must give these to the last bit.
TEST(NoiseStream, NormalNumbersAreTheSameOnEveryMachine) {
  EXPECT_EQ(normals(4, 1, 0, 1), (std::vector<double>{0x1.71c4dc6dbd2dap+0, -0x1.43fd4212db2b2p-1,
                                                      -0x1.699c0742ed4ep-2, 0x1.4188157bcb6eap+0}));
}

TEST(NoiseStream, NormalNumbersHaveTheNormalDistribution) {
  const int count = 200000;
  const std::vector<double> values = normals(count, 1, 0, 0);
  for (const double limit : {-3.0, -2.0, -1.5, -1.0, -0.5, 0.0, 0.3, 0.99, 1.01, 2.5}) {
    const double expected = 0.5 * std::erfc(-limit / std::sqrt(2.0));
    const double standardError = std::sqrt(expected * (1 - expected) / count);
    EXPECT_NEAR(shareBelow(values, limit), expected, 4 * standardError) << limit;
  }
}

TEST(NoiseStream, NormalNumbersAreUncorrelatedWithTheirPast) {
  const std::vector<double> values = normals(100000, 2, 0, 0);
  double product = 0;
  for (std::size_t t = 1; t < values.size(); ++t) product += values[t] * values[t - 1];
  EXPECT_NEAR(product / 100000, 0, 4 / std::sqrt(100000.0));
}

}  // namespace
