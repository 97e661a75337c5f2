// All voxels of some files, read together piece by piece in the order of the grid.
#ifndef TAVMAP_TAV_PIECE_READER_H
#define TAVMAP_TAV_PIECE_READER_H

#include <cstddef>
#include <ostream>
#include <vector>

#include "tav/voxel_path.h"
#include "tav/vtc_cache.h"

namespace tav {

// A piece is as many voxels as every file's buffer holds, and never reaches into the next slice.
class PieceReader {
 public:
  // Rewinds the files, which all have this grid and outlive the reader.
  PieceReader(const std::vector<VtcFile*>& files, std::size_t voxelsPerSlice, std::size_t nrOfSlices);

  // Goes to the next piece; false behind the last one, or when a file does not hold it: hasFailed().
  [[nodiscard]] bool next(std::ostream& errors);
  [[nodiscard]] bool hasFailed() const { return hasFailed_; }

  // Of the present piece. The data are valid until next().
  [[nodiscard]] std::size_t first() const { return first_; }
  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] const std::vector<VoxelData>& data() const { return data_; }
  [[nodiscard]] std::size_t slice() const { return first_ / voxelsPerSlice_; }

 private:
  const std::vector<VtcFile*>& files_;
  std::size_t voxelsPerSlice_, end_, mostVoxels_;
  std::size_t first_ = 0, count_ = 0;
  bool hasFailed_ = false;
  std::vector<VoxelData> data_;
};

}  // namespace tav

#endif
