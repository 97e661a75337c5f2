#include "inference/descending_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/inference/made_data.h"

namespace {

using inference::DescendingOrder;

TEST(DescendingOrder, IsThatOfAStableSortOfOneSide) {
  std::vector<float> values = made::noise(1, 3000, 1).at;
  for (std::size_t i = 0; i < values.size(); i += 3) values[i] = static_cast<float>(i % 5) - 2;
  values[17] = 1e-40F, values[18] = 3e38F;
  DescendingOrder sorter;
  for (const int sign : {1, -1}) {
    std::vector<std::int32_t> expected;
    for (std::size_t i = 0; i < values.size(); ++i)
      if (static_cast<float>(sign) * values[i] > 0) expected.push_back(static_cast<std::int32_t>(i));
    std::stable_sort(expected.begin(), expected.end(), [&](std::int32_t a, std::int32_t b) {
      return static_cast<float>(sign) * values[static_cast<std::size_t>(a)] >
             static_cast<float>(sign) * values[static_cast<std::size_t>(b)];
    });
    std::vector<std::int32_t> places;
    for (const auto& entry : sorter.of(values, sign)) {
      EXPECT_EQ(valueOf(entry), static_cast<float>(sign) * values[static_cast<std::size_t>(entry.place)]);
      places.push_back(entry.place);
    }
    EXPECT_EQ(places, expected);
  }
}

}  // namespace
