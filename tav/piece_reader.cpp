#include "tav/piece_reader.h"

#include <algorithm>

namespace tav {

PieceReader::PieceReader(const std::vector<VtcFile*>& files, std::size_t voxelsPerSlice,
                         std::size_t nrOfSlices)
    : files_(files),
      voxelsPerSlice_(voxelsPerSlice),
      end_(voxelsPerSlice * nrOfSlices),
      mostVoxels_(voxelsPerSlice) {
  for (VtcFile* const file : files) {
    file->rewind();
    mostVoxels_ = std::min(mostVoxels_, file->voxelsPerRead());
  }
}

bool PieceReader::next(std::ostream& errors) {
  first_ += count_;
  if (first_ >= end_) return false;
  count_ = std::min(mostVoxels_, voxelsPerSlice_ - first_ % voxelsPerSlice_);
  data_.clear();
  for (VtcFile* const file : files_) {
    if (!file->readVoxels(count_)) {
      reportUnreadable(files_, file, (slice() + 1) * voxelsPerSlice_, errors);
      hasFailed_ = true;
      return false;
    }
    data_.push_back(file->piece());
  }
  return true;
}

}  // namespace tav
