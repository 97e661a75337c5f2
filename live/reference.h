// A reference as a person points at it: a sphere, a label, a drawing.
#ifndef TAVMAP_LIVE_REFERENCE_H
#define TAVMAP_LIVE_REFERENCE_H

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "prepare/grid.h"
#include "prepare/label_volume.h"
#include "prepare/regions.h"
#include "request/request.h"

namespace live {

struct Reference {
  study::ReferenceKind kind = study::ReferenceKind::kSphere;  // of a sphere, labels or voxels
  std::array<double, 3> centreMm{};                           // scanner coordinates (RAS+)
  double radiusMm = 0;
  std::int32_t label = 0;
  std::vector<std::size_t> cells;  // of the runs' grid, from 0, ascending
  bool operator==(const Reference&) const = default;
};

// The atlas of a study: the entry of its request that names it, its labels, and where they lie on the runs'
// grid.
struct Atlas {
  study::ReferenceRequest entry;
  study::LabelVolume image;
  std::map<std::int32_t, study::Region> regions;  // those of which enough lies in the runs
};

// The entry of a request that makes this reference. Names follow from what is pointed at, so that equal
// references have equal names, and with them equal random numbers. Throws study::InputError for a label
// without an atlas.
[[nodiscard]] study::ReferenceRequest entryOf(const Reference& reference, const Atlas* atlas,
                                              const study::Grid& grid);

// Its voxels. Throws study::InputError, in words, for one outside the brain, without voxels, or of an unknown
// label.
[[nodiscard]] study::Region regionOf(const Reference& reference, const Atlas* atlas,
                                     const study::RegionSpace& space);

}  // namespace live

#endif
