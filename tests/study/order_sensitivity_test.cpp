#include "study/order_sensitivity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "formats/nifti_writer.h"
#include "tests/support/scratch.h"

namespace {

using study::OrderSensitivity;
using study::Record;
using study::ResultsOfOrder;

formats::ImageHeader lineOfVoxels(std::size_t n) {
  formats::ImageHeader header;
  header.size = {static_cast<int>(n), 1, 1};
  header.sformCode = 1;
  for (int axis = 0; axis < 3; ++axis) header.affine.at(axis, axis) = 2;
  return header;
}

void writeImage(const std::filesystem::path& file, const std::vector<float>& values) {
  formats::NiftiWriter writer(file.string(), lineOfVoxels(values.size()));
  writer.writeValues(values.data(), values.size());
  writer.commit();
}

class CompareOrders : public ::testing::Test {
 protected:
  // The last of six voxels lies in the reference, with code 4 of the status map.
  ResultsOfOrder resultsOf(int order, const std::vector<float>& values, std::optional<double> threshold) {
    const std::filesystem::path folder = scratch_.folder() / std::to_string(order);
    std::filesystem::create_directories(folder);
    writeImage(folder / "map.nii", values);
    writeImage(folder / "status.nii", {1, 1, 1, 1, 3, 4});
    Record record;
    record.reference = "A";
    study::ConditionRecord condition;
    condition.name = "rest";
    condition.statusFile = "status.nii";
    study::MapResult map;
    map.type = tav::DTAV;
    map.file = "map.nii";
    map.thresholds = {{0.05, threshold, 0, 0}};
    condition.maps = {map};
    record.conditions = {condition};
    return {order, folder, {record}};
  }
  OrderSensitivity compare(int base) {
    return study::compareOrders(
        {resultsOf(1, {5, -5, 5, 1, 0, 9}, 3.0), resultsOf(2, {4, 4, 1, 4, 0, 9}, 3.0),
         resultsOf(3, {9, -9, 9, 9, 0, 9}, std::nullopt)},
        base);
  }
  Scratch scratch_;
};

TEST_F(CompareOrders, CountsWhatPassesAndWhatKeepsItsSign) {
  const OrderSensitivity found = compare(1);
  ASSERT_EQ(found.entries.size(), 1U);
  const auto& orders = found.entries[0].orders;
  ASSERT_EQ(orders.size(), 3U);
  EXPECT_EQ(orders[0].computed, 4U);
  EXPECT_EQ(orders[0].passing, 3U);
  EXPECT_EQ(orders[0].kept, 3U);
  EXPECT_EQ(orders[1].passing, 3U);
  EXPECT_EQ(orders[1].kept, 1U);     // the second voxel turns its sign, the third passes no more
  EXPECT_EQ(orders[2].passing, 0U);  // no threshold: nothing survives
  EXPECT_EQ(found.passingAtBase(found.entries[0]), 3U);
  EXPECT_EQ(found.entries[0].passingAtAll, 0U);
}

TEST_F(CompareOrders, HoldsOrdersAgainstTheBase) {
  const OrderSensitivity found = compare(2);
  ASSERT_EQ(found.entries.size(), 1U);
  const auto& orders = found.entries[0].orders;
  EXPECT_EQ(found.passingAtBase(found.entries[0]), 3U);
  EXPECT_EQ(orders[0].kept, 1U);
  EXPECT_EQ(orders[1].kept, 3U);
}

TEST_F(CompareOrders, TableHasARowPerOrderWithShares) {
  const std::string table = study::sensitivityTable(compare(1));
  EXPECT_THAT(table, testing::HasSubstr("A\trest\tDTAV\t0.05\t2\t1\t4\t3\t0.7500\t1\t0.3333\n"));
  const std::string none = study::sensitivityTable(compare(3));
  EXPECT_THAT(none, testing::HasSubstr("\t3\t3\t4\t0\t0.0000\t0\tn/a\n"));
}

TEST_F(CompareOrders, SaysInWordsWhatPassesAtAllOrders) {
  std::ostringstream text;
  study::printSensitivity(compare(1), text);
  EXPECT_THAT(text.str(), testing::HasSubstr("A, rest, DTAV: 3, 3, 0; 0 of 3 at all orders\n"));
}

TEST(RequestsOfOrders, ShareRunsAndSeedAndNothingElse) {
  study::Request request;
  request.settings.maxOrder = 3;
  request.settings.orderChoice = study::OrderChoice::kBic;
  request.output.folder = "out";
  const std::vector<study::Request> requests = study::requestsOfOrders(request);
  ASSERT_EQ(requests.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(requests[i].settings.order, static_cast<int>(i) + 1);
    EXPECT_EQ(requests[i].settings.orderChoice, study::OrderChoice::kFixed);
    EXPECT_EQ(requests[i].settings.fweDraws, 0);
    EXPECT_EQ(requests[i].output.workFolder, std::filesystem::path("out/work"));
    EXPECT_TRUE(requests[i].seed.has_value());
    EXPECT_EQ(requests[i].seed, requests[0].seed);
  }
  EXPECT_NE(requests[0].output.folder, requests[1].output.folder);
  EXPECT_NE(requests[0].title, requests[1].title);
}

TEST(RequestsOfOrders, ReachAFixedOrderAboveTheHighestToTry) {
  study::Request request;
  request.settings.maxOrder = 2;
  request.settings.order = 4;
  EXPECT_EQ(study::requestsOfOrders(request).size(), 4U);
  request.settings.orderChoice = study::OrderChoice::kAic;
  EXPECT_EQ(study::requestsOfOrders(request).size(), 2U);
}

}  // namespace
