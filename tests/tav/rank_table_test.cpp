#include "tav/rank_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "tav/radix_sort.h"

namespace {

using Numbers = std::vector<std::uint32_t>;

constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();

// The same counts when many values are tallied together.
void expectTallies(const Numbers& ascending, const Numbers& values) {
  Numbers expected(ascending.size() + 1, 0);
  for (const std::uint32_t value : values)
    ++expected[static_cast<std::size_t>(std::upper_bound(ascending.begin(), ascending.end(), value) -
                                        ascending.begin())];
  tav::RankTable table(ascending);
  table.tally({values.data(), values.size() / 3});
  table.tally({values.data() + values.size() / 3, values.size() - values.size() / 3});
  for (std::size_t rank = 0; rank <= ascending.size(); ++rank)
    ASSERT_EQ(table.tallied(rank), expected[rank]) << rank;
}

// Every count at every number, beside it and at the ends of the range.
void expectCounts(Numbers numbers) {
  std::sort(numbers.begin(), numbers.end());
  Numbers asked = {0, 1, kLargest - 1, kLargest};
  for (const std::uint32_t number : numbers)
    for (const std::uint32_t value : {number - 1, number, number + 1}) asked.push_back(value);
  const tav::RankTable table(numbers);
  ASSERT_EQ(table.size(), numbers.size());
  for (const std::uint32_t value : asked) {
    const auto below = std::lower_bound(numbers.begin(), numbers.end(), value) - numbers.begin();
    const auto upTo = std::upper_bound(numbers.begin(), numbers.end(), value) - numbers.begin();
    ASSERT_EQ(table.countBelow(value), static_cast<std::size_t>(below)) << value;
    ASSERT_EQ(table.countUpTo(value), static_cast<std::size_t>(upTo)) << value;
  }
  expectTallies(numbers, asked);
}

TEST(RankTable, CountsWhereThereAreNoneOrOne) {
  expectCounts({});
  expectCounts({0});
  expectCounts({17});
  expectCounts({kLargest});
}

TEST(RankTable, CountsOverTheWholeRangeOfNumbers) {
  std::mt19937 random(1);
  Numbers numbers = {0, kLargest};
  for (int i = 0; i < 3000; ++i) numbers.push_back(static_cast<std::uint32_t>(random()));
  expectCounts(numbers);
}

TEST(RankTable, CountsWhereNumbersCrowd) {
  std::mt19937 random(2);
  Numbers numbers = {5, 4'000'000'000U};
  for (int i = 0; i < 3000; ++i) numbers.push_back(1'000'000 + static_cast<std::uint32_t>(random() % 2000));
  expectCounts(numbers);
}

TEST(RankTable, CountsAmongEqualNumbers) {
  Numbers numbers(1000, 70);
  numbers.insert(numbers.end(), {69, 71, 90});
  expectCounts(numbers);
}

TEST(RadixSort, OrdersByTheKeyAndKeepsTheOrderOfEqualOnes) {
  std::mt19937 random(3);
  using Pair = std::pair<std::uint32_t, int>;
  std::vector<Pair> pairs;
  for (int i = 0; i < 5000; ++i) {
    const auto number = static_cast<std::uint32_t>(random());
    pairs.emplace_back(i % 2 == 0 ? number % 50 : number, i);
  }
  std::vector<Pair> sorted = pairs;
  tav::radixSort(sorted, [](const Pair& pair) { return pair.first; });
  std::stable_sort(pairs.begin(), pairs.end(),
                   [](const Pair& a, const Pair& b) { return a.first < b.first; });
  EXPECT_EQ(sorted, pairs);
}

TEST(RadixSort, SortsNothing) {
  Numbers none;
  tav::radixSort(none, [](std::uint32_t number) { return number; });
  EXPECT_TRUE(none.empty());
}

}  // namespace
