// The size of a voxel grid and the order of its voxels in files and maps.
#ifndef TAVMAP_IO_GRID_SIZE_H
#define TAVMAP_IO_GRID_SIZE_H

#include <array>
#include <cstddef>
#include <string>

namespace io {

// Voxels along each axis. Voxel (i, j, k), each from 0, has the index (k * y + j) * x + i: the place of its
// value in a map and of its time series in a file.
struct GridSize {
  int x = 0, y = 0, z = 0;

  // Voxels of one z-slice, and of the grid.
  [[nodiscard]] std::size_t slice() const {
    return static_cast<std::size_t>(x) * static_cast<std::size_t>(y);
  }
  [[nodiscard]] std::size_t voxels() const { return slice() * static_cast<std::size_t>(z); }
  // Of a voxel that the grid contains.
  [[nodiscard]] std::size_t index(int i, int j, int k) const {
    return (static_cast<std::size_t>(k) * static_cast<std::size_t>(y) + static_cast<std::size_t>(j)) *
               static_cast<std::size_t>(x) +
           static_cast<std::size_t>(i);
  }
  [[nodiscard]] std::size_t index(const std::array<int, 3>& voxel) const {
    return index(voxel[0], voxel[1], voxel[2]);
  }
  // Of an index below voxels().
  [[nodiscard]] std::array<int, 3> voxelAt(std::size_t index) const;
  [[nodiscard]] bool contains(int i, int j, int k) const {
    return i >= 0 && i < x && j >= 0 && j < y && k >= 0 && k < z;
  }
  [[nodiscard]] bool contains(const std::array<int, 3>& voxel) const {
    return contains(voxel[0], voxel[1], voxel[2]);
  }

  friend bool operator==(const GridSize&, const GridSize&) = default;
};

[[nodiscard]] std::string toText(const GridSize& size);  // "24 x 32 x 35"

}  // namespace io

#endif
