// A short calibration of group tests: few data sets with fixed seeds and wide bounds, and faults planted in
// what is asked for, which these bounds must see. The long one is made by scripts/calibrate-groups.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "tests/calibration/group_measures.h"

namespace calibration {
namespace {

// Of 40 data sets at the level .05: more than six have a probability below .01.
constexpr int kSets = 40;
constexpr double kMostAny = 0.15;

GroupCell groupNamed(const std::string& name) {
  for (const GroupCell& cell : nullGroups())
    if (cell.name == name) return cell;
  throw std::invalid_argument(name);
}

GroupRates rates(const GroupCell& cell, const ChangeOptions& change = nullptr) {
  return measureNullGroups(cell, kSets, 9400000, [&](inference::TestOptions& options) {
    options.shuffles = 99;
    options.clusterFormingZ = 2.6;
    if (change) change(options);
  });
}

double worst(const GroupRates& rates) {
  double most = 0;
  for (const auto& [what, rate] : rates) most = std::max(most, rate.mean());
  return most;
}

class NullGroups : public ::testing::TestWithParam<const char*> {};

TEST_P(NullGroups, LetFewMapsHaveAnyPlaceThatPasses) {
  EXPECT_LE(worst(rates(groupNamed(GetParam()))), kMostAny);
}

INSTANTIATE_TEST_SUITE_P(Short, NullGroups,
                         ::testing::Values("group-one-heavy-16", "group-paired-skewed-8",
                                           "group-two-skewed-16", "group-sites-skewed-16",
                                           "group-one-age-gaussian-16", "group-two-skewed-16-missing",
                                           "group-one-gaussian-16-smoothed"),
                         [](const auto& test) {
                           std::string name = test.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

TEST(NullGroups, OfTwoSitesFailWhenBlocksAreIgnored) {
  EXPECT_GT(worst(rates(groupNamed("group-sites-skewed-16"), [](auto& options) { options.blocks.clear(); })),
            2 * kMostAny);
}

TEST(NullGroups, OfSkewedNoiseFailBySignFlips) {
  const GroupRates found = rates(groupNamed("group-one-skewed-16"));
  EXPECT_GT(found.at({"t", "negative"}).mean(), 2 * kMostAny);
  EXPECT_LE(found.at({"t", "positive"}).mean(), kMostAny);
}

TEST(PlantedGroups, AreFoundMoreOftenByTheirNeighbourhood) {
  const GroupRates found = measureGroupPower(plantedGroups().back(), 4, 9500000);
  EXPECT_GT(found.at({"t", "both"}).mean(), 0.02);
  EXPECT_GT(found.at({"enhanced", "both"}).mean(), 1.5 * found.at({"t", "both"}).mean());
  EXPECT_GT(found.at({"smoothed", "both"}).mean(), found.at({"t", "both"}).mean());
}

}  // namespace
}  // namespace calibration
