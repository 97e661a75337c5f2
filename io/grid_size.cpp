#include "io/grid_size.h"

namespace io {

std::array<int, 3> GridSize::voxelAt(std::size_t index) const {
  const auto nx = static_cast<std::size_t>(x), ny = static_cast<std::size_t>(y);
  return {static_cast<int>(index % nx), static_cast<int>(index / nx % ny),
          static_cast<int>(index / (nx * ny))};
}

std::string toText(const GridSize& size) {
  return std::to_string(size.x) + " x " + std::to_string(size.y) + " x " + std::to_string(size.z);
}

}  // namespace io
