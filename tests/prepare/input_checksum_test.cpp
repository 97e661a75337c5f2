#include "prepare/input_checksum.h"

#include <gtest/gtest.h>

#include "formats/checksum.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

namespace fs = std::filesystem;

fs::path onlyKept(const Scratch& scratch) {
  return fs::directory_iterator(scratch.folder() / "work" / "checksums")->path();
}

TEST(InputChecksum, IsThatOfTheBytesAndIsKept) {
  Scratch scratch;
  const fs::path file = scratch.write("a.nii", "abc"), work = scratch.folder() / "work";
  EXPECT_EQ(inputChecksum(file, work), formats::sha256Of(file.string()));
  std::ofstream(onlyKept(scratch)) << std::string(64, 'f') << "\n";
  EXPECT_EQ(inputChecksum(file, work), std::string(64, 'f'));  // not read again
}

TEST(InputChecksum, AChangedFileIsReadAgain) {
  Scratch scratch;
  const fs::path file = scratch.write("a.nii", "abc"), work = scratch.folder() / "work";
  const std::string before = inputChecksum(file, work);
  scratch.write("a.nii", "abcd");
  EXPECT_NE(inputChecksum(file, work), before);
}

TEST(InputChecksum, WhatIsNotWholeIsMadeAgain) {
  Scratch scratch;
  const fs::path file = scratch.write("a.nii", "abc"), work = scratch.folder() / "work";
  const std::string whole = inputChecksum(file, work);
  std::ofstream(onlyKept(scratch)) << whole.substr(1);
  EXPECT_EQ(inputChecksum(file, work), whole);
  EXPECT_EQ(contentOf(onlyKept(scratch)), whole + "\n");
}

}  // namespace
}  // namespace study
