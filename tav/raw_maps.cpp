#include "tav/raw_maps.h"

namespace tav {

rawTAVMaps::rawTAVMaps(unsigned nx, unsigned ny, unsigned nz)
    : planes_{Array3D<float>(nz, ny, nx), Array3D<float>(nz, ny, nx), Array3D<float>(nz, ny, nx)} {}

float* rawTAVMaps::values(int measure) {
  return plane(measure).elements();
}

const float* rawTAVMaps::values(int measure) const {
  return plane(measure).elements();
}

void FurtherNulls::Block::resize(std::size_t nrOfVoxels, std::size_t drawsPerVoxel) {
  nrOfVoxels_ = nrOfVoxels;
  planeSize_ = nrOfVoxels * drawsPerVoxel;
  if (planeSize_ * kNrOfMeasures <= capacity_) return;
  capacity_ = planeSize_ * kNrOfMeasures;
  values_ = std::make_unique_for_overwrite<float[]>(capacity_);
}

FurtherNulls::Block& FurtherNulls::append(std::size_t nrOfVoxels) {
  if (used_ == blocks_.size()) blocks_.emplace_back();
  Block& block = blocks_[used_++];
  block.resize(nrOfVoxels, drawsPerVoxel_);
  return block;
}

}  // namespace tav
