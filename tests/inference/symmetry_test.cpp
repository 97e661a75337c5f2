#include "inference/symmetry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

#include "tests/inference/made_data.h"

namespace {

using namespace inference;

// Maps of 500 places; neighbouring ones share half of their noise.
made::Data mapsOf(std::size_t rows, unsigned seed, const std::function<double(std::mt19937&)>& draw) {
  std::mt19937 random(seed);
  made::Data data{rows, 500, std::vector<float>(rows * 500)};
  for (std::size_t row = 0; row < rows; ++row) {
    double last = draw(random);
    for (std::size_t place = 0; place < 500; ++place) {
      const double own = draw(random);
      data.of(row, place) = static_cast<float>(own + last + 3);
      last = own;
    }
  }
  return data;
}

int doubtful(std::size_t rows, int sets, const std::function<double(std::mt19937&)>& draw) {
  int count = 0;
  for (int i = 0; i < sets; ++i) {
    const made::Data data = mapsOf(rows, static_cast<unsigned>(i), draw);
    count +=
        checkSymmetry(made::oneSample(rows), data.values(), static_cast<unsigned>(i)).isDoubtful() ? 1 : 0;
  }
  return count;
}

TEST(Symmetry, IsRarelyDoubtedOfSymmetricNoise) {
  EXPECT_LE(doubtful(16, 60, [](auto& random) { return std::normal_distribution<double>()(random); }), 4);
  EXPECT_LE(doubtful(12, 60, [](auto& random) { return std::student_t_distribution<double>(4)(random); }), 4);
}

TEST(Symmetry, OfSymmetricNoiseIsWhatFlipsGive) {
  double found = 0, expected = 0;
  for (unsigned i = 0; i < 20; ++i) {
    const made::Data data =
        mapsOf(16, i, [](auto& random) { return std::normal_distribution<double>()(random); });
    const Symmetry symmetry = checkSymmetry(made::oneSample(16), data.values(), i);
    found += symmetry.regionalSkewness;
    expected += symmetry.expected;
  }
  EXPECT_NEAR(found / expected, 1, 0.1);
}

TEST(Symmetry, IsDoubtedOfSkewedNoise) {
  EXPECT_GE(doubtful(16, 20, [](auto& random) { return std::exponential_distribution<double>()(random); }),
            18);
  EXPECT_GE(doubtful(8, 20, [](auto& random) { return -std::exponential_distribution<double>()(random); }),
            15);
}

TEST(Symmetry, HasTheMeanSkewnessOfTheMaps) {
  made::Data data{4, 1, {1, 2, 3, 10}};
  // Residuals -3 -2 -1 6: third moment (216 - 27 - 8 - 1) / 4 = 45, second 12.5.
  EXPECT_NEAR(checkSymmetry(made::oneSample(4), data.values(), 1).meanSkewness, 45 / std::pow(12.5, 1.5),
              1e-5);
}

// Sides that differ between regions leave no mean.
TEST(Symmetry, IsDoubtedWhereHalfTheMapIsSkewedTheOtherWay) {
  made::Data data =
      mapsOf(20, 5, [](auto& random) { return std::exponential_distribution<double>()(random); });
  for (std::size_t row = 0; row < 20; ++row)
    for (std::size_t place = 0; place < 250; ++place) data.of(row, place) *= -1;
  const Symmetry found = checkSymmetry(made::oneSample(20), data.values(), 1);
  EXPECT_LT(std::abs(found.meanSkewness), 0.2);
  EXPECT_GT(found.regionalSkewness, 2 * found.expected);
  EXPECT_TRUE(found.isDoubtful());
}

TEST(Symmetry, IsNotAskedOfMapsWithoutCompletePlaces) {
  const made::Data data{4, 1, {1, 2, made::kNothing, 10}};
  EXPECT_EQ(checkSymmetry(made::oneSample(4), data.values(), 1).p, 1);
}

}  // namespace
