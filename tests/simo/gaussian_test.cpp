#include "simo/gaussian.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "simo/randomness.h"

namespace {

constexpr int kBase = 1000;

// The polar method on srand and rand, written out with its roundings.
class LiteralNormals {
 public:
  explicit LiteralNormals(unsigned seed) { std::srand(static_cast<unsigned>(kBase) + seed); }

  std::vector<float> row(int count) {
    std::vector<float> numbers;
    while (count - static_cast<int>(numbers.size()) >= 2) {
      drawPair();
      numbers.push_back(first_);
      numbers.push_back(second_);
    }
    if (static_cast<int>(numbers.size()) < count) {
      drawPair();
      numbers.push_back(first_);
    }
    return numbers;
  }

 private:
  void drawPair() {
    float w1 = 0;
    double w2 = 0;
    double s = 0;
    do {
      const double u1 = std::rand() * 4.656612873077392578125e-10;
      const double u2 = std::rand() * 4.656612873077392578125e-10;
      w1 = static_cast<float>(2 * u1 - 1);
      w2 = 2 * u2 - 1;
      s = static_cast<double>(w1) * static_cast<double>(w1) + w2 * w2;
    } while (s >= 1 || s == 0);
    const auto f = static_cast<float>(std::sqrt(-2 * std::log(s) / s));
    first_ = w1 * f;
    second_ = static_cast<float>(w2 * static_cast<double>(f));
  }

  float first_ = 0;
  float second_ = 0;
};

class Randn : public testing::Test {
 protected:
  void SetUp() override { simo::setTimeBase(kBase); }
  void TearDown() override { simo::setTimeBase(std::nullopt); }
};

TEST_F(Randn, FollowsThePolarMethodDrawByDraw) {
  for (const unsigned seed : {0U, 1U, 999U, 0xffffffffU})
    for (const int columns : {1, 2, 3, 400, 401}) {
      simo::Matrix<float> m(3, columns, 1, 1);
      simo::randn(m, 1, 4, 1, columns + 1, seed);
      LiteralNormals literal(seed);
      for (int r = 1; r <= 3; ++r) {
        const std::vector<float> expected = literal.row(columns);
        for (int c = 0; c < columns; ++c)
          ASSERT_EQ(m[r][1 + c], expected[static_cast<std::size_t>(c)]) << seed << ' ' << r << ' ' << c;
      }
      // Both generators stand at the same draw.
      EXPECT_EQ(simo::randomStream().next(), std::rand());
    }
}

TEST_F(Randn, OfASingleColumnTakesOnePairPerRow) {
  simo::Matrix<float> column(4, 1, 0, 0);
  simo::randn(column, 0, 4, 0, 1, 6);
  simo::Matrix<float> pairs(1, 8, 0, 0);
  simo::randn(pairs, 0, 1, 0, 8, 6);
  for (int r = 0; r < 4; ++r) EXPECT_EQ(column[r][0], pairs[0][2 * r]);
}

TEST_F(Randn, OfAnOddNumberOfColumnsEndsWithTheFirstOfAnotherPair) {
  simo::Matrix<float> odd(2, 3, 0, 0);
  simo::randn(odd, 0, 2, 0, 3, 6);
  simo::Matrix<float> even(1, 8, 0, 0);
  simo::randn(even, 0, 1, 0, 8, 6);
  for (int c = 0; c < 3; ++c) {
    EXPECT_EQ(odd[0][c], even[0][c]);
    EXPECT_EQ(odd[1][c], even[0][4 + c]);
  }
}

TEST_F(Randn, TouchesItsBlockAlone) {
  simo::Matrix<float> m(4, 5, 0, 0, -99.F);
  simo::randn(m, 1, 3, 2, 4, 1);
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 5; ++c)
      EXPECT_EQ(m[r][c] != -99.F, r >= 1 && r < 3 && c >= 2 && c < 4) << r << ' ' << c;
}

TEST_F(Randn, SeedsEvenWhenThereIsNothingToFill) {
  simo::Matrix<float> m(1, 2, 0, 0, 5.F);
  for (const auto& [rowEnd, colEnd] : {std::pair{0, 2}, std::pair{1, 0}}) {
    simo::randn(m, 0, rowEnd, 0, colEnd, 3);
    std::srand(kBase + 3);
    EXPECT_EQ(simo::randomStream().next(), std::rand());
  }
  EXPECT_EQ(m[0][0], 5.F);
}

TEST_F(Randn, DependsOnTimeBaseAndSeedThroughTheirSumAlone) {
  simo::Matrix<float> a(1, 10, 0, 0);
  simo::Matrix<float> b(1, 10, 0, 0);
  simo::randn(a, 0, 1, 0, 10, 7);
  simo::setTimeBase(kBase + 5);
  simo::randn(b, 0, 1, 0, 10, 2);
  for (int c = 0; c < 10; ++c) EXPECT_EQ(a[0][c], b[0][c]);
  simo::randn(b, 0, 1, 0, 10, 3);
  EXPECT_NE(a[0][0], b[0][0]);
}

TEST_F(Randn, IsStandardNormal) {
  const int count = 200000;
  simo::Matrix<float> m(1, count, 0, 0);
  simo::randn(m, 0, 1, 0, count, 0);
  double sums[5] = {0, 0, 0, 0, 0};
  int within = 0;
  for (int c = 0; c < count; ++c) {
    double power = 1;
    for (double& sum : sums) {
      sum += power;
      power *= static_cast<double>(m[0][c]);
    }
    within += std::abs(m[0][c]) < 1.F ? 1 : 0;
  }
  // Moments 0, 1, 0, 3 with variances 1, 2, 15, 96 over N; five standard deviations.
  const double expected[] = {1, 0, 1, 0, 3};
  const double variance[] = {0, 1, 2, 15, 96};
  for (int k = 1; k <= 4; ++k) EXPECT_NEAR(sums[k] / count, expected[k], 5 * std::sqrt(variance[k] / count));
  EXPECT_NEAR(static_cast<double>(within) / count, 0.6826895, 5 * std::sqrt(0.6827 * 0.3173 / count));
}

}  // namespace
