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

// Writes the voxels of one call and one reference, in order, and counts them.
class ResultWriter {
 public:
  // The measures of one draw, or of the true reference.
  using Values = std::array<float, kNrOfMeasures>;

  // nrIncluded: voxels of the call that will be written, not skipped.
  ResultWriter(const VoxelJob& job, std::size_t nrIncluded, const VoxelResults& results);

  void skip(std::size_t voxel);
  void write(std::size_t voxel, const VoxelMeasures& measures);

  // The same in parts, for voxels whose draws stand beside each other. First the further draws of
  // the next `count` included voxels: measures[m] points at those of draw 1, the next draw's are
  // `stride` values on. Then for each of these voxels, in order, one of write(), writeIllDefined()
  // and writeTruth(), which may be followed by failures of draws.
  void takeFurtherDraws(std::size_t count, const std::array<const float*, kNrOfMeasures>& measures,
                        std::size_t stride);
  void writeIllDefined(std::size_t voxel);
  void writeTruth(std::size_t voxel, const Values& values, const Values& firstNull);
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
