#include "simo/residual_surrogates.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace {

using Series = std::vector<float>;

Series smoothNoise(std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<float> normal;
  Series x(n);
  float state = 0;
  for (float& value : x) value = 1000 + (state = 0.8F * state + normal(random));
  return x;
}

std::vector<Series> drawMany(simo::ResidualSurrogates& maker, std::size_t length, int count) {
  simo::RandomStream random(5);
  std::vector<Series> all;
  for (int i = 0; i < count; ++i) {
    all.emplace_back(length);
    maker.draw(random, all.back());
  }
  return all;
}

double correlation(const Series& a, const Series& b) {
  double ma = 0, mb = 0, ab = 0, aa = 0, bb = 0;
  const double n = static_cast<double>(a.size());
  for (std::size_t t = 0; t < a.size(); ++t)
    ma += static_cast<double>(a[t]) / n, mb += static_cast<double>(b[t]) / n;
  for (std::size_t t = 0; t < a.size(); ++t) {
    const double u = static_cast<double>(a[t]) - ma, v = static_cast<double>(b[t]) - mb;
    ab += u * v, aa += u * u, bb += v * v;
  }
  return ab / std::sqrt(aa * bb);
}

double lagOne(const Series& x) {
  return correlation({x.begin(), x.end() - 1}, {x.begin() + 1, x.end()});
}

TEST(ResidualSurrogates, KeepAutocorrelationAndVariance) {
  const Series x = smoothNoise(400, 1);
  simo::ResidualSurrogates maker(x, {{0, 400}});
  double lags = 0, squares = 0;
  const auto all = drawMany(maker, 400, 200);
  for (const Series& surrogate : all) {
    lags += lagOne(surrogate) / 200;
    for (const float value : surrogate)
      squares += static_cast<double>(value) * static_cast<double>(value) / (200.0 * 400);
  }
  EXPECT_NEAR(lags, lagOne(x), 0.03);
  double variance = 0;
  for (const float value : x) variance += std::pow(static_cast<double>(value) - 1000, 2) / 400;
  EXPECT_NEAR(squares / variance, 1, 0.15);
}

TEST(ResidualSurrogates, AreUnrelatedToTheSeriesAndToEachOther) {
  const Series x = smoothNoise(400, 2);
  simo::ResidualSurrogates maker(x, {{0, 400}});
  const auto all = drawMany(maker, 400, 300);
  double own = 0, between = 0;
  for (std::size_t i = 0; i < all.size(); ++i) {
    own += correlation(all[i], x) / 300;
    between += correlation(all[i], all[(i + 1) % all.size()]) / 300;
  }
  EXPECT_NEAR(own, 0, 0.03);
  EXPECT_NEAR(between, 0, 0.03);
}

// A burst stays where it is.
TEST(ResidualSurrogates, KeepTheEnvelope) {
  Series x = smoothNoise(400, 3);
  for (std::size_t t = 300; t < 320; ++t) x[t] = 1000 + 10 * (x[t] - 1000);
  simo::ResidualSurrogates maker(x, {{0, 400}});
  double inside = 0, outside = 0;
  for (const Series& surrogate : drawMany(maker, 400, 100)) {
    for (std::size_t t = 0; t < 400; ++t) {
      const double square = static_cast<double>(surrogate[t]) * static_cast<double>(surrogate[t]);
      (t >= 300 && t < 320 ? inside : outside) += square / (t >= 300 && t < 320 ? 20 : 380);
    }
  }
  EXPECT_GT(inside / outside, 10);
}

// Added spikes as high as the series' own and nothing that answers them: at the values behind each, a
// surrogate stays near what the noise alone makes of it.
TEST(ResidualSurrogates, AnAddedSpikeHasNoEcho) {
  Series x = smoothNoise(400, 9);
  const std::vector<std::size_t> spikes = {60, 170, 290};
  for (const std::size_t t : spikes) x[t] += 60;
  simo::ResidualSurrogates maker(x, {{0, 400}});
  ASSERT_GE(maker.model().coefficients.size(), 1U);
  double at = 0, behind = 0;
  int positive = 0;
  for (const Series& surrogate : drawMany(maker, 400, 200)) {
    for (const std::size_t t : spikes) {
      at += std::abs(static_cast<double>(surrogate[t])) / 600;
      behind += std::abs(static_cast<double>(surrogate[t + 1])) / 600;
      positive += surrogate[t] > 0 ? 1 : 0;
    }
  }
  EXPECT_NEAR(at, 60, 6);
  EXPECT_LT(behind, 3);
  EXPECT_NEAR(positive / 600.0, 0.5, 0.1);
}

TEST(ResidualSurrogates, SpikesApartHaveSignsOfTheirOwn) {
  Series x = smoothNoise(400, 10);
  for (const std::size_t t : {std::size_t{100}, std::size_t{300}}) x[t] += 80;
  simo::ResidualSurrogates maker(x, {{0, 400}});
  int alike = 0;
  for (const Series& surrogate : drawMany(maker, 400, 300))
    alike += (surrogate[100] > 0) == (surrogate[300] > 0) ? 1 : 0;
  EXPECT_NEAR(alike / 300.0, 0.5, 0.1);
}

