// Recovered against planted influence: what a map set shows in the regions of a truth file.
#ifndef TAVMAP_SIMULATION_RECOVERY_H
#define TAVMAP_SIMULATION_RECOVERY_H

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "formats/image.h"
#include "formats/map_set.h"
#include "simulation/truth.h"

namespace simulation {

// The three measures that have a threshold of their own, in the order of every table here.
enum Direction : std::size_t { kRef2Vox, kVox2Ref, kInst };
inline constexpr std::size_t kDirections = 3;

struct RegionRecovery {
  TruthRegion planted;
  std::size_t computed = 0;                 // voxels of the region with a value in any of the maps
  std::array<double, kDirections> share{};  // of them: that pass the threshold of the map
  double meanSign = 0;                      // of the difference map: 1 reference leads, -1 voxel leads
  bool recovered = false;
};

struct ConditionRecovery {
  std::string condition;
  std::vector<RegionRecovery> regions;
  std::size_t outsideComputed = 0;                        // voxels outside all regions
  std::array<std::size_t, kDirections> falsePositives{};  // of them: that pass
  bool outsideQuiet = false;

  [[nodiscard]] bool recovered() const;
};

// What counts as recovered. A measure that was planted passes in most of the region's voxels, one
// that was not in few; the difference map's sign tells who leads; hardly a voxel passes elsewhere.
// The reference itself is not judged: its voxels share its noise by construction.
inline constexpr double kPlantedShare = 0.5;
inline constexpr double kUnplantedShare = 0.1;
inline constexpr double kOutsideShare = 0.01;

// The conditions of a set, in map order: what stands before ": Ref2Vox".
[[nodiscard]] std::vector<std::string> conditionsOf(const formats::MapSet& maps);

// The maps of one condition at a false discovery rate `q` that the set has a threshold for. A voxel
// passes when its value is not 0 and its magnitude reaches the threshold; NaN: none does.
// Throws std::invalid_argument in words: a map or a threshold is missing, a region of the truth is
// not in the labels, the sizes differ.
[[nodiscard]] ConditionRecovery assess(const formats::MapSet& maps, const std::string& condition, double q,
                                       const Truth& truth, const formats::LabelImage& labels);

// A table with one line a region, the false positives and a verdict.
[[nodiscard]] std::string toText(const ConditionRecovery& recovery);

// The same as JSON: {"q", "recovered", "conditions": [...]}.
[[nodiscard]] std::string toJsonText(const std::vector<ConditionRecovery>& recoveries, double q);

}  // namespace simulation

#endif
