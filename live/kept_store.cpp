#include "live/kept_store.h"

#include <algorithm>
#include <cstddef>

#include "io/grid_size.h"

namespace live {

bool KeptStore::create(const tav::MapSetShape& shape, std::ostream& /*errors*/) {
  const tav::MapBox& box = shape.box;
  const int edge = std::max(box.resolution, 1);
  const io::GridSize grid{(box.xEnd - box.xStart) / edge, (box.yEnd - box.yStart) / edge,
                          (box.zEnd - box.zStart) / edge};
  maps_.resize(std::max(maps_.size(), static_cast<std::size_t>(shape.nrOfMaps)));
  for (std::vector<float>& map : maps_) map.resize(grid.voxels());
  return true;
}

}  // namespace live
