// Raw measures of one reference and one condition, before they become maps.
#ifndef TAVMAP_TAV_RAW_MAPS_H
#define TAVMAP_TAV_RAW_MAPS_H

#include <array>
#include <cstddef>
#include <memory>
#include <span>
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

  // The voxels of one call: for each measure, draw after draw, one value per voxel, in the order of the
  // grid. Not initialised.
  class Block {
   public:
    // planeSize() values of one measure.
    [[nodiscard]] float* plane(int measure) {
      return values_.get() + planeSize_ * static_cast<std::size_t>(measure);
    }
    [[nodiscard]] const float* plane(int measure) const {
      return values_.get() + planeSize_ * static_cast<std::size_t>(measure);
    }
    // nrOfVoxels() values of one measure and further draw, from 0.
    [[nodiscard]] float* draw(int measure, std::size_t draw) { return plane(measure) + draw * nrOfVoxels_; }
    [[nodiscard]] const float* draw(int measure, std::size_t draw) const {
      return plane(measure) + draw * nrOfVoxels_;
    }
    [[nodiscard]] std::size_t nrOfVoxels() const { return nrOfVoxels_; }
    [[nodiscard]] std::size_t planeSize() const { return planeSize_; }

   private:
    friend class FurtherNulls;
    void resize(std::size_t nrOfVoxels, std::size_t drawsPerVoxel);

    std::size_t nrOfVoxels_ = 0, planeSize_ = 0, capacity_ = 0;
    std::unique_ptr<float[]> values_;
  };

  // Room for further voxels. The reference holds until the next call.
  Block& append(std::size_t nrOfVoxels);
  // Forgets the values and keeps the memory for the next ones.
  void clear() { used_ = 0; }
  [[nodiscard]] std::size_t drawsPerVoxel() const { return drawsPerVoxel_; }
  [[nodiscard]] std::span<const Block> blocks() const { return {blocks_.data(), used_}; }
  [[nodiscard]] Block& block(std::size_t index) { return blocks_[index]; }

 private:
  std::size_t drawsPerVoxel_;
  std::vector<Block> blocks_;
  std::size_t used_ = 0;
};

}  // namespace tav

#endif
