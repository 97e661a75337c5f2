#include "live/kept_store.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// The lengths of the maps.
std::vector<std::size_t> lengthsAfter(std::vector<std::vector<float>>& maps, const tav::MapSetShape& shape) {
  std::ostringstream errors;
  live::KeptStore store(maps);
  EXPECT_TRUE(store.create(shape, errors));
  EXPECT_EQ(errors.str(), "");
  std::vector<std::size_t> lengths;
  for (const std::vector<float>& map : maps) lengths.push_back(map.size());
  return lengths;
}

using Lengths = std::vector<std::size_t>;

TEST(KeptStore, HasAValuePerCellOfTheBox) {
  std::vector<std::vector<float>> maps;
  EXPECT_EQ(lengthsAfter(maps, {2, {0, 12, 0, 10, 0, 8, 1}, {}}), (Lengths{960, 960}));
  maps.clear();
  EXPECT_EQ(lengthsAfter(maps, {1, {57, 231, 52, 172, 59, 197, 3}, {}}), (Lengths{58 * 40 * 46}));
}

TEST(KeptStore, KeepsTheMemoryOfMoreMaps) {
  std::vector<std::vector<float>> maps;
  (void)lengthsAfter(maps, {3, {0, 2, 0, 2, 0, 2, 1}, {}});
  const float* const memory = maps[2].data();
  EXPECT_EQ(lengthsAfter(maps, {1, {0, 2, 0, 2, 0, 2, 1}, {}}), (Lengths{8, 8, 8}));
  EXPECT_EQ(maps[2].data(), memory);
}

TEST(KeptStore, LendsTheMapsThemselves) {
  std::vector<std::vector<float>> maps(2, std::vector<float>(8));
  live::KeptStore store(maps);
  store.values(1)[7] = 5;
  EXPECT_EQ(maps[1][7], 5);
}

}  // namespace
