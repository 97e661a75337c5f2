#include "tests/calibration/group_measures.h"

#include <algorithm>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <vector>

#include "inference/run_test.h"

namespace calibration {

namespace {

using inference::TestOptions;
using inference::TestResult;

constexpr float kLevel = 0.05F;

double anyOf(const std::vector<float>& p) {
  return std::any_of(p.begin(), p.end(), [](float value) { return value <= kLevel; }) ? 1 : 0;
}

void addNull(const TestResult& result, const std::string& tail, GroupRates& rates) {
  rates[{"t", tail}].add(anyOf(result.pFwe));
  rates[{"enhanced", tail}].add(anyOf(result.pEnhanced));
  rates[{"fdr", tail}].add(anyOf(result.qFdr));
  rates[{"mass", tail}].add(
      !result.clusters.empty() && result.clusters[0].pFwe <= static_cast<double>(kLevel) ? 1 : 0);
}

void addTail(const MadeMaps& made, TestOptions options, double sign, GroupRates& rates) {
  inference::Model model = made.model;
  for (double& weight : model.contrast) weight *= sign;
  options.twoSided = false;
  addNull(runTest(model, made.values(), groupSpace(), options), sign > 0 ? "positive" : "negative", rates);
}

template <typename IsFound>
void addPower(const std::string& name, IsFound isFound, GroupRates& rates) {
  const std::vector<float>& effect = plantedEffect();
  Mean found;
  for (std::size_t voxel = 0; voxel < effect.size(); ++voxel)
    if (effect[voxel] > 0) found.add(isFound(voxel) ? 1 : 0);
  rates[{name, "both"}].add(found.mean());
}

void addPowers(const MadeMaps& made, const TestOptions& options, GroupRates& rates) {
  const TestResult result = runTest(made.model, made.values(), groupSpace(), options);
  const boost::math::students_t student(result.freedom);
  std::vector<bool> isInCluster(kGroupVoxels, false);
  for (const auto& cluster : result.clusters)
    for (const std::int32_t voxel : cluster.places)
      if (cluster.pFwe <= static_cast<double>(kLevel)) isInCluster[static_cast<std::size_t>(voxel)] = true;
  addPower(
      "t", [&](std::size_t voxel) { return result.pFwe[voxel] <= kLevel; }, rates);
  addPower(
      "enhanced", [&](std::size_t voxel) { return result.pEnhanced[voxel] <= kLevel; }, rates);
  addPower(
      "fdr", [&](std::size_t voxel) { return result.qFdr[voxel] <= kLevel; }, rates);
  addPower(
      "mass", [&](std::size_t voxel) { return isInCluster[voxel]; }, rates);
  addPower(
      "bonferroni",
      [&](std::size_t voxel) {
        const double t = std::abs(static_cast<double>(result.t[voxel]));
        return 2 * cdf(complement(student, t)) * static_cast<double>(kGroupVoxels) <=
               static_cast<double>(kLevel);
      },
      rates);
}

}  // namespace

TestOptions optionsOf(const GroupCell& cell) {
  TestOptions options;
  using enum GroupDesign;
  const bool isFlipped =
      cell.design == kOneSample || cell.design == kPaired || cell.design == kOneSampleCovariate;
  options.exchange = isFlipped ? inference::Exchange::kSignFlips : inference::Exchange::kPermutations;
  options.shuffles = cell.shuffles;
  options.varianceFwhmMm = cell.varianceFwhm;
  if (cell.shuffles > 99) options.tail = inference::Tail::kCounted;
  return options;
}

GroupRates measureNullGroups(const GroupCell& cell, int sets, unsigned seed, const ChangeOptions& change) {
  GroupRates rates;
  for (int i = 0; i < sets; ++i) {
    const MadeMaps made = makeNullMaps(cell, seed + static_cast<unsigned>(i));
    TestOptions options = optionsOf(cell);
    options.blocks = made.blocks;
    options.seed = seed + static_cast<unsigned>(i);
    if (change) change(options);
    if (cell.isOneSided) {
      for (const double sign : {1.0, -1.0}) addTail(made, options, sign, rates);
    } else {
      addNull(runTest(made.model, made.values(), groupSpace(), options), "both", rates);
    }
  }
  return rates;
}

Mean measureDoubts(const GroupCell& cell, int sets, unsigned seed) {
  Mean doubts;
  for (int i = 0; i < sets; ++i) {
    const MadeMaps made = makeNullMaps(cell, seed + static_cast<unsigned>(i));
    const auto found = inference::checkSymmetry(made.model, made.values(), seed + static_cast<unsigned>(i));
    doubts.add(found.isDoubtful() ? 1 : 0);
  }
  return doubts;
}

GroupRates measureGroupPower(const GroupCell& cell, int sets, unsigned seed) {
  GroupRates rates;
  const std::vector<float>& effect = plantedEffect();
  for (int i = 0; i < sets; ++i) {
    MadeMaps made = makeNullMaps(cell, seed + static_cast<unsigned>(i));
    const float deviation = cell.design == GroupDesign::kPaired ? std::sqrt(2.0F) : 1.0F;
    for (std::size_t at = 0; at < made.maps.size(); ++at)
      made.maps[at] += deviation * effect[at % kGroupVoxels];
    TestOptions options = optionsOf(cell);
    options.seed = seed + static_cast<unsigned>(i);
    addPowers(made, options, rates);
    options.varianceFwhmMm = 4;
    const TestResult smoothed = runTest(made.model, made.values(), groupSpace(), options);
    addPower(
        "smoothed", [&](std::size_t voxel) { return smoothed.pFwe[voxel] <= kLevel; }, rates);
  }
  return rates;
}

}  // namespace calibration
