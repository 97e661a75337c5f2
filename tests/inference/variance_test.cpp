#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "inference/run_test.h"
#include "inference/variance_smoother.h"
#include "tests/inference/made_data.h"

namespace {

using namespace inference;

const io::GridSize kGrid{7, 6, 5};
const std::array<double, 3> kMm = {2, 3, 2.5};

// Two of three voxels.
std::vector<std::size_t> someVoxels() {
  std::vector<std::size_t> voxels;
  for (std::size_t i = 0; i < kGrid.voxels(); ++i)
    if (i % 3 != 1) voxels.push_back(i);
  return voxels;
}

// Every pair of voxels; along each axis weights end at three standard deviations.
std::vector<double> smoothed(const std::vector<double>& values, const std::vector<std::size_t>& voxels,
                             double fwhm) {
  const double deviation = fwhm / std::sqrt(8 * std::log(2.0));
  std::vector<double> result;
  for (const std::size_t voxel : voxels) {
    double sum = 0, weights = 0;
    for (std::size_t j = 0; j < voxels.size(); ++j) {
      double weight = 1;
      for (std::size_t axis = 0; axis < 3; ++axis) {
        const double mm = kMm[axis] * (kGrid.voxelAt(voxel)[axis] - kGrid.voxelAt(voxels[j])[axis]);
        weight *= std::abs(mm) > 3 * deviation ? 0 : std::exp(-mm * mm / (2 * deviation * deviation));
      }
      sum += weight * values[j], weights += weight;
    }
    result.push_back(sum / weights);
  }
  return result;
}

TEST(VarianceSmoother, IsAGaussianOverTheVoxelsThatAre) {
  const auto voxels = someVoxels();
  const made::Data data = made::noise(1, voxels.size(), 1);
  std::vector<float> values = data.at;
  VarianceSmoother smoother(spaceOfVoxels(kGrid, voxels, 6, kMm), 4.5);
  for (int again = 0; again < 2; ++again) {
    values = data.at;
    smoother.smooth(values.data());
    const auto expected = smoothed({data.at.begin(), data.at.end()}, voxels, 4.5);
    for (std::size_t i = 0; i < voxels.size(); ++i) ASSERT_NEAR(values[i], expected[i], 1e-5);
  }
}

double variance(const std::vector<double>& own) {
  double sum = 0, squares = 0;
  for (const double value : own) sum += value, squares += value * value;
  const auto n = static_cast<double>(own.size());
  return (squares - sum * sum / n) / (n - 1);
}

// The mean by the standard error of the smoothed variance, of each flip by hand.
std::vector<double> pseudoT(const made::Data& data, const std::vector<std::size_t>& voxels, unsigned flips) {
  std::vector<double> means, variances;
  for (std::size_t place = 0; place < data.places; ++place) {
    std::vector<double> own;
    double sum = 0;
    for (std::size_t row = 0; row < data.rows; ++row) {
      own.push_back(data.value(row, place) * ((flips >> row) & 1U ? -1 : 1));
      sum += own.back();
    }
    means.push_back(sum / static_cast<double>(data.rows));
    variances.push_back(variance(own));
  }
  const auto smooth = smoothed(variances, voxels, 6);
  for (std::size_t i = 0; i < means.size(); ++i)
    means[i] /= std::sqrt(smooth[i] / static_cast<double>(data.rows));
  return means;
}

TEST(SmoothedVariance, GivesThePseudoTOfEveryFlip) {
  const auto voxels = someVoxels();
  const made::Data data = made::noise(5, voxels.size(), 2);
  TestOptions options = made::plain(32);
  options.varianceFwhmMm = 6;
  const auto result =
      runTest(made::oneSample(5), data.values(), spaceOfVoxels(kGrid, voxels, 6, kMm), options);
  const auto own = pseudoT(data, voxels, 0);
  std::vector<float> maxima;
  for (unsigned flips = 0; flips < 32; ++flips) {
    double largest = 0;
    for (const double t : pseudoT(data, voxels, flips)) largest = std::max(largest, std::abs(t));
    maxima.push_back(static_cast<float>(largest));
  }
  std::sort(maxima.begin(), maxima.end());
  for (std::size_t i = 0; i < voxels.size(); ++i) ASSERT_NEAR(result.t[i], own[i], 1e-4);
  for (std::size_t i = 0; i < 32; ++i) EXPECT_NEAR(result.nullZ.sorted[i], maxima[i], 1e-4);
}

TEST(SmoothedVariance, IsEnhancedAsIfItWereZ) {
  const made::Data data = made::noise(6, 64, 3);
  TestOptions options;
  options.shuffles = 20;
  options.varianceFwhmMm = 3;
  const auto result = runTest(made::oneSample(6), data.values(), made::cube(4), options);
  EXPECT_EQ(result.z, result.t);
  EXPECT_EQ(result.enhanced.size(), 64U);
}

}  // namespace
