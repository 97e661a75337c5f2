#include "host/lent_array.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using host::LentArray;

TEST(LentArray, HoldsZerosAndIsIntactWhatIsWrittenInside) {
  LentArray<float> array(3);
  for (float value : array) EXPECT_EQ(value, 0.0F);
  array.data()[0] = array.data()[2] = -1.0F;
  EXPECT_TRUE(array.intact());
  EXPECT_TRUE(LentArray<float>(0).intact());
}

TEST(LentArray, NoticesAWriteBeyondEitherEnd) {
  LentArray<char> after(4);
  after.data()[4] = 'x';
  EXPECT_FALSE(after.intact());
  LentArray<float> before(4);
  before.data()[-1] = 0.0F;
  EXPECT_FALSE(before.intact());
}

TEST(LentArray, KeepsItsAddressWhenMoved) {
  LentArray<float> array(2);
  const float* address = array.data();
  const LentArray<float> moved = std::move(array);
  EXPECT_EQ(moved.data(), address);
}

}  // namespace
