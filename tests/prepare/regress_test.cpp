#include "prepare/regress.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "prepare/householder_qr.h"

namespace study {
namespace {

using Columns = std::vector<std::vector<double>>;

Columns randomColumns(std::size_t count, std::size_t volumes, unsigned seed) {
  std::mt19937 generator(seed);
  std::normal_distribution<double> normal;
  Columns columns(count, std::vector<double>(volumes));
  for (auto& column : columns) {
    double mean = 0;
    for (double& value : column) mean += (value = normal(generator)) / static_cast<double>(volumes);
    for (double& value : column) value -= mean;  // so that a mixture leaves a course's own mean alone
  }
  return columns;
}

double dot(const std::vector<double>& a, const std::vector<double>& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

TEST(HouseholderQr, ReproducesTheColumnsItWasGiven) {
  const Columns columns = randomColumns(4, 30, 1);
  const HouseholderQr qr(columns);
  ASSERT_EQ(qr.rank(), 4U);
  for (std::size_t j = 0; j < 4; ++j) {
    std::vector<double> rebuilt(30, 0.0);
    for (std::size_t i = 0; i <= j; ++i) {
      const std::vector<double> q = qr.q(i);
      for (std::size_t v = 0; v < 30; ++v) rebuilt[v] += q[v] * qr.r(i, j);
    }
    for (std::size_t v = 0; v < 30; ++v) EXPECT_NEAR(rebuilt[v], columns[qr.pivot(j)][v], 1e-12);
  }
}

TEST(HouseholderQr, GivesOrthonormalDirections) {
  const HouseholderQr qr(randomColumns(5, 12, 2));
  for (std::size_t i = 0; i < 5; ++i) {
    for (std::size_t j = 0; j < 5; ++j) EXPECT_NEAR(dot(qr.q(i), qr.q(j)), i == j ? 1.0 : 0.0, 1e-13);
  }
}

TEST(HouseholderQr, LeavesDependentColumnsOutOfTheRank) {
  Columns columns = randomColumns(3, 20, 3);
  columns.push_back(columns[0]);
  for (std::size_t v = 0; v < 20; ++v) columns[3][v] = 2 * columns[0][v] - columns[1][v];
  EXPECT_EQ(HouseholderQr(columns).rank(), 3U);
  EXPECT_EQ(HouseholderQr(Columns(2, std::vector<double>(6, 0.0))).rank(), 0U);
}

TEST(Regress, RemovesAPlantedMixtureAndKeepsTheMean) {
  const Columns confounds = randomColumns(3, 50, 4);
  const Columns signal = randomColumns(1, 50, 5);
  ConfoundRegression regression(confounds);
  std::vector<float> course(50), clean(50);
  for (std::size_t v = 0; v < 50; ++v) {
    clean[v] = static_cast<float>(1000 + signal[0][v]);
    course[v] = clean[v] + static_cast<float>(3 * confounds[0][v] - 7 * confounds[2][v]);
  }
  regression.remove(course.data());
  regression.remove(clean.data());
  for (std::size_t v = 0; v < 50; ++v) EXPECT_NEAR(course[v], clean[v], 1e-3);
  double mean = 0;
  for (const float value : course) mean += static_cast<double>(value) / 50;
  EXPECT_NEAR(mean, 1000, 1e-4);
  EXPECT_EQ(regression.rank(), 3);
}

TEST(Regress, ResidualsAreOrthogonalToEveryConfound) {
  const Columns confounds = randomColumns(6, 40, 6);
  ConfoundRegression regression(confounds);
  std::vector<float> course(40);
  for (std::size_t v = 0; v < 40; ++v) course[v] = static_cast<float>(std::sin(0.3 * static_cast<double>(v)));
  regression.remove(course.data());
  for (const auto& confound : confounds) {
    double mean = 0, product = 0;
    for (const double value : confound) mean += value / 40;
    for (std::size_t v = 0; v < 40; ++v) product += (confound[v] - mean) * static_cast<double>(course[v]);
    EXPECT_NEAR(product, 0, 1e-5);
  }
}

TEST(Regress, UnitsOfAColumnDoNotMatter) {
  Columns confounds = randomColumns(2, 30, 7);
  for (double& value : confounds[1]) value *= 1e-9;
  EXPECT_EQ(ConfoundRegression(confounds).rank(), 2);
}

TEST(Regress, AConstantOrRepeatedColumnCostsNoDegreeOfFreedom) {
  Columns confounds = randomColumns(1, 30, 8);
  confounds.push_back(std::vector<double>(30, 5.0));
  confounds.push_back(confounds[0]);
  EXPECT_EQ(ConfoundRegression(confounds).rank(), 1);
}

TEST(Regress, VolumesLeftOutOfTheFitDoNotBendIt) {
  const Columns confounds = randomColumns(2, 40, 9);
  std::vector<bool> used(40, true);
  used[7] = used[8] = false;
  std::vector<float> course(40);
  for (std::size_t v = 0; v < 40; ++v)
    course[v] = static_cast<float>(10 + 2 * confounds[0][v] - confounds[1][v]);
  course[7] += 5000;
  ConfoundRegression regression(confounds, used);
  regression.remove(course.data());
  EXPECT_NEAR(course[0], course[20], 1e-4);
  EXPECT_NEAR(course[8], course[20], 1e-4);  // corrected with the same weights
  EXPECT_NEAR(course[7], course[20] + 5000, 1e-2);
}

TEST(Regress, LeavesACourseWithNanAlone) {
  ConfoundRegression regression(randomColumns(1, 3, 10));
  std::vector<float> course = {1, std::numeric_limits<float>::quiet_NaN(), 3};
  regression.remove(course.data());
  EXPECT_EQ(course[0], 1.0F);
  EXPECT_EQ(course[2], 3.0F);
}

TEST(Regress, WithoutColumnsNothingHappens) {
  ConfoundRegression regression({});
  std::vector<float> course = {1, 2, 3};
  regression.remove(course.data());
  EXPECT_EQ(course, (std::vector<float>{1, 2, 3}));
  EXPECT_EQ(regression.rank(), 0);
}

}  // namespace
}  // namespace study
