#include "suitability/reference_spectrum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

#include "tests/suitability/simulated.h"

namespace {

using suitability::ReferenceSpectrum;
using Course = std::vector<float>;

Course sine(int cycles, int volumes) {
  Course course;
  for (int t = 0; t < volumes; ++t)
    course.push_back(static_cast<float>(1000 + std::sin(2 * std::numbers::pi * cycles * t / volumes)));
  return course;
}

Course noise(unsigned seed, std::size_t n) {
  std::mt19937 random(seed);
  const simulated::Values values = simulated::white(n, random);
  return {values.begin(), values.end()};
}

ReferenceSpectrum spectrumOf(const Course& course, const std::vector<Course>& surrogates = {}) {
  const std::vector<std::span<const float>> rows(surrogates.begin(), surrogates.end());
  return suitability::referenceSpectrum(course, rows, {{0, static_cast<int>(course.size())}}, 2);
}

double sum(const std::vector<double>& values) {
  return std::accumulate(values.begin(), values.end(), 0.0);
}

TEST(ReferenceSpectrum, OfASineLiesInItsBinAndBesideIt) {
  const ReferenceSpectrum found = spectrumOf(sine(12, 120));
  ASSERT_EQ(found.hertz.size(), 61U);
  EXPECT_NEAR(found.hertz[12], 12 / (120 * 2.0), 1e-12);
  // A Hann taper leaves two thirds where they are and a sixth on either side.
  EXPECT_NEAR(found.reference[12], 2.0 / 3, 0.02);
  EXPECT_NEAR(found.reference[11] + found.reference[13], 1.0 / 3, 0.02);
  EXPECT_NEAR(sum(found.reference), 1, 1e-9);
  EXPECT_EQ(found.surrogates, 0U);
  EXPECT_TRUE(found.low.empty());
}

TEST(ReferenceSpectrum, SumsNeighboursWhereThereAreMany) {
  const ReferenceSpectrum found = spectrumOf(sine(300, 1200));  // 601 frequencies, three a bin
  ASSERT_EQ(found.hertz.size(), 201U);
  EXPECT_NEAR(sum(found.reference), 1, 1e-9);
  EXPECT_NEAR(found.hertz[100], 301 / (1200 * 2.0), 1e-12);  // of 300, 301 and 302
  EXPECT_NEAR(found.hertz[200], 600 / (1200 * 2.0), 1e-12);  // alone
  EXPECT_NEAR(found.reference[100], 5.0 / 6, 0.02);
  EXPECT_NEAR(found.reference[99], 1.0 / 6, 0.02);
}

TEST(ReferenceSpectrum, LooksAtTheLongestInterval) {
  Course course = noise(3, 200);
  const Course part = sine(10, 100);
  std::copy(part.begin(), part.end(), course.begin() + 50);
  const auto found = suitability::referenceSpectrum(course, {}, {{0, 20}, {50, 100}, {150, 50}}, 2);
  EXPECT_EQ(found.interval.first, 50);
  EXPECT_EQ(found.interval.length, 100);
  EXPECT_NEAR(found.reference[10], 2.0 / 3, 0.02);
}

// 101 surrogates, of which the last is not looked at; quantiles by the nearest rank.
TEST(ReferenceSpectrum, HasTheQuantilesOfTheFirstSurrogates) {
  std::vector<Course> surrogates;
  for (unsigned s = 0; s < 100; ++s) surrogates.push_back(noise(s + 10, 64));
  surrogates.push_back(sine(8, 64));
  const ReferenceSpectrum found = spectrumOf(noise(1, 64), surrogates);
  EXPECT_EQ(found.surrogates, 100U);
  for (const std::size_t bin : {std::size_t{8}, std::size_t{20}}) {
    std::vector<double> shares;
    for (std::size_t s = 0; s < 100; ++s) shares.push_back(spectrumOf(surrogates[s]).reference[bin]);
    std::sort(shares.begin(), shares.end());
    EXPECT_NEAR(found.low[bin], shares[2], 1e-12);
    EXPECT_NEAR(found.median[bin], shares[50], 1e-12);
    EXPECT_NEAR(found.high[bin], shares[97], 1e-12);
  }
}

TEST(ReferenceSpectrum, SurrogatesThatDoNotVaryAreNone) {
  EXPECT_EQ(spectrumOf(noise(1, 64), {Course(64), noise(2, 64)}).surrogates, 1U);
}

TEST(ReferenceSpectrum, IsEmptyWhereThereIsNothingToSee) {
  EXPECT_TRUE(spectrumOf(noise(1, 7)).empty());
  EXPECT_TRUE(spectrumOf(Course(64, 5.0F)).empty());
  Course broken = noise(1, 64);
  broken[9] = std::numeric_limits<float>::quiet_NaN();
  EXPECT_TRUE(spectrumOf(broken).empty());
  EXPECT_TRUE(suitability::referenceSpectrum(noise(1, 64), {}, {}, 2).empty());
}

}  // namespace
