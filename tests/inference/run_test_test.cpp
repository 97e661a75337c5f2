#include "inference/run_test.h"

#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <vector>

#include "inference/shuffles.h"
#include "inference/t_distribution.h"
#include "tests/inference/made_data.h"

namespace {

using namespace inference;
using Eigen::MatrixXd;
using Eigen::VectorXd;

TEST(RunTest, OneSampleTIsTheMeanByItsStandardError) {
  const made::Data data = made::noise(12, 50, 1);
  const TestResult result = runTest(made::oneSample(12), data.values(), spaceOfPlaces(50), made::plain(100));
  for (std::size_t place = 0; place < 50; ++place) {
    double sum = 0, squares = 0;
    for (std::size_t row = 0; row < 12; ++row)
      sum += data.value(row, place), squares += data.value(row, place) * data.value(row, place);
    const double mean = sum / 12, variance = (squares - sum * mean) / 11;
    EXPECT_NEAR(result.effect[place], mean, 1e-6);
    EXPECT_NEAR(result.t[place], mean / std::sqrt(variance / 12), 1e-5);
    EXPECT_NEAR(result.z[place], zOfT(static_cast<double>(result.t[place]), 11), 1e-5);
  }
}

// Every sign flip by hand.
TEST(RunTest, ListsAllSignFlipsWhenTheyAreFew) {
  const made::Data data = made::noise(6, 7, 2);
  const TestResult result = runTest(made::oneSample(6), data.values(), spaceOfPlaces(7), made::plain(64));
  EXPECT_TRUE(result.isExhaustive);
  ASSERT_EQ(result.shuffles, 64U);
  const auto tOf = [&](unsigned flips, std::size_t place) {
    double sum = 0, squares = 0;
    for (std::size_t row = 0; row < 6; ++row) {
      const double value = data.value(row, place) * ((flips >> row) & 1U ? -1 : 1);
      sum += value, squares += value * value;
    }
    return std::abs(sum / 6 / std::sqrt((squares - sum * sum / 6) / 5 / 6));
  };
  for (std::size_t place = 0; place < 7; ++place) {
    int reached = 0, anywhere = 0;
    for (unsigned flips = 0; flips < 64; ++flips) {
      double largest = 0;
      for (std::size_t other = 0; other < 7; ++other) largest = std::max(largest, tOf(flips, other));
      if (tOf(flips, place) >= tOf(0, place) - 1e-6) ++reached;
      if (largest >= tOf(0, place) - 1e-6) ++anywhere;
    }
    EXPECT_FLOAT_EQ(result.p[place], static_cast<float>(reached / 64.0));
    EXPECT_FLOAT_EQ(result.pFwe[place], static_cast<float>(anywhere / 64.0));
  }
}

MatrixXd designOf(const Model& model) {
  const auto columns = static_cast<Eigen::Index>(model.contrast.size());
  MatrixXd design(model.rows(), columns);
  for (Eigen::Index i = 0; i < design.rows(); ++i)
    for (Eigen::Index j = 0; j < columns; ++j)
      design(i, j) = model.design[static_cast<std::size_t>(i * columns + j)];
  return design;
}

double tOf(const MatrixXd& design, const VectorXd& contrast, const VectorXd& y) {
  const MatrixXd inverse = (design.transpose() * design).inverse();
  const VectorXd beta = inverse * design.transpose() * y;
  const double variance =
      (y - design * beta).squaredNorm() / static_cast<double>(design.rows() - design.cols());
  return contrast.dot(beta) / std::sqrt(variance * contrast.dot(inverse * contrast));
}

// Freedman & Lane's steps one by one, the contrast being of the last column: the model without it is fitted,
// its residuals are shuffled and put back, the whole model is fitted to that.
std::vector<float> literalMaxima(const Model& model, const made::Data& data, const Shuffles& shuffles) {
  const MatrixXd design = designOf(model), nuisances = design.leftCols(design.cols() - 1);
  const VectorXd contrast = Eigen::Map<const VectorXd>(model.contrast.data(), design.cols());
  const int freedom = static_cast<int>(design.rows() - design.cols());
  std::vector<float> maxima;
  for (std::size_t s = 0; s < shuffles.count(); ++s) {
    const Shuffle shuffle = shuffles.at(s);
    double largest = 0;
    for (std::size_t place = 0; place < data.places; ++place) {
      VectorXd y(data.rows), shuffled(data.rows);
      for (std::size_t row = 0; row < data.rows; ++row)
        y(static_cast<Eigen::Index>(row)) = data.value(row, place);
      const VectorXd fitted = nuisances * nuisances.colPivHouseholderQr().solve(y), residuals = y - fitted;
      for (std::size_t row = 0; row < data.rows; ++row)
        shuffled(static_cast<Eigen::Index>(row)) = shuffle.sign[row] * residuals(shuffle.from[row]);
      largest = std::max(largest, std::abs(tOf(design, contrast, shuffled + fitted)));
    }
    maxima.push_back(static_cast<float>(zOfT(largest, freedom)));
  }
  std::sort(maxima.begin(), maxima.end());
  return maxima;
}

void expectLiteral(const Model& model, Exchange exchange, const std::vector<int>& blocks) {
  made::Data data = made::noise(8, 33, 3);
  for (std::size_t i = 0; i < data.at.size(); ++i)
    data.at[i] += static_cast<float>(3 * model.design[i / 33 * model.contrast.size() + 1]);
  TestOptions options = made::plain(40);
  options.exchange = exchange;
  options.blocks = blocks;
  const TestResult result = runTest(model, data.values(), spaceOfPlaces(33), options);
  const auto maxima = literalMaxima(model, data, Shuffles(model, exchange, blocks, 40, options.seed));
  ASSERT_EQ(result.nullZ.sorted.size(), maxima.size());
  for (std::size_t i = 0; i < maxima.size(); ++i) EXPECT_NEAR(result.nullZ.sorted[i], maxima[i], 2e-5);
}

// mean, a covariate that matters, group.
const Model kModel{{"mean", "age", "group"},
                   {1, 2, 1, 1, 4, -1, 1, 3, 1, 1, 7, -1, 1, 1, 1, 1, 5, -1, 1, 6, 1, 1, 9, -1},
                   {0, 0, 1}};

TEST(RunTest, ShufflesTheResidualsOfTheNuisances) {
  expectLiteral(kModel, Exchange::kPermutations, {});
  expectLiteral(kModel, Exchange::kSignFlips, {});
}

TEST(RunTest, ShufflesWithinBlocks) {
  expectLiteral(kModel, Exchange::kPermutations, {1, 1, 1, 1, 2, 2, 2, 2});
  expectLiteral(kModel, Exchange::kSignFlips, {1, 1, 1, 1, 2, 2, 3, 3});
}

TEST(RunTest, IsTheSameOnAnyNumberOfThreads) {
  made::Data data = made::noise(10, 216, 4);
  data.of(3, 17) = data.of(4, 99) = made::kNothing;
  TestOptions options;
  options.shuffles = 150;
  options.clusterFormingZ = 1.5;
  const TestResult one = runTest(made::oneSample(10), data.values(), made::cube(6), options);
  options.threads = 3;
  const TestResult three = runTest(made::oneSample(10), data.values(), made::cube(6), options);
  EXPECT_EQ(one.p, three.p);
  EXPECT_EQ(one.pEnhanced, three.pEnhanced);
  EXPECT_EQ(one.nullZ.sorted, three.nullZ.sorted);
  EXPECT_EQ(one.nullMass.sorted, three.nullMass.sorted);
  EXPECT_EQ(one.nullEnhanced.sorted, three.nullEnhanced.sorted);
  options.seed = 2;
  EXPECT_NE(runTest(made::oneSample(10), data.values(), made::cube(6), options).nullZ.sorted,
            one.nullZ.sorted);
}

// Whole maps or pieces of them: the same shuffles, the same maxima.
TEST(RunTest, HasTheSameLargestTWhateverElseIsAsked) {
  const made::Data data = made::noise(9, 125, 5);
  TestOptions options = made::plain(77);
  const TestResult alone = runTest(made::twoSamples(9), data.values(), made::cube(5), options);
  options.enhance = true;
  options.clusterFormingZ = 2;
  const TestResult all = runTest(made::twoSamples(9), data.values(), made::cube(5), options);
  EXPECT_EQ(alone.nullZ.sorted, all.nullZ.sorted);
  EXPECT_EQ(alone.p, all.p);
  EXPECT_TRUE(alone.enhanced.empty());
  EXPECT_EQ(all.enhanced.size(), 125U);
}

TEST(RunTest, FindsAPlantedEffectByEveryStatistic) {
  made::Data data = made::noise(14, 216, 6);
  for (std::size_t row = 0; row < 14; ++row)
    for (const std::size_t place : {86U, 87U, 92U, 93U}) data.of(row, place) -= 2;
  TestOptions options;
  options.shuffles = 400;
  options.tail = Tail::kCounted;
  const TestResult result = runTest(made::oneSample(14), data.values(), made::cube(6), options);
  for (const std::size_t place : {86U, 87U, 92U, 93U}) {
    EXPECT_LE(result.pFwe[place], 0.05F);
    EXPECT_LE(result.pEnhanced[place], 0.05F);
    EXPECT_LT(result.enhanced[place], 0);
  }
  ASSERT_FALSE(result.clusters.empty());
  EXPECT_EQ(result.clusters[0].sign, -1);
  EXPECT_LE(result.clusters[0].pFwe, 0.05);
  EXPECT_NEAR(result.clusters[0].pFwe, 1 / 401.0, 1e-9);
  TestOptions oneSided = options;
  oneSided.twoSided = false;
  const TestResult positive = runTest(made::oneSample(14), data.values(), made::cube(6), oneSided);
  for (const std::size_t place : {86U, 87U, 92U, 93U}) {
    EXPECT_GT(positive.pFwe[place], 0.9F);
    EXPECT_GT(positive.p[place], 0.9F);
    EXPECT_EQ(positive.enhanced[place], 0);
  }
}

TEST(RunTest, HasAThresholdThatSeparatesWhatPasses) {
  made::Data data = made::noise(12, 300, 7);
  for (std::size_t row = 0; row < 12; ++row)
    for (std::size_t place = 0; place < 60; ++place) data.of(row, place) += static_cast<float>(place) / 20;
  const TestResult result =
      runTest(made::oneSample(12), data.values(), spaceOfPlaces(300), made::plain(1000));
  int passed = 0;
  for (std::size_t place = 0; place < 300; ++place) {
    EXPECT_EQ(static_cast<double>(std::abs(result.t[place])) >= result.tAtFwe05, result.pFwe[place] <= 0.05F);
    passed += result.pFwe[place] <= 0.05F ? 1 : 0;
    if (result.qFdr[place] <= 0.05F) {
      EXPECT_GE(static_cast<double>(std::abs(result.t[place])), result.tAtQ05);
    }
  }
  EXPECT_GT(passed, 5);
  EXPECT_TRUE(std::isfinite(result.tAtQ05));
}

TEST(RunTest, SmoothsTheTailOfFewShufflesAndSaysSo) {
  const made::Data data = made::noise(20, 40, 8);
  TestOptions options = made::plain(200);
  EXPECT_FALSE(runTest(made::oneSample(20), data.values(), spaceOfPlaces(40), options).nullZ.tail);
  options.tail = Tail::kSmooth;
  EXPECT_TRUE(runTest(made::oneSample(20), data.values(), spaceOfPlaces(40), options).nullZ.tail);
  options.shuffles = kFewShuffles;
  EXPECT_FALSE(runTest(made::oneSample(20), data.values(), spaceOfPlaces(40), options).nullZ.tail);
  const made::Data few = made::noise(7, 40, 9);  // 128 in all
  options.shuffles = 200;
  EXPECT_FALSE(runTest(made::oneSample(7), few.values(), spaceOfPlaces(40), options).nullZ.tail);
}

TEST(RunTest, ChecksSymmetryOfSignFlipsAlone) {
  const made::Data data = made::noise(8, 40, 10);
  EXPECT_TRUE(runTest(made::oneSample(8), data.values(), spaceOfPlaces(40), made::plain(50)).symmetry);
  EXPECT_FALSE(runTest(made::twoSamples(8), data.values(), spaceOfPlaces(40), made::permuted(50)).symmetry);
}

TEST(RunTest, TellsItsProgress) {
  const made::Data data = made::noise(12, 40, 11);
  TestOptions options = made::plain(100);
  std::vector<std::size_t> told;
  options.progress = [&](std::size_t done, std::size_t all) {
    EXPECT_EQ(all, 100U);
    told.push_back(done);
  };
  static_cast<void>(runTest(made::oneSample(12), data.values(), spaceOfPlaces(40), options));
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  EXPECT_EQ(told.back(), 100U);
}

}  // namespace
