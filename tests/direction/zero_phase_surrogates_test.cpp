#include "direction/zero_phase_surrogates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <vector>

namespace {

using Series = std::vector<double>;
using Spectrum = std::vector<std::complex<double>>;

Series noise(std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  Series x(n);
  double mean = 0;
  for (double& value : x) mean += (value = normal(random)) / static_cast<double>(n);
  for (double& value : x) value -= mean;
  return x;
}

double product(const Series& a, const Series& b, std::size_t lag) {
  double sum = 0;
  for (std::size_t t = 0; t < a.size(); ++t) sum += a[t] * b[(t + lag) % b.size()];
  return sum;
}

class FourierLength : public ::testing::TestWithParam<int> {};

TEST_P(FourierLength, IsTheDiscreteTransformAndItsInverse) {
  const auto n = static_cast<std::size_t>(GetParam());
  const Series x = noise(n, 1);
  direction::Fourier fourier(GetParam());
  std::vector<std::complex<double>> spectrum;
  fourier.forward(x, spectrum);
  ASSERT_EQ(spectrum.size(), n / 2 + 1);
  for (std::size_t k = 0; k < spectrum.size(); ++k) {
    std::complex<double> sum = 0;
    for (std::size_t t = 0; t < n; ++t)
      sum +=
          x[t] * std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(k * t) / static_cast<double>(n));
    EXPECT_NEAR(std::abs(spectrum[k] - sum), 0, 1e-9);
  }
  Series back(n);
  fourier.inverse(spectrum, back);
  for (std::size_t t = 0; t < n; ++t) EXPECT_NEAR(back[t], x[t], 1e-12);
}

INSTANTIATE_TEST_SUITE_P(EvenAndOdd, FourierLength, ::testing::Values(2, 3, 64, 97, 150));

TEST(ZeroPhaseSurrogates, KeepTheRelationAtTheSameMomentAlone) {
  constexpr std::size_t kLength = 400;
  const Series y = noise(kLength, 2), own = noise(kLength, 3);
  Series x(kLength);
  for (std::size_t t = 0; t < kLength; ++t) x[t] = y[t] + 0.8 * y[(t + kLength - 1) % kLength] + 0.5 * own[t];
  direction::ZeroPhaseSurrogates maker(kLength);
  maker.begin(x, y);
  simo::RandomStream random(1);
  double at0 = 0, before = 0, after = 0, power = 0;
  for (int draw = 0; draw < 300; ++draw) {
    Series surrogate(kLength);
    maker.draw(random, surrogate);
    at0 += product(y, surrogate, 0) / 300;
    after += product(y, surrogate, 1) / 300;
    before += product(y, surrogate, kLength - 1) / 300;
    power += product(surrogate, surrogate, 0) / 300;
  }
  const double squares = product(y, y, 0);
  EXPECT_NEAR(at0 / product(y, x, 0), 1, 0.1);
  EXPECT_NEAR(power / product(x, x, 0), 1, 0.15);
  // The lag is spread evenly to both sides.
  EXPECT_NEAR(after / squares, before / squares, 0.08);
  EXPECT_GT(product(y, x, 1) / squares, 0.6);
}

Spectrum spectrumOf(const Series& x) {
  Spectrum spectrum;
  direction::Fourier(static_cast<int>(x.size())).forward(x, spectrum);
  return spectrum;
}

Series surrogateOf(const Series& x, const Series& y) {
  direction::ZeroPhaseSurrogates maker(static_cast<int>(x.size()));
  maker.begin(x, y);
  simo::RandomStream random(1);
  Series surrogate(x.size());
  maker.draw(random, surrogate);
  return surrogate;
}

// Of an odd length the highest frequency has a phase too.
TEST(ZeroPhaseSurrogates, OfWhatSharesNothingHaveItsSpectrum) {
  const Series x = noise(61, 4);
  const Spectrum own = spectrumOf(x), drawn = spectrumOf(surrogateOf(x, Series(61, 0)));
  for (std::size_t k = 1; k < own.size(); ++k) EXPECT_NEAR(std::abs(drawn[k]), std::abs(own[k]), 1e-9) << k;
}

// Phases are drawn from the whole circle: draws average out.
TEST(ZeroPhaseSurrogates, OfWhatSharesNothingAreUnrelatedToEachOther) {
  const Series x = noise(61, 4);
  direction::ZeroPhaseSurrogates maker(61);
  maker.begin(x, Series(61, 0));
  simo::RandomStream random(1);
  Series mean(61, 0), surrogate(61);
  for (int draw = 0; draw < 400; ++draw) {
    maker.draw(random, surrogate);
    for (std::size_t t = 0; t < mean.size(); ++t) mean[t] += surrogate[t] / 400;
  }
  EXPECT_LT(product(mean, mean, 0) / product(x, x, 0), 4.0 / 400);
}

// What differs at one frequency alone counts at those within half the root of the length, and nowhere else.
TEST(ZeroPhaseSurrogates, SmoothOverFrequenciesWithinHalfTheRootOfTheLength) {
  const Series y = noise(400, 6);
  const Spectrum given = spectrumOf(y);
  Spectrum changed = given;
  changed[100] *= 3;
  Series x(400);
  direction::Fourier(400).inverse(changed, x);
  const Spectrum drawn = spectrumOf(surrogateOf(x, y));
  for (std::size_t k = 1; k < given.size(); ++k) {
    const double difference = std::abs(drawn[k] - given[k]) / std::abs(given[k]);
    if (k >= 90 && k <= 110)
      EXPECT_GT(difference, 1e-4) << k;
    else
      EXPECT_LT(difference, 1e-9) << k;
  }
}

TEST(ZeroPhaseSurrogates, HaveNoMean) {
  const Series x = noise(60, 4), y = noise(60, 5);
  direction::ZeroPhaseSurrogates maker(60);
  maker.begin(x, y);
  simo::RandomStream random(2);
  Series surrogate(60);
  maker.draw(random, surrogate);
  double sum = 0;
  for (const double value : surrogate) sum += value;
  EXPECT_NEAR(sum, 0, 1e-9);
}

}  // namespace
