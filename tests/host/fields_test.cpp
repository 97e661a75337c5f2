#include "host/fields.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(FillField, CopiesAndZeroesTheRest) {
  char field[8];
  std::memset(field, 'x', sizeof field);
  host::fillField("abc", field);
  EXPECT_EQ(std::memcmp(field, "abc\0\0\0\0", 8), 0);
}

TEST(FillField, CutsALongTextAndEndsIt) {
  char field[4];
  host::fillField("abcdef", field);
  EXPECT_STREQ(field, "abc");
  host::fillField("abc", field);
  EXPECT_STREQ(field, "abc");
}

TEST(FillField, NeverCutsThroughACharacter) {
  char field[4];
  host::fillField("abé", field);  // the last character has two bytes
  EXPECT_STREQ(field, "ab");
  host::fillField("aé", field);
  EXPECT_STREQ(field, "aé");
}

}  // namespace
