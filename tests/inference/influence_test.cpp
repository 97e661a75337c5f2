#include "inference/influence.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "inference/run_test.h"
#include "tests/inference/made_data.h"

namespace {

using namespace inference;

Model withoutRow(Model model, std::size_t row) {
  const auto columns = static_cast<std::ptrdiff_t>(model.contrast.size());
  const auto begin = model.design.begin() + static_cast<std::ptrdiff_t>(row) * columns;
  model.design.erase(begin, begin + columns);
  return model;
}

TEST(LeaveOneOut, IsTheTestOfTheOtherRows) {
  const made::Data data = made::noise(9, 4, 1);
  Model model = made::twoSamples(9);
  const std::vector<std::size_t> places = {3, 0};
  const auto found = leaveOneOut(model, data.values(), places);
  ASSERT_EQ(found.size(), 9U);
  for (std::size_t row = 0; row < 9; ++row) {
    made::Data rest = data;
    rest.rows = 8;
    rest.at.erase(rest.at.begin() + static_cast<std::ptrdiff_t>(4 * row),
                  rest.at.begin() + static_cast<std::ptrdiff_t>(4 * row + 4));
    const TestResult result =
        runTest(withoutRow(model, row), rest.values(), spaceOfPlaces(4), made::permuted(10));
    for (std::size_t i = 0; i < places.size(); ++i) {
      EXPECT_NEAR(found[row][i].effect, result.effect[places[i]], 1e-6);
      EXPECT_NEAR(found[row][i].t, result.t[places[i]], 1e-5);
    }
  }
}

TEST(LeaveOneOut, TakesAParticipantsRowsTogether) {
  const made::Data data = made::noise(6, 1, 2);
  const auto found =
      leaveOneOut(made::oneSample(6), data.values(), std::vector<std::size_t>{0}, {7, 7, 3, 3, 5, 5});
  ASSERT_EQ(found.size(), 3U);
  EXPECT_NEAR(found[0][0].effect,
              (data.value(0, 0) + data.value(1, 0) + data.value(4, 0) + data.value(5, 0)) / 4, 1e-6);
  EXPECT_NEAR(found[2][0].effect,
              (data.value(2, 0) + data.value(3, 0) + data.value(4, 0) + data.value(5, 0)) / 4, 1e-6);
}

TEST(LeaveOneOut, HasNoValueWhereTheRestTellsNothing) {
  made::Data data = made::noise(4, 1, 3);
  data.of(1, 0) = made::kNothing;
  const auto found = leaveOneOut(made::twoSamples(4), data.values(), std::vector<std::size_t>{0});
  EXPECT_TRUE(std::isnan(found[0][0].t));   // leaves no first group
  EXPECT_FALSE(std::isnan(found[1][0].t));  // was missing anyway
  EXPECT_TRUE(std::isnan(found[2][0].t));   // leaves no degree of freedom
}

}  // namespace
