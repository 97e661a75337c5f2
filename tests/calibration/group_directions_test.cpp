// Group means of dTAV, as it is and minus that of reversed time, over participants whose series share a
// signal at the same moment and no influence; and over participants with one. Prints the rates of
// docs/calibration.md.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "direction/reversed_difference.h"
#include "inference/run_test.h"
#include "inference/space.h"
#include "simo/detrend.h"
#include "simo/pair_fit.h"

namespace {

using Series = std::vector<float>;

constexpr int kParticipants = 16, kVolumes = 300;
constexpr std::size_t kPlaces = 40;

// Of each cell.
std::uint32_t dataSets() {
  const char* const asked = std::getenv("TAVMAP_DATA_SETS");
  return asked == nullptr ? 25 : static_cast<std::uint32_t>(std::strtoul(asked, nullptr, 10));
}

struct Pair {
  double referenceNoise, voxelNoise, voxelMemory;  // standard deviations; of the noise that the voxel adds
  double influence;                                // of the reference on the voxel, one volume later
};

Series autoregressive(double a, std::mt19937& random) {
  std::normal_distribution<double> normal;
  Series x(kVolumes);
  double state = 0;
  for (int i = 0; i < 50; ++i) state = a * state + normal(random);
  for (float& value : x) value = static_cast<float>(state = a * state + normal(random));
  return x;
}

struct Made {
  Series reference, voxel;
};

Made make(const Pair& pair, std::mt19937& random) {
  const Series signal = autoregressive(0.9, random), noiseOfVoxel = autoregressive(pair.voxelMemory, random);
  std::normal_distribution<float> normal;
  Made made{signal, signal};
  for (std::size_t t = 0; t < signal.size(); ++t) {
    made.reference[t] += static_cast<float>(pair.referenceNoise) * normal(random);
    made.voxel[t] += static_cast<float>(pair.voxelNoise) * noiseOfVoxel[t];
    if (t > 0) made.voxel[t] += static_cast<float>(pair.influence) * made.reference[t - 1];
  }
  return made;
}

double dtav(const Made& made) {
  std::vector<double> x(kVolumes), y(kVolumes);
  (void)simo::detrendRow(made.reference.data(), kVolumes, x.data());
  (void)simo::detrendRow(made.voxel.data(), kVolumes, y.data());
  simo::LaggedMoments xx(1), yy(1), xy(1);
  xx.add(x.data(), x.data(), kVolumes);
  yy.add(y.data(), y.data(), kVolumes);
  xy.add(x.data(), y.data(), kVolumes);
  const simo::Feedback feedback = simo::PairFit::feedback(simo::PairFit(1).errors(xx, yy, xy).value());
  return feedback.xToY - feedback.yToX;
}

struct Rates {
  double plain = 0, reversed = 0;  // of data sets with any place at a family-wise p of .05
};

bool isAnySignificant(const std::vector<float>& values, std::uint32_t seed) {
  const inference::Model model{{"mean"}, std::vector<double>(kParticipants, 1.0), {1.0}};
  inference::TestOptions options;
  options.shuffles = 400;
  options.seed = seed;
  options.enhance = false;
  options.clusterFormingZ = 0;
  options.tail = inference::Tail::kCounted;
  const inference::TestResult result = inference::runTest(model, {kParticipants, kPlaces, values.data()},
                                                          inference::spaceOfPlaces(kPlaces), options);
  for (const float p : result.pFwe)
    if (static_cast<double>(p) <= 0.05) return true;
  return false;
}

Rates ratesOf(const Pair& pair) {
  Rates rates;
  for (std::uint32_t set = 0; set < dataSets(); ++set) {
    std::mt19937 random(1000 * set + 7);
    std::vector<float> plain, reversed;
    for (std::size_t i = 0; i < kParticipants * kPlaces; ++i) {
      const Made made = make(pair, random);
      plain.push_back(static_cast<float>(dtav(made)));
      direction::ReversedDifference difference(1, {{made.reference, {{0, kVolumes}}}});
      reversed.push_back(static_cast<float>(difference.of({made.voxel}).value()));
    }
    rates.plain += isAnySignificant(plain, set) ? 1.0 / dataSets() : 0;
    rates.reversed += isAnySignificant(reversed, set) ? 1.0 / dataSets() : 0;
  }
  std::printf("noise %.1f / %.1f, memory %.1f, influence %.2f: dTAV %.3f, dTAVrev %.3f\n",
              pair.referenceNoise, pair.voxelNoise, pair.voxelMemory, pair.influence, rates.plain,
              rates.reversed);
  return rates;
}

// Two standard errors of a rate of .05.
double most() {
  return 0.05 + 2 * std::sqrt(0.05 * 0.95 / dataSets());
}

TEST(GroupDirections, UnequalNoiseMakesAMeanOfDTAVAndNoneOfReversedTime) {
  for (const Pair& pair : {Pair{0.3, 2, 0, 0}, Pair{2, 0.3, 0, 0}, Pair{1, 1, 0.8, 0}}) {
    const Rates rates = ratesOf(pair);
    EXPECT_GT(rates.plain, 0.9) << "the flaw that the other map is there for";
    EXPECT_LE(rates.reversed, most());
  }
}

TEST(GroupDirections, EqualNoiseMakesNeither) {
  const Rates rates = ratesOf({1, 1, 0, 0});
  EXPECT_LE(rates.plain, most());
  EXPECT_LE(rates.reversed, most());
}

TEST(GroupDirections, AnInfluenceIsFoundByBoth) {
  const Rates rates = ratesOf({0.3, 1, 0, 0.3});
  EXPECT_GT(rates.plain, 0.9);
  EXPECT_GT(rates.reversed, 0.9);
}

}  // namespace
