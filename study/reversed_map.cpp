#include "study/reversed_map.h"

#include <cstddef>
#include <limits>

#include "direction/reversed_difference.h"
#include "results/results.h"

namespace study {

std::vector<float> reversedMap(std::vector<ConditionRun>& runs, int order, double scale,
                               const std::vector<std::uint8_t>& codes) {
  std::vector<direction::ReferenceRun> references;
  for (const ConditionRun& run : runs)
    references.push_back({run.reference, run.intervals<direction::Interval>()});
  direction::ReversedDifference difference(order, references);
  std::vector<float> map(codes.size(), std::numeric_limits<float>::quiet_NaN());
  std::vector<std::vector<float>> courses(runs.size());
  for (std::size_t voxel = 0; voxel < codes.size(); ++voxel) {
    if (codes[voxel] != static_cast<std::uint8_t>(StatusCode::kComputed)) continue;
    for (std::size_t run = 0; run < runs.size(); ++run) courses[run] = runs[run].voxel(voxel);
    if (const auto found = difference.of(courses)) map[voxel] = static_cast<float>(scale * *found);
  }
  return map;
}

}  // namespace study
