#include "tav/reference_path.h"

#include "tav/voxel_writer.h"

namespace tav {
namespace {

void computeVoxels(const VoxelJob& job, VoxelFits& fits, std::size_t nrOfVoxels,
                   std::span<const VoxelData> data, const VoxelResults& results) {
  const Inclusion inclusion(job, data, nrOfVoxels);
  VoxelWriter writer(job, inclusion.count(), results);
  for (std::size_t voxel = 0; voxel < nrOfVoxels; ++voxel) {
    if (inclusion.includes(voxel)) {
      writer.write(voxel, fits.compute(voxel, data));
    } else {
      writer.skip(voxel, 1);
    }
  }
}

}  // namespace

void ReferencePath::begin(std::span<const VoxelJob> jobs) {
  jobs_.assign(jobs.begin(), jobs.end());
  fits_.clear();
  for (const VoxelJob& job : jobs_) fits_.push_back(makeVoxelFits(job));
}

std::unique_ptr<VoxelPath> ReferencePath::beside(std::span<simo::RandomStream* const> streams) const {
  std::vector<VoxelJob> jobs = jobs_;
  for (std::size_t i = 0; i < jobs.size(); ++i) jobs[i].random = streams[i];
  auto path = std::make_unique<ReferencePath>();
  path->begin(jobs);
  return path;
}

void ReferencePath::compute(std::size_t nrOfVoxels, std::span<const VoxelData> data,
                            std::span<const VoxelResults> results) {
  for (std::size_t i = 0; i < jobs_.size(); ++i)
    computeVoxels(jobs_[i], *fits_[i], nrOfVoxels, data, results[i]);
}

}  // namespace tav
