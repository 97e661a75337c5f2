#include "inference/space.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "tests/inference/made_data.h"

namespace {

using namespace inference;

std::vector<std::int32_t> neighboursOf(const Space& space, std::size_t place) {
  std::vector<std::int32_t> found;
  for (std::size_t k = 0; k < space.width; ++k) {
    const std::int32_t other = space.neighbours[place * space.width + k];
    if (other != static_cast<std::int32_t>(space.places)) found.push_back(other);
  }
  std::sort(found.begin(), found.end());
  return found;
}

TEST(SpaceOfVoxels, HasTheNeighboursOfItsConnectivity) {
  for (const int connectivity : {6, 18, 26})
    EXPECT_EQ(neighboursOf(made::cube(3, connectivity), 13).size(), static_cast<std::size_t>(connectivity));
  EXPECT_EQ(neighboursOf(made::cube(3, 6), 0), (std::vector<std::int32_t>{1, 3, 9}));
  EXPECT_EQ(neighboursOf(made::cube(3, 18), 0), (std::vector<std::int32_t>{1, 3, 4, 9, 10, 12}));
  EXPECT_EQ(neighboursOf(made::cube(3, 26), 0), (std::vector<std::int32_t>{1, 3, 4, 9, 10, 12, 13}));
}

TEST(SpaceOfVoxels, LeavesOutWhatIsNoPlace) {
  const Space space = spaceOfVoxels({4, 3, 2}, {1, 2, 5, 13}, 6);
  EXPECT_EQ(neighboursOf(space, 0), (std::vector<std::int32_t>{1, 2, 3}));
  EXPECT_EQ(neighboursOf(space, 1), (std::vector<std::int32_t>{0}));
}

TEST(SpaceOfVoxels, RefusesWhatIsNone) {
  EXPECT_THROW(static_cast<void>(spaceOfVoxels({2, 2, 2}, {0, 1}, 8)), std::invalid_argument);
  EXPECT_THROW(static_cast<void>(spaceOfVoxels({2, 2, 2}, {1, 1}, 6)), std::invalid_argument);
  EXPECT_THROW(static_cast<void>(spaceOfVoxels({2, 2, 2}, {1, 8}, 6)), std::invalid_argument);
  EXPECT_THROW(static_cast<void>(spaceOfVoxels({2, 2, 2}, {1, 2}, 6, {1, 0, 1})), std::invalid_argument);
  EXPECT_THROW(static_cast<void>(spaceOfEdges(3, {{0, 3}})), std::invalid_argument);
}

TEST(RenumberedSpace, KeepsWhoTouchesWhom) {
  const Space space = renumbered(made::cube(2), {7, -1, 6, 3, -1});
  EXPECT_EQ(neighboursOf(space, 0), (std::vector<std::int32_t>{2, 3}));
  EXPECT_TRUE(neighboursOf(space, 1).empty());
  EXPECT_EQ(neighboursOf(space, 2), (std::vector<std::int32_t>{0}));
  EXPECT_EQ(space.voxels, (std::vector<std::size_t>{7, 8, 6, 3, 8}));
  const Space edges = renumbered(spaceOfEdges(3, {{0, 1}, {2, 1}}), {1, -1});
  EXPECT_EQ(edges.hubs, (std::vector<std::int32_t>{2, 1, 3, 3}));
}

}  // namespace
