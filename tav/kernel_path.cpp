#include "tav/kernel_path.h"

#include <algorithm>

namespace tav {
namespace {

bool isWithinLimits(const VoxelJob& job) {
  const bool hasIntervals = std::any_of(job.sets.begin(), job.sets.end(),
                                        [](const VoxelSet& set) { return !set.intervals.empty(); });
  return hasIntervals && job.order >= 1 && job.order <= kernel::kMaxOrder && job.nullDraws >= 1 &&
         job.nullDraws <= kernel::kMaxDraws && job.nrOfSurrogates >= 1;
}

}  // namespace

void KernelPath::begin(std::span<const VoxelJob> jobs) {
  batches_.clear();
  if (jobs.empty() || !isWithinLimits(jobs[0])) return reference_.begin(jobs);
  jobsPerBatches_ = jobs[0].nullDraws > 1 ? 1 : kernel::extent(kernel::kMaxReferences);
  for (std::size_t first = 0; first < jobs.size(); first += jobsPerBatches_)
    batches_.emplace_back(jobs.subspan(first, std::min(jobsPerBatches_, jobs.size() - first)), kernel_);
}

std::unique_ptr<VoxelPath> KernelPath::beside(std::span<simo::RandomStream* const> streams) const {
  if (batches_.empty()) return reference_.beside(streams);
  auto path = std::make_unique<KernelPath>(kernel_);
  path->jobsPerBatches_ = jobsPerBatches_;
  for (std::size_t i = 0; i < batches_.size(); ++i)
    path->batches_.emplace_back(batches_[i], streams.subspan(i * jobsPerBatches_));
  return path;
}

void KernelPath::compute(std::size_t nrOfVoxels, std::span<const VoxelData> data,
                         std::span<const VoxelResults> results) {
  if (batches_.empty()) return reference_.compute(nrOfVoxels, data, results);
  for (std::size_t i = 0; i < batches_.size(); ++i) {
    const std::size_t first = i * jobsPerBatches_;
    batches_[i].compute(nrOfVoxels, data,
                        results.subspan(first, std::min(jobsPerBatches_, results.size() - first)));
  }
}

std::size_t KernelPath::nrReferred() const {
  std::size_t count = 0;
  for (const KernelBatches& batches : batches_) count += batches.nrReferred();
  return count;
}

}  // namespace tav
