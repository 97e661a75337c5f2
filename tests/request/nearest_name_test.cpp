#include "request/nearest_name.h"

#include <gtest/gtest.h>

namespace study {
namespace {

TEST(NearestName, CountsEditsWithoutCase) {
  EXPECT_EQ(editDistance("order", "order"), 0);
  EXPECT_EQ(editDistance("ORDER", "order"), 0);
  EXPECT_EQ(editDistance("ordre", "order"), 1);  // a swap is one edit
  EXPECT_EQ(editDistance("oder", "order"), 1);
  EXPECT_EQ(editDistance("", "order"), 5);
  EXPECT_EQ(editDistance("kitten", "sitting"), 3);
}

TEST(NearestName, TakesTheFirstOfTheClosest) {
  EXPECT_EQ(nearestName("LH_Vis_9", {"LH_Vis_1", "LH_Vis_2", "RH_Vis_1"}), "LH_Vis_1");
}

TEST(NearestName, StaysSilentWhenNothingIsNear) {
  EXPECT_EQ(nearestName("cerebellum", {"a", "b"}), "");
  EXPECT_EQ(nearestName("x", {}), "");
}

TEST(NearestName, SuggestsOneNameOrListsThem) {
  EXPECT_EQ(suggestion("metod", {"method", "order"}), "; did you mean 'method'?");
  EXPECT_EQ(suggestion("zzzzzz", {"method", "order"}), "; known are method, order");
  EXPECT_EQ(suggestion("zzzzzz", {}), "");
  const std::vector<std::string> many(13, "name");
  EXPECT_EQ(suggestion("zzzzzz", many).substr(suggestion("zzzzzz", many).size() - 5), ", ...");
}

}  // namespace
}  // namespace study
