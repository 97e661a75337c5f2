// `tavmap order`: which figures its curves are made of.
#include <cmath>

#include "formats/nifti_writer.h"
#include "tests/support/run_command_fixture.h"

namespace {

using nlohmann::json;

class OrderCommand : public SmallStudyRun {
 protected:
  json entries(const std::string& request) {
    const ProgramResult result =
        tavmap({"order", scratch_.write("o.toml", request).string(), "--max-order", "3", "--json"}, folder());
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const json summary = json::parse(result.out, nullptr, false);
    return summary.is_discarded() ? json() : summary["Orders"][0]["Entries"];
  }
};

// Schwarz's and Akaike's criteria differ in what a parameter costs: (ln n - 2) / n. A joint model of two
// series has 4 per order, a series alone has 1.
TEST_F(OrderCommand, AJointModelPaysForFourParametersPerOrder) {
  for (const json& entry : entries(small_study::request("order_sample = 20"))) {
    const double n = entry["EffectiveVolumes"];
    for (std::size_t i = 0; i < 3; ++i) {
      const double perParameter = (std::log(n) - 2) / n * static_cast<double>(i + 1);
      const auto cost = [&](const char* model) {
        return entry[model]["bic"][i].get<double>() - entry[model]["aic"][i].get<double>();
      };
      EXPECT_NEAR(cost("Own"), perParameter, 1e-9) << entry["Reference"] << i;
      EXPECT_NEAR(cost("Joint"), 4 * perParameter, 1e-9) << entry["Reference"] << i;
    }
  }
}

// 60 voxels: the first 20 begin at the threshold, the next 20 above it, the last 20 below.
TEST_F(OrderCommand, VoxelsAtTheInclusionThresholdAreLeftOut) {
  formats::ImageHeader header;
  header.size = {60, 1, 1};
  header.sformCode = 1;
  header.volumes = 60;
  header.trMs = 2000;
  for (int axis = 0; axis < 3; ++axis) header.affine.at(axis, axis) = 2;
  std::vector<float> values;
  for (unsigned t = 0; t < 60; ++t) {
    for (unsigned x = 0; x < 60; ++x) {
      const float first = x < 20 ? 100.0F : x < 40 ? 101.0F : 99.0F;
      values.push_back(t == 0 ? first : 1000.0F + static_cast<float>((t * t * 31 + x * 17 + t * x) % 97));
    }
  }
  formats::NiftiWriter writer((folder() / "steps.nii").string(), header);
  writer.writeValues(values.data(), values.size());
  writer.commit();
  const json found = entries(
      "[settings]\norder_sample = 1000\nsurrogates = 20\n[[run]]\nbold = 'steps.nii'\n"
      "[[reference]]\nname = 'r'\nvoxels = [[25, 0, 0], [30, 0, 0]]\n");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0]["Voxels"], 20);
  EXPECT_EQ(found[0]["EffectiveVolumes"], 57);
}

// The region that is driven at lag 1 passes at every order; the table has a row per reference, condition,
// map, q and order, and the curves of the criteria come as without it.
TEST_F(OrderCommand, SensitivityShowsWhatPassesAtAllOrders) {
  const auto request = scratch_.write(
      "o.toml", small_study::request("order_sample = 20\nmap_types = ['REF2VOX', 'DTAV']\nq = [0.05]"));
  const ProgramResult result =
      tavmap({"order", request.string(), "--max-order", "2", "--sensitivity", "--json"}, folder());
  ASSERT_EQ(result.exitCode, 0) << result.err;
  const json summary = json::parse(result.out);
  EXPECT_FALSE(summary["Orders"][0]["Entries"].empty());
  const json& sensitivity = summary["OrderSensitivity"];
  EXPECT_EQ(sensitivity["BaseOrder"], 1);
  bool found = false;
  for (const json& entry : sensitivity["AtAllOrders"]) {
    if (entry["Reference"] != "A" || entry["Map"] != "REF2VOX") continue;
    found = true;
    EXPECT_GE(entry["VoxelsPassingAtAll"].get<int>(), small_study::regionVoxels());
  }
  EXPECT_TRUE(found) << sensitivity;
  std::ifstream table(results() / "small_desc-ordersensitivity_statmap.tsv");
  const std::string text{std::istreambuf_iterator<char>(table), {}};
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), static_cast<long>(sensitivity["Rows"].size()) + 1);
}

}  // namespace
