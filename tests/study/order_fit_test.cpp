#include "study/order_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace study {
namespace {

// x: AR(3) driving y at lag 2; both with unit innovations.
struct Pair {
  explicit Pair(int volumes, unsigned seed) : x(1, volumes, 1, 1), y(1, volumes, 1, 1) {
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal;
    std::vector<double> a(4, 0), b(4, 0);
    for (int t = -200; t < volumes; ++t) {
      const double nextA = 0.3 * a[0] - 0.2 * a[1] + 0.45 * a[2] + normal(generator);
      const double nextB = 0.4 * b[0] + 0.5 * a[1] + normal(generator);
      a = {nextA, a[0], a[1], a[2]};
      b = {nextB, b[0], b[1], b[2]};
      if (t >= 0) x[1][t + 1] = static_cast<float>(nextA), y[1][t + 1] = static_cast<float>(nextB);
    }
  }
  simo::Matrix<float> x, y;
};

TEST(OrderFit, CriteriaFindTheOrderOfAKnownProcess) {
  const Pair pair(3000, 1);
  OrderFit fit(8, 3000);
  fit.begin();
  fit.addInterval(pair.x, pair.y, {1, 3000});
  std::vector<double> own, joint;
  ASSERT_TRUE(fit.ownFit(own));
  ASSERT_TRUE(fit.jointFit(joint));
  EXPECT_EQ(bestOrder(criteriaOf(own, 1, 3000).bic), 3);
  EXPECT_EQ(bestOrder(criteriaOf(own, 1, 3000).hqc), 3);
  EXPECT_GE(bestOrder(criteriaOf(own, 1, 3000).aic), 3);
  EXPECT_EQ(bestOrder(criteriaOf(joint, 4, 3000).bic), 3);
  // Unit innovations: ln|E| tends to 0.
  EXPECT_NEAR(own[2], 0, 0.1);
  EXPECT_NEAR(joint[2], 0, 0.15);
}

TEST(OrderFit, ErrorsFallWithTheOrder) {
  const Pair pair(400, 2);
  OrderFit fit(10, 400);
  fit.begin();
  fit.addInterval(pair.x, pair.y, {1, 200});
  fit.addInterval(pair.x, pair.y, {211, 400});
  std::vector<double> joint;
  ASSERT_TRUE(fit.jointFit(joint));
  for (std::size_t i = 1; i < joint.size(); ++i) EXPECT_LE(joint[i], joint[i - 1] + 1e-5);
}

TEST(OrderFit, ConstantSeriesHaveNoModel) {
  const simo::Matrix<float> flat(1, 50, 1, 1, 7.0F);
  OrderFit fit(2, 50);
  fit.begin();
  fit.addInterval(flat, flat, {1, 50});
  std::vector<double> curve;
  EXPECT_FALSE(fit.jointFit(curve));
  fit.begin();
  EXPECT_FALSE(fit.ownFit(curve));
}

TEST(OrderFit, CriteriaArePenalisedLogErrors) {
  const Criteria criteria = criteriaOf({-1.0, -1.1}, 4, 100);
  EXPECT_DOUBLE_EQ(criteria.bic[1], -1.1 + std::log(100.0) * 8 / 100);
  EXPECT_DOUBLE_EQ(criteria.aic[0], -1.0 + 2 * 4 / 100.0);
  EXPECT_DOUBLE_EQ(criteria.hqc[0], -1.0 + 2 * std::log(std::log(100.0)) * 4 / 100);
}

TEST(OrderFit, TheLowestOfEqualsWins) {
  EXPECT_EQ(bestOrder({2, 1, 1, 3}), 2);
  EXPECT_EQ(bestOrder({}), 1);
}

TEST(OrderFit, CurvesAddUpWithTheirWeights) {
  Criteria sum;
  accumulate(sum, criteriaOf({1.0}, 1, 50), 0.5);
  accumulate(sum, criteriaOf({3.0}, 1, 50), 0.5);
  EXPECT_DOUBLE_EQ(sum.aic[0], 2.0 + 2.0 / 50);
}

}  // namespace
}  // namespace study
