#include "results/family_wise_words.h"

#include <fmt/core.h>

#include <algorithm>

namespace study {
namespace {

std::string counted(std::size_t count, const std::string& what) {
  if (count == 0) return "no " + what;
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string passingText(const FamilyWiseLevel& level, int draws) {
  if (!level.threshold) return fmt::format("out of reach with {} draws", draws);
  if (level.voxelsPassing == 0 && level.clustersPassing == 0) return "none";
  std::string text =
      fmt::format("{}; {}", counted(level.voxelsPassing, "voxel"), counted(level.clustersPassing, "cluster"));
  if (level.clustersPassing > 0) text += " of " + counted(level.voxelsInClusters, "voxel");
  return text;
}

}  // namespace

std::string familyWiseText(const FamilyWiseResult& result) {
  const auto level = std::find_if(result.levels.begin(), result.levels.end(),
                                  [](const FamilyWiseLevel& one) { return one.alpha == kFamilyWiseAlpha; });
  return fmt::format("family-wise p of {} or less: {}", kFamilyWiseAlpha,
                     level == result.levels.end() ? "not looked at" : passingText(*level, result.draws));
}

}  // namespace study
