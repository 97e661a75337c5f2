#include "simo/vector.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "simo/matrix.h"

namespace {

// An element that writes down its own destruction, and whose copies fail from a given one on.
struct Witness {
  static inline std::vector<int> destroyed;
  static inline int copies = 0;
  static inline int failingCopy = -1;
  int number = -1;

  Witness() = default;
  Witness(const Witness&) : number(copies) {
    if (copies == failingCopy) throw std::runtime_error("copy");
    ++copies;
  }
  Witness& operator=(const Witness&) = delete;
  ~Witness() {
    if (number >= 0) destroyed.push_back(number);
  }
  static void reset(int failing) {
    destroyed.clear();
    copies = 0;
    failingCopy = failing;
  }
};

TEST(Vector, CountsFromItsBase) {
  simo::Vector<float> v(3, 5, 1.5F);
  EXPECT_EQ(v.n, 3);
  EXPECT_EQ(v.base, 5);
  EXPECT_EQ(v.end, 8);
  v[7] = 4.F;
  EXPECT_EQ(v.data[5], 1.5F);
  EXPECT_EQ(&v[7], &v[5] + 2);
  EXPECT_EQ(v[7], 4.F);
}

TEST(Vector, OfMatricesGivesEachElementItsOwnStorage) {
  simo::Vector<simo::Matrix<float>> v(2, 1, simo::Matrix<float>(2, 2, 0, 3, 1.F));
  v[1][0][3] = 7.F;
  EXPECT_EQ(v[2][0][3], 1.F);
  EXPECT_EQ(v[2].colBase, 3);
}

TEST(Vector, WithoutElementsHoldsNothing) {
  const simo::Vector<float> v(0, 4, 1.F);
  EXPECT_EQ(v.data, nullptr);
  EXPECT_EQ(v.end, 4);
}

TEST(Vector, DestroysItsElementsInAscendingOrder) {
  Witness::reset(-1);
  { const simo::Vector<Witness> v(3, -1, Witness()); }
  EXPECT_EQ(Witness::destroyed, (std::vector<int>{0, 1, 2}));
}

TEST(Vector, ReleasesWhatItMadeWhenAnElementFails) {
  Witness::reset(2);
  EXPECT_THROW(simo::Vector<Witness>(3, 0, Witness()), std::runtime_error);
  EXPECT_EQ(Witness::destroyed.size(), 2U);
}

}  // namespace
