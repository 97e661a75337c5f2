#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "inference/run_test.h"
#include "tests/inference/made_data.h"
#include "tests/support/message_of.h"

namespace {

using namespace inference;
using ::testing::HasSubstr;

std::string refusal(const Model& model, const TestOptions& options,
                    const made::Data& data = made::noise(6, 3, 1)) {
  return messageOf<std::invalid_argument>(
      [&] { static_cast<void>(runTest(model, data.values(), spaceOfPlaces(3), options)); });
}

Model sixRows(std::vector<std::string> names, std::vector<double> design, std::vector<double> contrast) {
  return {std::move(names), std::move(design), std::move(contrast)};
}

TEST(RunTest, RefusesColumnsThatMakeOneAnother) {
  const Model model =
      sixRows({"a", "b", "all", "age"},
              {1, 0, 1, 3, 1, 0, 1, 4, 1, 0, 1, 1, 0, 1, 1, 5, 0, 1, 1, 9, 0, 1, 1, 2}, {1, -1, 0, 0});
  EXPECT_THAT(refusal(model, made::permuted(20)), HasSubstr("(a, b, all), so that their coefficients"));
}

TEST(RunTest, RefusesAContrastThatCannotBeEstimated) {
  const Model model =
      sixRows({"a", "b", "all"}, {1, 0, 1, 1, 0, 1, 1, 0, 1, 0, 1, 1, 0, 1, 1, 0, 1, 1}, {1, 0, 0});
  EXPECT_THAT(refusal(model, made::permuted(20)), HasSubstr("the contrast cannot be estimated; leave one"));
}

TEST(RunTest, DoesNotTakeSmallUnitsForDependence) {
  const Model model =
      sixRows({"mean", "age"}, {1, 1e-9, 1, 3e-9, 1, 2e-9, 1, 7e-9, 1, 5e-9, 1, 4e-9}, {0, 1});
  const made::Data data = made::noise(6, 3, 1);
  EXPECT_EQ(runTest(model, data.values(), spaceOfPlaces(3), made::permuted(20)).tested, 3U);
}

TEST(RunTest, RefusesAsManyColumnsAsRows) {
  const Model model =
      sixRows({"a", "b", "c", "d", "e", "f"}, {1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0,
                                               0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1},
              {1, 0, 0, 0, 0, 0});
  EXPECT_THAT(refusal(model, made::plain(20)), HasSubstr("6 rows and 6 columns"));
}

TEST(RunTest, RefusesModelsThatAreNotWhole) {
  EXPECT_THAT(refusal(sixRows({"mean"}, {1, 1, 1, 1, 1, 1}, {0}), made::plain(20)),
              HasSubstr("contrast is 0"));
  EXPECT_THAT(refusal(sixRows({"mean"}, {1, 1, 1, std::nan(""), 1, 1}, {1}), made::plain(20)),
              HasSubstr("no numbers"));
  EXPECT_THAT(refusal(sixRows({"mean", "age"}, {1, 1, 1, 1, 1, 1}, {1}), made::plain(20)),
              HasSubstr("2 names"));
  EXPECT_THAT(refusal(made::oneSample(5), made::plain(20)), HasSubstr("5 rows for 6 maps"));
}

TEST(RunTest, RefusesShufflesThatChangeNothing) {
  EXPECT_THAT(refusal(made::oneSample(6), made::permuted(20)), HasSubstr("No permutation changes anything"));
  TestOptions options = made::permuted(20);
  options.blocks = {1, 1, 1, 2, 2, 2};  // each within one group
  EXPECT_THAT(refusal(made::twoSamples(6), options), HasSubstr("No permutation changes anything"));
  options.blocks = {1, 2};
  EXPECT_THAT(refusal(made::twoSamples(6), options), HasSubstr("2 blocks for 6 rows"));
}

TEST(RunTest, RefusesOptionsOutOfTheirRange) {
  const auto said = [](const std::function<void(TestOptions&)>& change) {
    TestOptions options = made::plain(20);
    change(options);
    return refusal(made::oneSample(6), options);
  };
  EXPECT_THAT(said([](auto& o) { o.shuffles = 0; }), HasSubstr("0 shuffles"));
  EXPECT_THAT(said([](auto& o) { o.smallestShare = 0; }), HasSubstr("share of 0"));
  EXPECT_THAT(said([](auto& o) { o.smallestShare = 1.1; }), HasSubstr("share of 1.1"));
  EXPECT_THAT(said([](auto& o) { o.clusterFormingZ = -1; }), HasSubstr("0 or more"));
  EXPECT_THAT(said([](auto& o) { o.varianceFwhmMm = 4; }), HasSubstr("this space has none"));
  EXPECT_THAT(said([](auto& o) { o.enhancement.step = -0.1; }), HasSubstr("powers of enhancement"));
}

TEST(RunTest, RefusesMapsWithoutAnyPlaceToTest) {
  made::Data data = made::noise(6, 3, 1);
  for (std::size_t place = 0; place < 3; ++place) data.of(0, place) = data.of(1, place) = made::kNothing;
  EXPECT_THAT(refusal(made::oneSample(6), made::plain(20), data), HasSubstr("fewer than 80 % of the maps"));
}

TEST(RunTest, RefusesASpaceOfOtherPlaces) {
  const made::Data data = made::noise(6, 3, 1);
  EXPECT_THROW(
      static_cast<void>(runTest(made::oneSample(6), data.values(), spaceOfPlaces(4), made::plain(20))),
      std::invalid_argument);
}

}  // namespace
