#include "connectome/nodes.h"

#include <gtest/gtest.h>

namespace {

using connectome::EdgeMatrix;
using connectome::Node;

TEST(Networks, StandInNamesOfOneKindOfAtlas) {
  EXPECT_EQ(connectome::networkInName("7Networks_LH_Vis_4"), "Vis");
  EXPECT_EQ(connectome::networkInName("17Networks_RH_DefaultA_PFCd_1"), "DefaultA");
  EXPECT_EQ(connectome::networkInName("Networks_LH_Vis_4"), "");
  EXPECT_EQ(connectome::networkInName("7Networks_Vis_4"), "");
  EXPECT_EQ(connectome::networkInName("Thalamus"), "");
  EXPECT_EQ(connectome::networkInName(""), "");
}

TEST(PictureOrder, GoesByNetworkInTheirOrder) {
  const std::vector<Node> nodes = {
      {"a", "Vis", 1, {}}, {"b", "Default", 1, {}}, {"c", "Vis", 1, {}}, {"d", "Default", 1, {}}};
  EXPECT_EQ(connectome::pictureOrder(nodes, EdgeMatrix(4)), (std::vector<std::size_t>{0, 2, 1, 3}));
}

TEST(PictureOrder, PutsNodesWithoutANetworkLast) {
  const std::vector<Node> nodes = {{"a", "", 1, {}}, {"b", "Vis", 1, {}}, {"c", "Vis", 1, {}}};
  EXPECT_EQ(connectome::pictureOrder(nodes, EdgeMatrix(3)), (std::vector<std::size_t>{1, 2, 0}));
}

void likeBoth(EdgeMatrix& likeness, std::size_t a, std::size_t b, double value) {
  likeness.at(a, b) = likeness.at(b, a) = value;
}

TEST(PictureOrder, PutsLikeNodesTogetherWhereFewHaveANetwork) {
  const std::vector<Node> nodes = {
      {"a", "Vis", 1, {}}, {"b", "", 1, {}}, {"c", "", 1, {}}, {"d", "Vis", 1, {}}};
  EdgeMatrix likeness(4);
  likeBoth(likeness, 0, 3, 0.9);
  likeBoth(likeness, 1, 2, 0.8);
  likeBoth(likeness, 0, 1, 0.1);
  EXPECT_EQ(connectome::pictureOrder(nodes, likeness), (std::vector<std::size_t>{0, 3, 1, 2}));
}

// A node is 0.3 and 0.5 like the one pair, 0.6 and `last` like the other. By the largest likeness it would
// always join the other, by the smallest the one.
std::vector<std::size_t> orderOfPairsAndOne(double last) {
  EdgeMatrix likeness(5);
  likeBoth(likeness, 0, 4, 0.9);
  likeBoth(likeness, 1, 2, 0.8);
  likeBoth(likeness, 3, 0, 0.3);
  likeBoth(likeness, 3, 4, 0.5);
  likeBoth(likeness, 3, 1, 0.6);
  likeBoth(likeness, 3, 2, last);
  return connectome::pictureOrder(std::vector<Node>(5, {"x", "", 1, {}}), likeness);
}

TEST(PictureOrder, JoinsClustersByTheMeanOverTheirPairs) {
  EXPECT_EQ(orderOfPairsAndOne(0.1), (std::vector<std::size_t>{0, 4, 3, 1, 2}));
  EXPECT_EQ(orderOfPairsAndOne(0.25), (std::vector<std::size_t>{0, 4, 1, 2, 3}));
}

}  // namespace
