#include "simulation/confounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/simulation/normal_equations.h"

namespace {

using simulation::Confound;
using simulation::NoiseStream;

std::vector<Confound> drawn(int volumes = 160) {
  NoiseStream random(1, 1, 1001);
  return simulation::drawConfounds(volumes, random);
}

const std::vector<double>& valuesOf(const std::vector<Confound>& table, const std::string& name) {
  const auto found =
      std::find_if(table.begin(), table.end(), [&](const Confound& c) { return c.name == name; });
  EXPECT_NE(found, table.end()) << name;
  return found->values;
}

TEST(Confounds, HaveTwentyFourMotionColumnsThatBelongTogether) {
  const std::vector<Confound> table = drawn();
  for (const std::string name : {"trans_x", "trans_y", "trans_z", "rot_x", "rot_y", "rot_z"}) {
    const auto& value = valuesOf(table, name);
    EXPECT_TRUE(std::isnan(valuesOf(table, name + "_derivative1")[0]));
    EXPECT_TRUE(std::isnan(valuesOf(table, name + "_derivative1_power2")[0]));
    EXPECT_EQ(valuesOf(table, name + "_derivative1")[7], value[7] - value[6]);
    EXPECT_EQ(valuesOf(table, name + "_power2")[7], value[7] * value[7]);
    EXPECT_EQ(valuesOf(table, name + "_derivative1_power2")[7], std::pow(value[7] - value[6], 2));
  }
}

TEST(Confounds, FramewiseDisplacementAddsUpAllSixParameters) {
  const std::vector<Confound> table = drawn();
  const auto& displacement = valuesOf(table, "framewise_displacement");
  EXPECT_TRUE(std::isnan(displacement[0]));
  for (std::size_t t = 1; t < displacement.size(); ++t) {
    double expected = 0;
    for (const char* name : {"trans_x", "trans_y", "trans_z"})
      expected += std::fabs(valuesOf(table, name)[t] - valuesOf(table, name)[t - 1]);
    for (const char* name : {"rot_x", "rot_y", "rot_z"})
      expected += 50 * std::fabs(valuesOf(table, name)[t] - valuesOf(table, name)[t - 1]);
    EXPECT_NEAR(displacement[t], expected, 1e-12);
  }
}

TEST(Confounds, HeadJerksOnceThereAndBack) {
  const std::vector<Confound> table = drawn();
  const auto& displacement = valuesOf(table, "framewise_displacement");
  std::vector<std::size_t> large;
  for (std::size_t t = 1; t < displacement.size(); ++t)
    if (displacement[t] > 0.5) large.push_back(t);
  ASSERT_EQ(large.size(), 2U);
  EXPECT_EQ(large[1], large[0] + 1);
}

TEST(Confounds, EachUnsteadyVolumeHasAnIndicator) {
  const std::vector<Confound> table = drawn();
  for (std::size_t volume = 0; volume < 2; ++volume) {
    const auto& values = valuesOf(table, "non_steady_state_outlier0" + std::to_string(volume));
    for (std::size_t t = 0; t < values.size(); ++t) EXPECT_EQ(values[t], t == volume ? 1 : 0);
  }
}

TEST(Confounds, TableHasAHeaderALinePerVolumeAndNaInPlaceOfNaN) {
  const std::vector<Confound> table = {{"a", {std::numeric_limits<double>::quiet_NaN(), 0.5}},
                                       {"b", {1, -2}}};
  EXPECT_EQ(simulation::confoundsTable(table), "a\tb\nn/a\t1\n0.5\t-2\n");
}

// The disturbed scan less the undisturbed one of the same seed is, in every steady volume, a
// combination of the two columns alone.
TEST(Confounds, ArtefactsAreCombinationsOfTwoColumns) {
  const std::vector<Confound> table = drawn(80);
  const simulation::InfluenceModel model = simulation::plantedModel(1);
  NoiseStream headRandom(1, 0, 0), random(1, 1, 1);
  simulation::HeadOptions options;
  options.grid = {12, 12, 12};
  const simulation::Head head = simulation::makeHead(options, model, headRandom);
  const simulation::Artefacts artefacts = simulation::artefactsOf(table);
  simulation::Scan scan(head, model, artefacts, 80, random);
  // Weights are drawn between the drift and the courses: the undisturbed scan needs them drawn too.
  NoiseStream sameRandom(1, 1, 1);
  simulation::Artefacts none = artefacts;
  none.saturation.clear();
  for (auto& course : none.courses) std::fill(course.begin(), course.end(), 0);
  simulation::Scan undisturbed(head, model, none, 80, sameRandom);
  std::vector<double> difference;
  const std::size_t voxel = head.brain[head.brain.size() / 2];
  for (int t = 0; t < 80; ++t) {
    const float with = scan.nextVolume()[voxel], without = undisturbed.nextVolume()[voxel];
    difference.push_back(static_cast<double>(with) - static_cast<double>(without));
  }
  EXPECT_GT(difference[0], 0.3 * 8000);
  EXPECT_GT(difference[1], 0.05 * 8000);
  const auto steady = [](const std::vector<double>& series) {
    return std::vector<double>(series.begin() + simulation::kUnsteadyVolumes, series.end());
  };
  const auto found = least_squares::fit(
      {steady(valuesOf(table, "trans_y")), steady(valuesOf(table, "a_comp_cor_00"))}, steady(difference));
  EXPECT_LT(found.errorVariance, 1e-5);  // rounding of values near 10,000 to single precision
  EXPECT_GT(std::fabs(found.weights[1]), 0.5 * simulation::kAmplitude * 0.99);
}

}  // namespace
