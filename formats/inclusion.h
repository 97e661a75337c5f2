// Which voxels of an imported series the engine's inclusion threshold selects, and the constant
// that makes them exactly those of a mask.
#ifndef TAVMAP_FORMATS_INCLUSION_H
#define TAVMAP_FORMATS_INCLUSION_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace formats {

struct InclusionPlan {
  double shift = 0;  // a whole number, 0 or more
  std::size_t voxelsInMask = 0;
  std::size_t voxelsIncluded = 0;  // after the shift
  std::size_t notFinite = 0;       // inside the mask, first value infinite or not a number
};

// `firstValues`: the first time point of every voxel; `inMask`: one flag per voxel, empty for no
// mask (the shift is then 0). The shift is 0 when every voxel inside exceeds the threshold already;
// voxels whose first value is not finite have no say. `rounded`: values will be stored as integers.
[[nodiscard]] InclusionPlan planInclusion(const std::vector<float>& firstValues,
                                          const std::vector<std::uint8_t>& inMask, double threshold,
                                          bool rounded);

// Mean magnitude of the change between two volumes inside the mask, over voxels where both are
// finite; 0 without any.
[[nodiscard]] double meanChange(const std::vector<float>& a, const std::vector<float>& b,
                                const std::vector<std::uint8_t>& inMask);

}  // namespace formats

#endif
