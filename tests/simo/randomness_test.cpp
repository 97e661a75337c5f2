#include "simo/randomness.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <thread>
#include <vector>

namespace {

// Restores what a test changes of the time base.
class TimeBase : public testing::Test {
 protected:
  void SetUp() override { clear(); }
  void TearDown() override { clear(); }
  static void clear() {
    unsetenv("TAV_TIME_BASE");
    simo::setTimeBase(std::nullopt);
  }
};

std::vector<int> draw(int count) {
  std::vector<int> numbers;
  for (int i = 0; i < count; ++i) numbers.push_back(simo::randomStream().next());
  return numbers;
}

TEST(Randomness, DrawsTheNumbersOfTheCLibrary) {
  for (const unsigned seed : {0U, 1U, 2U, 42U, 1700000000U, 0x7fffffffU, 0x80000000U, 0xffffffffU}) {
    simo::randomStream().seed(seed);
    std::srand(seed);
    for (int i = 0; i < 2000; ++i)
      ASSERT_EQ(simo::randomStream().next(), std::rand()) << "seed " << seed << " draw " << i;
  }
}

TEST(Randomness, SpansTheRangeThatNormalNumbersRelyOn) {
  static_assert(RAND_MAX == simo::kRandomMax);
  simo::randomStream().seed(5);
  int lowest = simo::kRandomMax;
  int highest = 0;
  for (const int number : draw(20000)) {
    lowest = std::min(lowest, number);
    highest = std::max(highest, number);
  }
  EXPECT_LT(lowest, simo::kRandomMax / 1000);
  EXPECT_GT(highest, simo::kRandomMax - simo::kRandomMax / 1000);
  EXPECT_GE(lowest, 0);
}

TEST(Randomness, RestartsWithItsSeed) {
  simo::randomStream().seed(99);
  const std::vector<int> first = draw(400);
  simo::randomStream().seed(99);
  EXPECT_EQ(draw(400), first);
  simo::randomStream().seed(100);
  EXPECT_NE(draw(400), first);
}

TEST(Randomness, IsNotDisturbedByOthersWhoDraw) {
  simo::randomStream().seed(7);
  const std::vector<int> undisturbed = draw(10);
  simo::randomStream().seed(7);
  for (const int expected : undisturbed) {
    std::srand(static_cast<unsigned>(std::rand()));
    EXPECT_EQ(simo::randomStream().next(), expected);
  }
}

TEST(Randomness, HasOneSequencePerThreadThatStartsAsSeededWithOne) {
  simo::randomStream().seed(3);
  const std::vector<int> expectedHere = draw(50);
  simo::randomStream().seed(3);
  std::vector<int> elsewhere;
  std::thread([&] { elsewhere = draw(50); }).join();
  EXPECT_EQ(draw(50), expectedHere);
  simo::randomStream().seed(1);
  EXPECT_EQ(draw(50), elsewhere);
}

TEST(Randomness, SkipsAheadAndLetsACopyGoOnByItself) {
  simo::RandomStream drawn(12), skipped(12);
  for (int i = 0; i < 1000; ++i) static_cast<void>(drawn.next());
  skipped.skip(1000);
  simo::RandomStream copy = skipped;
  const int next = drawn.next();
  EXPECT_EQ(skipped.next(), next);
  EXPECT_EQ(copy.next(), next);
  EXPECT_EQ(copy.next(), skipped.next());
}

TEST(RandomStream, FarSkipsAreThoseOfTheNumbersBetween) {
  for (const std::uint64_t count : {19999U, 20000U, 20001U, 65536U, 1234567U}) {
    simo::RandomStream drawn(7), skipped(7);
    for (std::uint64_t i = 0; i < count + 5; ++i) static_cast<void>(drawn.next());
    skipped.skip(5);  // the ring does not stand at its start
    skipped.skip(count);
    for (int i = 0; i < 100; ++i) ASSERT_EQ(skipped.next(), drawn.next()) << count << ", " << i;
  }
}

TEST_F(TimeBase, IsTheWallClockSecondByDefault) {
  const auto before = static_cast<std::int64_t>(std::time(nullptr));
  const std::int64_t base = simo::timeBase();
  const auto after = static_cast<std::int64_t>(std::time(nullptr));
  EXPECT_LE(before, base);
  EXPECT_LE(base, after);
}

TEST_F(TimeBase, IsTakenFromTheEnvironment) {
  setenv("TAV_TIME_BASE", "1234567890123", 1);
  EXPECT_EQ(simo::timeBase(), 1234567890123);
  setenv("TAV_TIME_BASE", "-5", 1);
  EXPECT_EQ(simo::timeBase(), -5);
}

TEST_F(TimeBase, SetByTheProgramOutranksTheEnvironment) {
  setenv("TAV_TIME_BASE", "11", 1);
  simo::setTimeBase(22);
  EXPECT_EQ(simo::timeBase(), 22);
  simo::setTimeBase(std::nullopt);
  EXPECT_EQ(simo::timeBase(), 11);
}

TEST_F(TimeBase, IgnoresAMalformedEnvironment) {
  const auto before = static_cast<std::int64_t>(std::time(nullptr));
  for (const char* text : {"", "12x", " 12", "0x10", "1.5", "99999999999999999999"}) {
    setenv("TAV_TIME_BASE", text, 1);
    EXPECT_GE(simo::timeBase(), before) << '"' << text << '"';
    EXPECT_EQ(simo::parseTimeBase(text), std::nullopt) << '"' << text << '"';
  }
}

TEST(ParseTimeBase, TakesWholeNumbers) {
  EXPECT_EQ(simo::parseTimeBase("0"), 0);
  EXPECT_EQ(simo::parseTimeBase("-17"), -17);
  EXPECT_EQ(simo::parseTimeBase("9223372036854775807"), INT64_MAX);
}

}  // namespace
