// What the voxel paths share: which voxels are computed, and how results reach the stores.
#ifndef TAVMAP_TAV_VOXEL_WRITER_H
#define TAVMAP_TAV_VOXEL_WRITER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "tav/voxel_path.h"

namespace tav {

struct VoxelMeasures;

// The inclusion test of one call: every set's first value must exceed the threshold; one that is
// not a number does not.
class Inclusion {
 public:
  Inclusion(const VoxelJob& job, std::span<const VoxelData> data, std::size_t nrOfVoxels);
  [[nodiscard]] bool includes(std::size_t voxel) const { return isIncluded_[voxel] != 0; }
  // The voxel behind the last one of the run in which `voxel` is: all included, or none.
  [[nodiscard]] std::size_t runEnd(std::size_t voxel) const;
  [[nodiscard]] std::size_t count() const;

 private:
  std::vector<std::uint8_t> isIncluded_;  // 1 or 0
};

// Writes the voxels of one call and one reference, in order, and counts them.
class VoxelWriter {
 public:
  // The measures of one draw, or of the true reference; and those of voxels that follow each other.
  using Values = std::array<float, kNrOfMeasures>;
  using Rows = std::array<const float*, kNrOfMeasures>;

  // nrIncluded: voxels of the call that will be written, not skipped.
  VoxelWriter(const VoxelJob& job, std::size_t nrIncluded, const VoxelResults& results);

  void skip(std::size_t first, std::size_t count);
  void write(std::size_t voxel, const VoxelMeasures& measures);

  // The same in parts, for voxels whose draws stand beside each other. First the further draws of
  // the next `count` included voxels: measures[m] points at those of draw 1, the next draw's are
  // `stride` values on. Then for each of these voxels, in order, one of write(), writeIllDefined()
  // and writeTruths(), which may be followed by failures of draws of its last voxel.
  void takeFurtherDraws(std::size_t count, const Rows& measures, std::size_t stride);
  void writeIllDefined(std::size_t voxel);
  void writeTruths(std::size_t first, std::size_t count, const Rows& values, const Rows& firstNulls);
  void writeNullIllDefined(std::size_t voxel, std::size_t draw);

 private:
  void writeFurther(std::size_t draw, const Values& values);

  const VoxelResults& results_;
  std::size_t furtherDraws_;
  FurtherNulls::Block* further_;  // null when there are none
  std::size_t nrWritten_ = 0;     // included voxels so far
};

}  // namespace tav

#endif
