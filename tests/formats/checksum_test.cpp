#include "formats/checksum.h"

#include <gtest/gtest.h>

#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace {

// The examples of the standard, FIPS 180-4.
TEST(Sha256, HasTheDigestsOfTheStandard) {
  Scratch scratch;
  EXPECT_EQ(formats::sha256Of(scratch.write("empty", "")),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(formats::sha256Of(scratch.write("abc", "abc")),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(formats::sha256Of(scratch.write("million", std::string(1000000, 'a'))),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Sha256, ReadsBeyondOneBlock) {
  Scratch scratch;
  const std::string block(std::size_t{1} << 20U, 'x');
  EXPECT_NE(formats::sha256Of(scratch.write("one", block)),
            formats::sha256Of(scratch.write("two", block + "y")));
}

TEST(Sha256, NamesAFileThatIsNotThere) {
  EXPECT_EQ(reasonOf([] { return formats::sha256Of("/nowhere/x"); }),
            "it cannot be opened. Check the name and the permissions.");
}

}  // namespace
