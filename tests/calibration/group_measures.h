// How often group tests find what is not there, and what is.
#ifndef TAVMAP_TESTS_CALIBRATION_GROUP_MEASURES_H
#define TAVMAP_TESTS_CALIBRATION_GROUP_MEASURES_H

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "inference/test_options.h"
#include "tests/calibration/group_data.h"
#include "tests/calibration/rates.h"

namespace calibration {

// A test's name and its tail: "both", or "positive" and "negative" each alone.
using GroupMeasure = std::pair<std::string, std::string>;
using GroupRates = std::map<GroupMeasure, Mean>;
using ChangeOptions = std::function<void(inference::TestOptions&)>;

[[nodiscard]] inference::TestOptions optionsOf(const GroupCell& cell);

// At the level .05, per data set 1 or 0: any voxel by the largest t ("t"), by enhancement ("enhanced"), any
// cluster by its mass ("mass"), any voxel by the false discovery rate ("fdr"); whether the errors look
// asymmetric
// ("asymmetric"), of sign flips. `change`: a fault to plant.
[[nodiscard]] GroupRates measureNullGroups(const GroupCell& cell, int sets, unsigned seed,
                                           const ChangeOptions& change = nullptr);

// Of how many data sets the symmetry is doubted.
[[nodiscard]] Mean measureDoubts(const GroupCell& cell, int sets, unsigned seed);

// The share of the voxels with a planted effect that is found, by the same tests, by t of smoothed variances
// ("smoothed") and by the parametric t test with Bonferroni's correction ("bonferroni").
[[nodiscard]] GroupRates measureGroupPower(const GroupCell& cell, int sets, unsigned seed);

}  // namespace calibration

#endif
