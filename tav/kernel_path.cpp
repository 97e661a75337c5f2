#include "tav/kernel_path.h"

#include <algorithm>
#include <cstring>

#include "simo/randomness.h"
#include "tav/result_writer.h"

namespace tav {
namespace {

// Voxels per batch: their results stay in the first-level cache.
constexpr std::size_t kBatch = 256;

bool isWithinLimits(const VoxelJob& job) {
  const bool hasIntervals = std::any_of(job.sets.begin(), job.sets.end(),
                                        [](const VoxelSet& set) { return !set.intervals.empty(); });
  return hasIntervals && job.order >= 1 && job.order <= kernel::kMaxOrder && job.nullDraws >= 1 &&
         job.nullDraws <= kernel::kMaxDraws && job.nrOfSurrogates >= 1;
}

kernel::SetSpec specOf(const VoxelSet& set, const VoxelFile& file) {
  kernel::SetSpec spec{file.isFloat ? kernel::Element::kFloat : kernel::Element::kUint16,
                       set.reference->elements(),
                       set.surrogates->elements(),
                       static_cast<std::size_t>(set.surrogates->nCols),
                       {}};
  for (const TAV_intv& interval : set.intervals)
    spec.intervals.push_back({interval.first - 1, interval.last - interval.first + 1});
  return spec;
}

kernel::PlanSpec specOf(const VoxelJob& job) {
  kernel::PlanSpec spec{
      job.order, job.nullDraws, job.lagPairForm == simo::LagPairForm::kConsistent, job.nrOfSurrogates, {}};
  for (const VoxelSet& set : job.sets)
    spec.sets.push_back(specOf(set, job.files[static_cast<std::size_t>(set.file)]));
  return spec;
}

}  // namespace

void KernelPath::begin(const VoxelJob& job) {
  job_ = job;
  nrReferred_ = 0;
  plan_.reset();
  work_.reset();
  isReferenceReady_ = false;
  if (!isWithinLimits(job)) return;
  plan_ = std::make_unique<kernel::Plan>(specOf(job), kernel_);
  work_ = std::make_unique<kernel::Workspace>(plan_->view(), kernel_.width);
  const auto draws = static_cast<std::size_t>(job.nullDraws);
  drawsPerVoxel_ = static_cast<std::size_t>(plan_->view().nrOfIntervals) * draws;
  for (auto& plane : measures_) plane.resize(kBatch);
  for (auto& plane : nulls_) plane.resize(kBatch * draws);
  verdicts_.resize(kBatch);
  nullVerdicts_.resize(kBatch * draws);
}

void KernelPath::compute(std::size_t nrOfVoxels, std::span<const VoxelData> data, const VoxelResults& results,
                         VoxelCounts& counts) {
  if (plan_ == nullptr) return reference().compute(nrOfVoxels, data, results, counts);
  const Inclusion inclusion(job_, data);
  ResultWriter writer(job_, results.furtherNulls == nullptr ? 0 : inclusion.count(nrOfVoxels), results,
                      counts);
  nrInCall_ = nrOfVoxels;
  copies_.clear();
  startBatch();
  for (std::size_t voxel = 0; voxel < nrOfVoxels; ++voxel) {
    if (!inclusion.includes(voxel)) {
      writer.skip(voxel);
      continue;
    }
    addVoxel(voxel, data);
    if (voxels_.size() == kBatch) finishBatch(data, writer);
  }
  finishBatch(data, writer);
}

// Prepared when it is first needed: for most jobs never.
ReferencePath& KernelPath::reference() {
  if (!isReferenceReady_) reference_.begin(job_);
  isReferenceReady_ = true;
  return reference_;
}

void KernelPath::startBatch() {
  voxels_.clear();
  courses_.clear();
  drawn_.clear();
}

void KernelPath::addVoxel(std::size_t voxel, std::span<const VoxelData> data) {
  voxels_.push_back(voxel);
  for (std::size_t set = 0; set < job_.sets.size(); ++set) courses_.push_back(courseOf(voxel, set, data));
  for (std::size_t i = 0; i < drawsPerVoxel_; ++i) {
    drawn_.push_back(static_cast<unsigned>(simo::nextRandom()) % static_cast<unsigned>(job_.nrOfSurrogates));
  }
}

// Kernels read a little behind a course: the next one, but for the last courses of the data.
bool KernelPath::mayReadBehind(std::size_t voxel, int nrOfVolumes, std::size_t valueBytes) const {
  const std::size_t bytesBehind =
      (nrInCall_ - 1 - voxel) * static_cast<std::size_t>(nrOfVolumes) * valueBytes;
  return bytesBehind >= static_cast<std::size_t>(kernel::kReadSlack);
}

const void* KernelPath::courseOf(std::size_t voxel, std::size_t set, std::span<const VoxelData> data) {
  const auto file = static_cast<std::size_t>(job_.sets[set].file);
  const int nrOfVolumes = job_.files[file].nrOfVolumes;
  const std::size_t valueBytes = data[file].floats != nullptr ? sizeof(float) : sizeof(std::uint16_t);
  const std::size_t courseBytes = static_cast<std::size_t>(nrOfVolumes) * valueBytes;
  const void* const values =
      data[file].floats != nullptr ? static_cast<const void*>(data[file].floats) : data[file].shorts;
  const auto* const course = static_cast<const unsigned char*>(values) + voxel * courseBytes;
  if (mayReadBehind(voxel, nrOfVolumes, valueBytes)) return course;
  auto& copy = copies_.emplace_back(std::make_unique<unsigned char[]>(courseBytes + kernel::kReadSlack));
  std::memcpy(copy.get(), course, courseBytes);
  return copy.get();
}

void KernelPath::finishBatch(std::span<const VoxelData> data, ResultWriter& writer) {
  if (voxels_.empty()) return;
  const kernel::BatchView batch{
      voxels_.size(),       courses_.data(),
      drawn_.data(),        {measures_[0].data(), measures_[1].data(), measures_[2].data()},
      verdicts_.data(),     {nulls_[0].data(), nulls_[1].data(), nulls_[2].data()},
      nullVerdicts_.data(), kBatch};
  kernel::run(kernel_, plan_->view(), batch, work_->view());
  for (std::size_t i = 0; i < voxels_.size(); ++i) storeVoxel(i, data, writer);
  startBatch();
}

void KernelPath::storeVoxel(std::size_t i, std::span<const VoxelData> data, ResultWriter& writer) {
  const auto draws = static_cast<std::size_t>(job_.nullDraws);
  const auto at = [i](std::size_t draw) { return draw * kBatch + i; };
  bool isSure = verdicts_[i] != kernel::Verdict::kUnsure;
  if (verdicts_[i] == kernel::Verdict::kDone) {
    for (std::size_t k = 0; k < draws; ++k)
      isSure = isSure && nullVerdicts_[at(k)] != kernel::Verdict::kUnsure;
  }
  if (!isSure) {
    ++nrReferred_;
    return writer.write(voxels_[i],
                        reference().computeDrawn(voxels_[i], data, drawn_.data() + i * drawsPerVoxel_));
  }
  if (verdicts_[i] != kernel::Verdict::kDone) return writer.writeIllDefined(voxels_[i]);
  writer.writeTruth(voxels_[i], {measures_[0][i], measures_[1][i], measures_[2][i]});
  for (std::size_t k = 0; k < draws; ++k) {
    writer.writeNull(voxels_[i], k, nullVerdicts_[at(k)] == kernel::Verdict::kDone,
                     {nulls_[0][at(k)], nulls_[1][at(k)], nulls_[2][at(k)]});
  }
}

}  // namespace tav
