#include "tests/calibration/calibrated_groups.h"

#include <fmt/core.h>

namespace calibration {

namespace {

constexpr GroupNoise kNoises[] = {GroupNoise::kGaussian, GroupNoise::kHeavy, GroupNoise::kExponential};

const char* nameOf(GroupNoise noise) {
  return noise == GroupNoise::kGaussian ? "gaussian" : noise == GroupNoise::kHeavy ? "heavy" : "skewed";
}

const char* wordsOf(GroupNoise noise) {
  return noise == GroupNoise::kGaussian ? "Gaussian"
         : noise == GroupNoise::kHeavy  ? "heavy-tailed (t, 4 degrees)"
                                        : "skewed (exponential)";
}

GroupCell cellOf(const char* name, const char* words, GroupDesign design, GroupNoise noise, int rows) {
  GroupCell cell;
  cell.name = fmt::format("group-{}-{}-{}", name, nameOf(noise), rows);
  cell.words = fmt::format("{}, {} noise", words, wordsOf(noise));
  cell.design = design;
  cell.noise = noise;
  cell.rows = rows;
  return cell;
}

void addSizes(std::vector<GroupCell>& cells) {
  for (const int rows : {8, 16, 20})
    for (const GroupNoise noise : kNoises) {
      const bool isSkewed = noise == GroupNoise::kExponential;
      cells.push_back(cellOf("one", "one sample", GroupDesign::kOneSample, noise, rows));
      cells.back().isFailure = cells.back().isOneSided = isSkewed;
      if (noise == GroupNoise::kHeavy) continue;
      cells.push_back(cellOf("two", "two groups", GroupDesign::kTwoSamples, noise, rows));
      if (isSkewed) cells.push_back(cellOf("paired", "paired", GroupDesign::kPaired, noise, rows));
    }
}

void addUnequal(std::vector<GroupCell>& cells) {
  for (const int second : {4, 8, 12}) {
    GroupCell cell = cellOf("unequal", "", GroupDesign::kTwoSamples, GroupNoise::kGaussian, 16);
    cell.name = fmt::format("group-unequal-{}", second);
    cell.words =
        fmt::format("two groups, the second of {} with 3 times the deviation, Gaussian noise", second);
    cell.second = second;
    cell.secondDeviation = 3;
    cell.isFailure = true;
    cells.push_back(cell);
  }
}

GroupCell changed(GroupCell cell, const char* name, const char* words) {
  cell.name = fmt::format("{}-{}", cell.name, name);
  cell.words = fmt::format("{}, {}", cell.words, words);
  return cell;
}

void addChanged(std::vector<GroupCell>& cells) {
  const GroupCell one = cellOf("one", "one sample", GroupDesign::kOneSample, GroupNoise::kGaussian, 16);
  const GroupCell two = cellOf("two", "two groups", GroupDesign::kTwoSamples, GroupNoise::kExponential, 16);
  for (const GroupCell& whole : {one, two}) {
    cells.push_back(changed(whole, "smoothed", "variances smoothed by 4 voxels"));
    cells.back().varianceFwhm = 4;
    cells.push_back(changed(whole, "missing", "a third of the voxels lack one to three maps"));
    cells.back().missing = 1.0 / 3;
    cells.push_back(changed(whole, "few", "99 shuffles and a fitted tail"));
    cells.back().shuffles = 99;
    cells.push_back(changed(whole, "white", "no smoothness"));
    cells.back().isSmooth = false;
  }
}

void addNuisances(std::vector<GroupCell>& cells) {
  using enum GroupDesign;
  for (const GroupNoise noise : {GroupNoise::kGaussian, GroupNoise::kExponential}) {
    cells.push_back(
        cellOf("sites", "two groups at two sites that differ, exchanged within", kTwoSites, noise, 16));
    cells.push_back(cellOf("two-age", "two groups that differ in a covariate that matters",
                           kTwoSamplesCovariate, noise, 16));
    cells.push_back(cellOf("age", "a covariate", kCovariate, noise, 16));
  }
  cells.push_back(cellOf("one-age", "one sample beside a covariate that matters", kOneSampleCovariate,
                         GroupNoise::kGaussian, 16));
  cells.push_back(cellOf("one-age", "one sample beside a covariate that matters", kOneSampleCovariate,
                         GroupNoise::kHeavy, 16));
}

}  // namespace

std::vector<GroupCell> nullGroups() {
  std::vector<GroupCell> cells;
  addSizes(cells);
  addUnequal(cells);
  addChanged(cells);
  addNuisances(cells);
  return cells;
}

std::vector<GroupCell> symmetryGroups() {
  std::vector<GroupCell> cells;
  for (const int rows : {8, 12, 16, 20, 40})
    for (const GroupNoise noise : kNoises)
      cells.push_back(cellOf("symmetry", "one sample", GroupDesign::kOneSample, noise, rows));
  cells.push_back(cellOf("symmetry-age", "one sample beside a covariate", GroupDesign::kOneSampleCovariate,
                         GroupNoise::kHeavy, 16));
  return cells;
}

std::vector<GroupCell> plantedGroups() {
  std::vector<GroupCell> cells;
  for (const int rows : {12, 20}) {
    cells.push_back(cellOf("power", "one sample", GroupDesign::kOneSample, GroupNoise::kGaussian, rows));
    cells.push_back(cellOf("power", "paired", GroupDesign::kPaired, GroupNoise::kExponential, rows));
  }
  return cells;
}

}  // namespace calibration
