#include "tav/memory_store.h"

#include <algorithm>

namespace tav {
namespace {

std::size_t cells(std::int32_t start, std::int32_t end, std::int32_t resolution) {
  return end <= start ? 0 : static_cast<std::size_t>((end - start) / std::max(resolution, std::int32_t{1}));
}

std::size_t cellsOf(const MapBox& box) {
  return cells(box.xStart, box.xEnd, box.resolution) * cells(box.yStart, box.yEnd, box.resolution) *
         cells(box.zStart, box.zEnd, box.resolution);
}

}  // namespace

int MemoryStore::discard() {
  maps_.clear();
  return 1;
}

bool MemoryStore::create(const MapSetShape& shape, std::ostream& /*errors*/) {
  shape_ = shape;
  for (int i = 0; i < shape.nrOfMaps; ++i) {
    Map& map = maps_.emplace_back();
    map.header.thresholds.resize(shape.thresholdNames.size());
    map.values.resize(cellsOf(shape.box));
  }
  return true;
}

float* MemoryStore::values(int map) {
  const auto index = static_cast<std::size_t>(map);
  return index < maps_.size() ? maps_[index].values.data() : nullptr;
}

void MemoryStore::describe(int map, const MapHeader& header) {
  MapHeader& own = maps_[static_cast<std::size_t>(map)].header;
  own = header;
  own.thresholds.resize(shape_.thresholdNames.size());
}

void MemoryStore::saveMaps(const std::string& /*path*/) {}

std::string MemoryStore::saveLog(const std::string& /*path*/, const std::string& /*text*/) {
  return "";
}

}  // namespace tav