// A drift of one and a half cycles, which no model of few lags holds, in noise without memory.
TEST(ResidualSurrogates, KeepTheStrengthOfSlowWaves) {
  std::mt19937 random(11);
  std::normal_distribution<float> normal;
  Series x(300);
  for (std::size_t t = 0; t < 300; ++t)
    x[t] = 1000 + normal(random) + 3 * std::sin(0.0314F * static_cast<float>(t));
  simo::ResidualSurrogates maker(x, {{0, 300}});
  const simo::SlowWaves slow(4, std::vector<bool>(300, true));
  std::vector<double> course(x.begin(), x.end());
  for (double& value : course) value -= 1000;
  for (const Series& surrogate : drawMany(maker, 300, 5)) {
    const auto amplitudes = slow.amplitudes(std::vector<double>(surrogate.begin(), surrogate.end()));
    EXPECT_GT(std::hypot(amplitudes[0], amplitudes[1]), 1.5);
  }
  EXPECT_GT(slow.amplitudes(course)[0], 1.5);
}

TEST(ResidualSurrogates, ValuesOutsideTheStretchesPlayNoPart) {
  Series x = smoothNoise(400, 4), spoiled = x;
  for (std::size_t t = 100; t < 110; ++t) spoiled[t] = NAN;
  const std::vector<simo::Stretch> stretches = {{0, 100}, {110, 400}};
  simo::ResidualSurrogates a(x, stretches), b(spoiled, stretches);
  ASSERT_TRUE(b.isDefined());
  EXPECT_EQ(drawMany(a, 400, 3), drawMany(b, 400, 3));
}

TEST(ResidualSurrogates, AGapIsFilledAtTheUsualLevel) {
  const Series x = smoothNoise(400, 5);
  simo::ResidualSurrogates maker(x, {{0, 200}, {260, 400}});
  double gap = 0, rest = 0;
  for (const Series& surrogate : drawMany(maker, 400, 200))
    for (std::size_t t = 0; t < 400; ++t) {
      const double square = static_cast<double>(surrogate[t]) * static_cast<double>(surrogate[t]);
      (t >= 200 && t < 260 ? gap : rest) += square / (t >= 200 && t < 260 ? 60 : 340);
    }
  EXPECT_NEAR(gap / rest, 1, 0.15);
}

TEST(ResidualSurrogates, ASlopeIsNoPartOfTheModel) {
  Series x = smoothNoise(400, 6), tilted = x;
  for (std::size_t t = 0; t < 400; ++t) tilted[t] += 0.5F * static_cast<float>(t);
  simo::ResidualSurrogates flat(x, {{0, 400}}), steep(tilted, {{0, 400}});
  EXPECT_NEAR(steep.model().errorVariance / flat.model().errorVariance, 1, 1e-3);
}

TEST(ResidualSurrogates, AreNotDefinedWithoutVarianceOrWithMissingValues) {
  EXPECT_FALSE(simo::ResidualSurrogates(Series(50, 3.0F), {{0, 50}}).isDefined());
  EXPECT_FALSE(simo::ResidualSurrogates(Series(50, 3.0F), {}).isDefined());
  Series x = smoothNoise(50, 7);
  x[20] = NAN;
  EXPECT_FALSE(simo::ResidualSurrogates(x, {{0, 50}}).isDefined());
}

TEST(ResidualSurrogates, SeveralTogetherAreThoseOfTheirStreams) {
  Series x = smoothNoise(300, 4);
  x[40] += 60;  // a spike, and a gap that begins with another
  x[150] += 80;
  simo::ResidualSurrogates maker(x, {{0, 150}, {157, 300}});
  std::array<simo::RandomStream, simo::ResidualSurrogates::kTogether> streams;
  for (unsigned i = 0; i < streams.size(); ++i) streams[i].seed(17 * i + 1);
  Series together(streams.size() * 300), alone(300);
  maker.drawTogether(streams, together);
  for (unsigned i = 0; i < streams.size(); ++i) {
    simo::RandomStream random(17 * i + 1);
    maker.draw(random, alone);
    EXPECT_EQ(alone, Series(together.begin() + i * 300, together.begin() + (i + 1) * 300)) << i;
    simo::RandomStream skipped(17 * i + 1);
    skipped.skip(maker.numbersPerDraw());
    const int next = skipped.next();
    EXPECT_EQ(random.next(), next);
    EXPECT_EQ(streams[i].next(), next);
  }
}

TEST(ResidualSurrogates, TheSameStreamGivesTheSameSurrogates) {
  const Series x = smoothNoise(120, 8);
  simo::ResidualSurrogates a(x, {{0, 120}}), b(x, {{0, 120}});
  EXPECT_EQ(drawMany(a, 120, 4), drawMany(b, 120, 4));
}

}  // namespace
