// What there is to measure of group tests.
#ifndef TAVMAP_TESTS_CALIBRATION_CALIBRATED_GROUPS_H
#define TAVMAP_TESTS_CALIBRATION_CALIBRATED_GROUPS_H

#include <string>
#include <vector>

namespace calibration {

enum class GroupDesign {
  kOneSample,            // is the mean 0? Sign flips
  kPaired,               // the same of differences between two maps
  kTwoSamples,           // permutations
  kTwoSites,             // two groups, unequally spread over two sites that differ; permutations within sites
  kOneSampleCovariate,   // the mean beside a covariate that matters
  kTwoSamplesCovariate,  // beside one that matters and differs between the groups
  kCovariate,            // the covariate itself; permutations
};

enum class GroupNoise { kGaussian, kHeavy, kExponential };

struct GroupCell {
  std::string name, words;
  GroupDesign design = GroupDesign::kOneSample;
  GroupNoise noise = GroupNoise::kGaussian;
  int rows = 16;
  int second = 0;              // of these, in the second group; 0: half
  double secondDeviation = 1;  // of its noise, the first's being 1
  bool isSmooth = true;        // noise of about 3.5 voxels width; else white
  double missing = 0;          // share of voxels that lack one to three rows
  double varianceFwhm = 0;     // voxels
  int shuffles = 199;
  bool isOneSided = false;  // both tails, each alone
  bool isFailure = false;   // known to exceed its level
};

// Nothing is there to be found.
[[nodiscard]] std::vector<GroupCell> nullGroups();
// One-sample groups whose symmetry is checked.
[[nodiscard]] std::vector<GroupCell> symmetryGroups();
// An effect is planted.
[[nodiscard]] std::vector<GroupCell> plantedGroups();

}  // namespace calibration

#endif
