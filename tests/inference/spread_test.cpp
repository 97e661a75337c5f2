#include "inference/spread.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/inference/made_data.h"

namespace {

using namespace inference;

// Noise whose rows from `first` on have `times` the standard deviation.
made::Data unequal(std::size_t rows, std::size_t first, float times, unsigned seed) {
  made::Data data = made::noise(rows, 300, seed);
  for (std::size_t row = first; row < rows; ++row)
    for (std::size_t place = 0; place < data.places; ++place) data.of(row, place) *= times;
  return data;
}

int doubtful(float times, int sets) {
  int count = 0;
  for (int i = 0; i < sets; ++i) {
    const made::Data data = unequal(16, 8, times, static_cast<unsigned>(i));
    const auto found = checkSpread(made::twoSamples(16), data.values(), {}, static_cast<unsigned>(i));
    count += found->isDoubtful() ? 1 : 0;
  }
  return count;
}

TEST(Spread, IsRarelyDoubtedOfEqualGroups) {
  EXPECT_LE(doubtful(1, 60), 3);
}

TEST(Spread, IsDoubtedOfUnequalOnes) {
  EXPECT_GE(doubtful(3, 20), 19);
}

TEST(Spread, IsTheRatioOfTheFirstGroupToTheSecond) {
  const made::Data data = unequal(40, 20, 2, 7);
  const auto found = checkSpread(made::twoSamples(40), data.values(), {}, 1);
  EXPECT_NEAR(found->ratio, 0.5, 0.03);
  EXPECT_EQ(found->p, 1.0 / 500);
}

TEST(Spread, DoesNotTakeAShiftForSpread) {
  made::Data data = made::noise(16, 300, 3);
  for (std::size_t row = 0; row < 8; ++row)
    for (std::size_t place = 0; place < data.places; ++place) data.of(row, place) += 50;
  EXPECT_NEAR(checkSpread(made::twoSamples(16), data.values(), {}, 1)->ratio, 1, 0.2);
}

// Two sites of different spread, half of both groups at each: no shuffle within sites changes that.
TEST(Spread, ShufflesWithinBlocksAlone) {
  made::Data data = made::noise(16, 300, 5);
  std::vector<int> blocks(16);
  for (std::size_t row = 0; row < 16; ++row) {
    blocks[row] = row % 8 < 2 ? 1 : 2;
    if (blocks[row] == 1)
      for (std::size_t place = 0; place < data.places; ++place) data.of(row, place) *= 5;
  }
  EXPECT_FALSE(checkSpread(made::twoSamples(16), data.values(), blocks, 1)->isDoubtful());
}

TEST(Spread, NeedsTwoGroupsOfTwo) {
  const made::Data data = made::noise(4, 10, 1);
  EXPECT_FALSE(checkSpread(made::oneSample(4), data.values(), {}, 1)) << "one group";
  EXPECT_FALSE(checkSpread({{"mean", "age"}, {1, 20, 1, 30, 1, 40, 1, 50}, {0, 1}}, data.values(), {}, 1));
  EXPECT_FALSE(checkSpread({{"a", "b"}, {1, 0, 0, 1, 0, 1, 0, 1}, {1, -1}}, data.values(), {}, 1))
      << "one row";
  const made::Data none{4, 2, std::vector<float>(8, made::kNothing)};
  EXPECT_FALSE(checkSpread(made::twoSamples(4), none.values(), {}, 1)) << "no values";
}

}  // namespace
