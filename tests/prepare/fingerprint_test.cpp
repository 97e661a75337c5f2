#include "prepare/fingerprint.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <set>

#include "tests/support/scratch.h"

namespace study {
namespace {

TEST(Fingerprint, DependsOnNamesValuesAndTheirLimits) {
  std::set<std::string> keys;
  keys.insert(Fingerprint().add("a", "bc").hex());
  keys.insert(Fingerprint().add("ab", "c").hex());
  keys.insert(Fingerprint().add("a", "b").add("c", "").hex());
  keys.insert(Fingerprint().add("a", 1).hex());
  keys.insert(Fingerprint().add("a", 1.0000000000000002).hex());
  keys.insert(Fingerprint().add("a", "").hex());
  EXPECT_EQ(keys.size(), 6U);
  EXPECT_EQ(Fingerprint().add("a", 0.1).hex(), Fingerprint().add("a", 0.1).hex());
  EXPECT_EQ(Fingerprint().hex().size(), 32U);
}

TEST(Fingerprint, ChangesWithTheFile) {
  Scratch scratch;
  const auto file = scratch.write("x", "abc");
  const std::string before = Fingerprint().addFile("f", file).hex();
  EXPECT_EQ(Fingerprint().addFile("f", file).hex(), before);
  scratch.write("x", "abcd");
  EXPECT_NE(Fingerprint().addFile("f", file).hex(), before);
  std::filesystem::remove(file);
  EXPECT_NE(Fingerprint().addFile("f", file).hex(), before);
  EXPECT_NE(Fingerprint().addFile("f", "").hex(), before);
}

// Copying may keep the time of a file that was cut short.
TEST(Fingerprint, ChangesWithTheSizeOfTheFileAtTheSameTime) {
  const Scratch scratch;
  const auto file = scratch.write("x", "abc");
  const auto time = std::filesystem::last_write_time(file);
  const std::string before = Fingerprint().addFile("f", file).hex();
  scratch.write("x", "ab");
  std::filesystem::last_write_time(file, time);
  EXPECT_NE(Fingerprint().addFile("f", file).hex(), before);
  scratch.write("x", "abc");
  std::filesystem::last_write_time(file, time);
  EXPECT_EQ(Fingerprint().addFile("f", file).hex(), before);
}

// A file of equal size may have changed all the same; its time says so, down to nanoseconds.
TEST(Fingerprint, ChangesWithTheTimeOfTheFile) {
  const Scratch scratch;
  const auto file = scratch.write("x", "abc");
  const auto at = [&](time_t seconds, long nanoseconds) {
    const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
    EXPECT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    return Fingerprint().addFile("f", file).hex();
  };
  const std::string before = at(1700000000, 5000);
  EXPECT_EQ(at(1700000000, 5000), before);
  EXPECT_NE(at(1700000001, 5000), before);
  EXPECT_NE(at(1700000000, 6000), before);
}

TEST(DerivedSeed, DiffersByNameAndSeedAndFitsInto31Bits) {
  std::set<std::uint32_t> seeds;
  for (std::uint32_t seed = 0; seed < 50; ++seed) {
    for (const char* name : {"V1", "V2", ""}) {
      seeds.insert(derivedSeed(seed, name));
      EXPECT_LT(derivedSeed(seed, name), 0x80000000U);
    }
  }
  EXPECT_EQ(seeds.size(), 150U);
}

}  // namespace
}  // namespace study
