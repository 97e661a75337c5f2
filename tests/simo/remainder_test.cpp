#include "simo/remainder.h"

#include <gtest/gtest.h>

#include <random>

namespace {

TEST(Remainder, IsThatOfTheDivision) {
  std::mt19937 random(1);
  for (const std::uint32_t divisor :
       {1U, 2U, 3U, 7U, 10U, 1000U, 1024U, 65535U, 65536U, 2147483647U, 2147483648U, 4294967295U}) {
    const simo::Remainder remainder(divisor);
    for (const std::uint32_t n : {0U, 1U, divisor - 1, divisor, divisor + 1, 2147483647U, 4294967295U})
      EXPECT_EQ(remainder(n), n % divisor) << n << " by " << divisor;
    for (int i = 0; i < 10000; ++i) {
      const auto n = static_cast<std::uint32_t>(random());
      ASSERT_EQ(remainder(n), n % divisor) << n << " by " << divisor;
    }
  }
}

TEST(Remainder, OfRandomDivisors) {
  std::mt19937 random(2);
  for (int i = 0; i < 100000; ++i) {
    const auto divisor = static_cast<std::uint32_t>(random()) >> (i % 32),
               n = static_cast<std::uint32_t>(random());
    if (divisor == 0) continue;
    ASSERT_EQ(simo::Remainder(divisor)(n), n % divisor) << n << " by " << divisor;
  }
}

TEST(Remainder, ByNothingIsNothing) {
  EXPECT_EQ(simo::Remainder(0)(7), 0U);
}

}  // namespace
