// Raw measures of one reference and one condition, before they become maps.
#ifndef TAVMAP_TAV_RAW_MAPS_H
#define TAVMAP_TAV_RAW_MAPS_H

#include <array>
#include <cstddef>
#include <vector>

#include "simo/smatrix.h"

namespace tav {

inline constexpr int kNrOfMeasures = 3;

// The three linear feedback measures of every voxel, each an array [z][y][x] in one block:
// plane 0 from the reference to the voxel, plane 1 from the voxel to the reference, plane 2
// instantaneous. Not initialised.
class rawTAVMaps {
 public:
  rawTAVMaps(unsigned nx, unsigned ny, unsigned nz);

  [[nodiscard]] Array3D<float>& plane(int measure) { return planes_[static_cast<std::size_t>(measure)]; }
  [[nodiscard]] const Array3D<float>& plane(int measure) const {
    return planes_[static_cast<std::size_t>(measure)];
  }
  // The plane as nz * ny * nx values, null when there are none.
  [[nodiscard]] float* values(int measure);
  [[nodiscard]] const float* values(int measure) const;
  [[nodiscard]] std::size_t nrOfVoxels() const { return planes_[0].size(); }

 private:
  std::array<Array3D<float>, kNrOfMeasures> planes_;
};

// The null measures beyond the first draw, when more than one surrogate is drawn per voxel. Only
// voxels that were not skipped are kept: a skipped voxel's null values are all 0, which the
// threshold search leaves out anyway. Memory: 12 bytes per such voxel and further draw.
class FurtherNulls {
 public:
  explicit FurtherNulls(int drawsPerVoxel) : drawsPerVoxel_(static_cast<std::size_t>(drawsPerVoxel)) {}

  class Block {
   public:
    Block(std::size_t nrOfVoxels, std::size_t drawsPerVoxel)
        : planeSize_(nrOfVoxels * drawsPerVoxel), values_(planeSize_ * kNrOfMeasures) {}
    // Values [voxel][draw] of one measure, voxels in the order of the grid.
    [[nodiscard]] float* plane(int measure) {
      return values_.data() + planeSize_ * static_cast<std::size_t>(measure);
    }
    [[nodiscard]] const float* plane(int measure) const {
      return values_.data() + planeSize_ * static_cast<std::size_t>(measure);
    }
    [[nodiscard]] std::size_t planeSize() const { return planeSize_; }

   private:
    std::size_t planeSize_;
    std::vector<float> values_;
  };

  // Room for further voxels, zero-filled. The reference holds until the next call.
  Block& append(std::size_t nrOfVoxels) { return blocks_.emplace_back(nrOfVoxels, drawsPerVoxel_); }
  void clear() { blocks_.clear(); }
  [[nodiscard]] std::size_t drawsPerVoxel() const { return drawsPerVoxel_; }
  [[nodiscard]] const std::vector<Block>& blocks() const { return blocks_; }

 private:
  std::size_t drawsPerVoxel_;
  std::vector<Block> blocks_;
};

}  // namespace tav

#endif
