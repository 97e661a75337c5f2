#include "io/crdutils.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <utility>

#include "io/cnvtcfile.h"

namespace {

// 128 - c without overflow; far values stay far outside every box.
std::int32_t from128(std::int32_t c) {
  const std::int64_t wide = std::int64_t{128} - c;
  return static_cast<std::int32_t>(std::min<std::int64_t>(wide, std::numeric_limits<std::int32_t>::max()));
}

std::int32_t cellIndex(std::int32_t coordinate, std::int32_t start, std::int32_t resolution) {
  return roundHalfUp((static_cast<double>(coordinate) - start) / resolution);
}

// Collects cells; a region can have many more voxels than is good for a linear search.
class CellCounter {
 public:
  explicit CellCounter(const io::GridSize& grid) : grid_(grid) {}

  void count(const voicrd& cell) {
    const std::size_t key = grid_.index(cell.x, cell.y, cell.z);
    const auto [entry, isNew] = positions_.try_emplace(key, cells_.size());
    if (isNew) {
      cells_.push_back(cell);
    } else {
      ++cells_[entry->second].n;
    }
  }
  std::vector<voicrd> take() { return std::move(cells_); }

 private:
  io::GridSize grid_;
  std::vector<voicrd> cells_;
  std::unordered_map<std::size_t, std::size_t> positions_;
};

}  // namespace

std::int32_t roundHalfUp(double t) {
  const double rounded = std::floor(t + 0.5);
  if (!(rounded >= std::numeric_limits<std::int32_t>::min())) return std::numeric_limits<std::int32_t>::min();
  if (rounded > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(rounded);
}

void toAnatomicalCoordinates(const std::int32_t* voxels, std::int32_t nVoxels, bool talairach,
                             std::int32_t* out) {
  for (std::int32_t i = 0; i < nVoxels; ++i, voxels += 3, out += 3) {
    if (talairach) {
      out[0] = from128(voxels[1]);
      out[1] = from128(voxels[2]);
      out[2] = from128(voxels[0]);
    } else {
      std::copy(voxels, voxels + 3, out);
    }
  }
}

VoiCells cellsOfVoxels(const VTC_Header& header, const std::int32_t* coordinates, std::int32_t nVoxels) {
  const io::GridSize grid = gridOf(header);
  VoiCells result;
  CellCounter counter(grid);
  for (std::int32_t i = 0; i < nVoxels; ++i, coordinates += 3) {
    const voicrd cell{cellIndex(coordinates[0], header.xStart, header.resolution),
                      cellIndex(coordinates[1], header.yStart, header.resolution),
                      cellIndex(coordinates[2], header.zStart, header.resolution), 1};
    if (grid.contains(cell.x, cell.y, cell.z)) {
      counter.count(cell);
    } else {
      ++result.nrOutside;
    }
  }
  result.cells = counter.take();
  return result;
}
