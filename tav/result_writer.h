// What the voxel paths share: which voxels are computed, and how results reach the stores.
#ifndef TAVMAP_TAV_RESULT_WRITER_H
#define TAVMAP_TAV_RESULT_WRITER_H

#include <array>
#include <cstddef>
#include <span>

#include "tav/voxel_path.h"

namespace tav {

struct VoxelMeasures;

// The inclusion test of one call: every set's first value must exceed the threshold; one that is
// not a number does not.
class Inclusion {
 public:
  Inclusion(const VoxelJob& job, std::span<const VoxelData> data) : job_(job), data_(data) {}
  [[nodiscard]] bool includes(std::size_t voxel) const;
  // Included voxels among the first `nrOfVoxels`.
  [[nodiscard]] std::size_t count(std::size_t nrOfVoxels) const;

 private:
  const VoxelJob& job_;
  std::span<const VoxelData> data_;
};

// Writes the voxels of one call, in order, and counts them.
class ResultWriter {
 public:
  // The measures of one draw, or of the true reference.
  using Values = std::array<float, kNrOfMeasures>;

  ResultWriter(const VoxelJob& job, std::size_t nrIncluded, const VoxelResults& results, VoxelCounts& counts);

  void skip(std::size_t voxel);
  void write(std::size_t voxel, const VoxelMeasures& measures);

  // The same in parts, for each included voxel: either its failure, or its measures and then every
  // draw's, `isDefined` false when that fit failed.
  void writeIllDefined(std::size_t voxel);
  void writeTruth(std::size_t voxel, const Values& values);
  void writeNull(std::size_t voxel, std::size_t draw, bool isDefined, const Values& values);

 private:
  const VoxelResults& results_;
  VoxelCounts& counts_;
  std::size_t furtherDraws_;
  FurtherNulls::Block* further_;  // null when there are none
  std::size_t nrWritten_ = 0;     // included voxels so far
};

}  // namespace tav

#endif
