#include "inference/level.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using inference::isWithin;

TEST(Level, AdmitsPThatEqualsIt) {
  for (const double level : {0.05, 0.01, 0.001, 0.1, 0.2}) {
    const auto p = static_cast<float>(level);
    EXPECT_TRUE(isWithin(p, level)) << level;
    EXPECT_FALSE(isWithin(std::nextafter(p, 1.0F), level)) << level;
  }
}

// The next possible p of a million shuffles.
TEST(Level, RefusesTheNextPAbove) {
  EXPECT_FALSE(isWithin(static_cast<float>(50'001.0 / 1e6), 0.05));
}

TEST(Level, AdmitsNothingThatIsNoNumber) {
  EXPECT_FALSE(isWithin(std::nanf(""), 0.05));
}

}  // namespace
