#include "inference/shuffles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "tests/inference/made_data.h"

namespace {

using namespace inference;

TEST(Shuffles, BeginWithTheDataAsTheyAre) {
  for (const Exchange exchange : {Exchange::kSignFlips, Exchange::kPermutations})
    for (const int asked : {50, 10000}) {
      const Shuffle first = Shuffles(made::twoSamples(6), exchange, {}, asked, 3).at(0);
      EXPECT_EQ(first.from, (std::vector<int>{0, 1, 2, 3, 4, 5}));
      EXPECT_EQ(first.sign, (std::vector<int>{1, 1, 1, 1, 1, 1}));
    }
}

TEST(Shuffles, ListEveryFlipOnce) {
  const Shuffles shuffles(made::oneSample(5), Exchange::kSignFlips, {}, 32, 1);
  EXPECT_TRUE(shuffles.isExhaustive());
  ASSERT_EQ(shuffles.count(), 32U);
  std::set<std::vector<int>> signs;
  for (std::size_t i = 0; i < 32; ++i) signs.insert(shuffles.at(i).sign);
  EXPECT_EQ(signs.size(), 32U);
  EXPECT_FALSE(Shuffles(made::oneSample(5), Exchange::kSignFlips, {}, 31, 1).isExhaustive());
  EXPECT_EQ(Shuffles(made::oneSample(5), Exchange::kSignFlips, {}, 31, 1).count(), 32U);
}

// Six of two groups: 20 ways to choose the first; of 720 permutations the others repeat them.
TEST(Shuffles, ListEveryDivisionIntoGroupsOnce) {
  const Shuffles shuffles(made::twoSamples(6), Exchange::kPermutations, {}, 20, 1);
  EXPECT_TRUE(shuffles.isExhaustive());
  ASSERT_EQ(shuffles.count(), 20U);
  std::set<std::set<int>> groups;
  for (std::size_t i = 0; i < 20; ++i) {
    const Shuffle shuffle = shuffles.at(i);
    groups.insert({shuffle.from[0], shuffle.from[1], shuffle.from[2]});
    EXPECT_TRUE(std::is_permutation(shuffle.from.begin(), shuffle.from.end(), shuffles.at(0).from.begin()));
  }
  EXPECT_EQ(groups.size(), 20U);
}

TEST(Shuffles, StayWithinBlocks) {
  const std::vector<int> blocks = {4, 9, 9, 4, 4, 9};  // with rows 0 | 1 2 of the first group
  const Shuffles listed(made::twoSamples(6), Exchange::kPermutations, blocks, 1000, 1);
  EXPECT_EQ(listed.count(), 9U);  // 3 by 3
  const Shuffles drawn(made::twoSamples(6), Exchange::kPermutations, blocks, 8, 1);
  EXPECT_FALSE(drawn.isExhaustive());
  for (const Shuffles* shuffles : {&listed, &drawn})
    for (std::size_t i = 0; i < shuffles->count(); ++i)
      for (std::size_t row = 0; row < 6; ++row)
        EXPECT_EQ(blocks[static_cast<std::size_t>(shuffles->at(i).from[row])], blocks[row]);
}

TEST(Shuffles, TurnABlocksRowsTogether) {
  const Shuffles shuffles(made::oneSample(6), Exchange::kSignFlips, {1, 2, 1, 2, 3, 3}, 100, 1);
  EXPECT_EQ(shuffles.count(), 8U);
  for (std::size_t i = 0; i < 8; ++i) {
    const auto sign = shuffles.at(i).sign;
    EXPECT_EQ(sign[0], sign[2]);
    EXPECT_EQ(sign[1], sign[3]);
    EXPECT_EQ(sign[4], sign[5]);
  }
}

TEST(Shuffles, FollowFromTheSeedAndTheirIndex) {
  const Shuffles a(made::oneSample(20), Exchange::kSignFlips, {}, 100, 5),
      longer(made::oneSample(20), Exchange::kSignFlips, {}, 900, 5),
      other(made::oneSample(20), Exchange::kSignFlips, {}, 100, 6);
  EXPECT_EQ(a.at(77).sign, longer.at(77).sign);
  EXPECT_NE(a.at(77).sign, other.at(77).sign);
  EXPECT_NE(a.at(77).sign, a.at(78).sign);
}

TEST(Shuffles, DrawEveryPermutationAsOften) {
  Model model = made::oneSample(4);
  model.design = {1, 2, 4, 8};
  model.columns = {"age"};
  const Shuffles shuffles(model, Exchange::kPermutations, {}, 23, 7);  // of 24: drawn
  std::map<std::vector<int>, int> counts;
  for (std::uint32_t seed = 0; seed < 1200; ++seed)
    for (std::size_t i = 1; i <= 10; ++i)
      ++counts[Shuffles(model, Exchange::kPermutations, {}, 23, seed).at(i).from];
  ASSERT_EQ(counts.size(), 24U);
  for (const auto& [from, count] : counts) EXPECT_NEAR(count, 500, 110);  // 5 standard deviations
}

}  // namespace
