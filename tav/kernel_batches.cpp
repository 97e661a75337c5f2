#include "tav/kernel_batches.h"

#include <algorithm>
#include <cstring>

namespace tav {
namespace {

// Voxels per batch: their results stay in the first-level cache.
constexpr std::size_t kBatch = 256;

kernel::ReferenceSpec referenceSpec(const VoxelSet& set) {
  return {set.reference->elements(), set.surrogates->elements(),
          static_cast<std::size_t>(set.surrogates->nCols)};
}

kernel::SetSpec setSpec(std::span<const VoxelJob> jobs, std::size_t index) {
  const VoxelSet& set = jobs[0].sets[index];
  const bool isFloat = jobs[0].files[static_cast<std::size_t>(set.file)].isFloat;
  kernel::SetSpec spec{isFloat ? kernel::Element::kFloat : kernel::Element::kUint16, {}, {}};
  for (const VoxelJob& job : jobs) spec.references.push_back(referenceSpec(job.sets[index]));
  for (const TAV_intv& interval : set.intervals)
    spec.intervals.push_back({interval.first - 1, interval.last - interval.first + 1});
  return spec;
}

kernel::PlanSpec planSpec(std::span<const VoxelJob> jobs) {
  const VoxelJob& any = jobs[0];
  const bool consistent = any.lagPairForm == simo::LagPairForm::kConsistent;
  kernel::PlanSpec spec{any.order, any.nullDraws, consistent, any.nrOfSurrogates, {}};
  for (std::size_t set = 0; set < any.sets.size(); ++set) spec.sets.push_back(setSpec(jobs, set));
  return spec;
}

// A voxel's verdicts in one number, 0 when they are all kDone. Draws stand kBatch apart.
void combineVerdicts(const std::vector<kernel::Verdict>& verdicts, const std::vector<kernel::Verdict>& nulls,
                     std::vector<std::uint8_t>& combined) {
  std::transform(verdicts.begin(), verdicts.end(), combined.begin(),
                 [](kernel::Verdict verdict) { return static_cast<std::uint8_t>(verdict); });
  for (std::size_t start = 0; start < nulls.size(); start += kBatch) {
    for (std::size_t i = 0; i < kBatch; ++i) combined[i] |= static_cast<std::uint8_t>(nulls[start + i]);
  }
}

}  // namespace

KernelBatches::Reference::Reference(const VoxelJob& voxelJob, std::size_t perVoxel)
    : job(voxelJob), draws(static_cast<std::size_t>(voxelJob.nullDraws)), drawsPerVoxel(perVoxel) {
  for (auto& plane : measures) plane.resize(kBatch);
  for (auto& plane : nulls) plane.resize(kBatch * draws);
  verdicts.resize(kBatch);
  nullVerdicts.resize(kBatch * draws);
  doubts.resize(kBatch);
}

kernel::ReferenceBatch KernelBatches::Reference::view() {
  return {drawn.data(),        {measures[0].data(), measures[1].data(), measures[2].data()},
          verdicts.data(),     {nulls[0].data(), nulls[1].data(), nulls[2].data()},
          nullVerdicts.data(), kBatch};
}

ReferenceFits& KernelBatches::Reference::fits() {
  if (ownFits == nullptr) ownFits = std::make_unique<ReferenceFits>(job);
  return *ownFits;
}

KernelBatches::KernelBatches(std::span<const VoxelJob> jobs, const kernel::Kernel& kernel)
    : kernel_(kernel), plan_(planSpec(jobs), kernel), work_(plan_.view(), kernel.width) {
  const auto draws = static_cast<std::size_t>(jobs[0].nullDraws);
  for (const VoxelJob& job : jobs)
    references_.emplace_back(job, static_cast<std::size_t>(plan_.view().nrOfIntervals) * draws);
}

void KernelBatches::compute(std::size_t nrOfVoxels, std::span<const VoxelData> data,
                            std::span<const VoxelResults> results) {
  const VoxelJob& any = references_.front().job;
  const Inclusion inclusion(any, data);
  const std::size_t nrIncluded = any.nullDraws > 1 ? inclusion.count(nrOfVoxels) : 0;
  std::deque<ResultWriter> writers;
  for (std::size_t i = 0; i < references_.size(); ++i)
    writers.emplace_back(references_[i].job, nrIncluded, results[i]);
  nrInCall_ = nrOfVoxels;
  copies_.clear();
  for (std::size_t voxel = 0; voxel < nrOfVoxels; ++voxel) {
    if (inclusion.includes(voxel)) {
      addVoxel(voxel, data);
      if (voxels_.size() == kBatch) finishBatch(data, writers);
    } else {
      for (ResultWriter& writer : writers) writer.skip(voxel);
    }
  }
  if (!voxels_.empty()) finishBatch(data, writers);
}

void KernelBatches::addVoxel(std::size_t voxel, std::span<const VoxelData> data) {
  voxels_.push_back(voxel);
  for (std::size_t set = 0; set < references_.front().job.sets.size(); ++set)
    courses_.push_back(courseOf(voxel, set, data));
  for (Reference& reference : references_) {
    const auto surrogates = static_cast<unsigned>(reference.job.nrOfSurrogates);
    for (std::size_t i = 0; i < reference.drawsPerVoxel; ++i)
      reference.drawn.push_back(static_cast<unsigned>(reference.job.random->next()) % surrogates);
  }
}

// Kernels read a little behind a course: the next one, but for the last courses of the data.
bool KernelBatches::mayReadBehind(std::size_t voxel, int nrOfVolumes, std::size_t valueBytes) const {
  const std::size_t bytesBehind =
      (nrInCall_ - 1 - voxel) * static_cast<std::size_t>(nrOfVolumes) * valueBytes;
  return bytesBehind >= static_cast<std::size_t>(kernel::kReadSlack);
}

const void* KernelBatches::courseOf(std::size_t voxel, std::size_t set, std::span<const VoxelData> data) {
  const VoxelJob& any = references_.front().job;
  const auto file = static_cast<std::size_t>(any.sets[set].file);
  const int nrOfVolumes = any.files[file].nrOfVolumes;
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

void KernelBatches::finishBatch(std::span<const VoxelData> data, std::deque<ResultWriter>& writers) {
  std::vector<kernel::ReferenceBatch> views;
  for (Reference& reference : references_) views.push_back(reference.view());
  kernel::run(kernel_, plan_.view(), {voxels_.size(), courses_.data(), views.data()}, work_.view());
  for (std::size_t i = 0; i < references_.size(); ++i) {
    store(references_[i], data, writers[i]);
    references_[i].drawn.clear();
  }
  voxels_.clear();
  courses_.clear();
}

void KernelBatches::store(Reference& reference, std::span<const VoxelData> data, ResultWriter& writer) {
  const auto& [m0, m1, m2] = reference.measures;
  const auto& [n0, n1, n2] = reference.nulls;
  combineVerdicts(reference.verdicts, reference.nullVerdicts, reference.doubts);
  if (reference.draws > 1)
    writer.takeFurtherDraws(voxels_.size(), {n0.data() + kBatch, n1.data() + kBatch, n2.data() + kBatch},
                            kBatch);
  for (std::size_t i = 0; i < voxels_.size(); ++i) {
    if (reference.doubts[i] == 0) {
      writer.writeTruth(voxels_[i], {m0[i], m1[i], m2[i]}, {n0[i], n1[i], n2[i]});
    } else {
      storeDoubtful(reference, i, data, writer);
    }
  }
}

void KernelBatches::storeDoubtful(Reference& reference, std::size_t i, std::span<const VoxelData> data,
                                  ResultWriter& writer) {
  using kernel::Verdict;
  const auto isNull = [&](std::size_t draw, Verdict verdict) {
    return reference.nullVerdicts[draw * kBatch + i] == verdict;
  };
  bool isUnsure = reference.verdicts[i] == Verdict::kUnsure;
  for (std::size_t draw = 0; reference.verdicts[i] == Verdict::kDone && draw < reference.draws; ++draw)
    isUnsure = isUnsure || isNull(draw, Verdict::kUnsure);
  if (isUnsure) {
    ++nrReferred_;
    const std::uint32_t* const drawn = reference.drawn.data() + i * reference.drawsPerVoxel;
    return writer.write(voxels_[i], reference.fits().computeDrawn(voxels_[i], data, drawn));
  }
  if (reference.verdicts[i] == Verdict::kIllDefined) return writer.writeIllDefined(voxels_[i]);
  const auto& [m0, m1, m2] = reference.measures;
  const auto& [n0, n1, n2] = reference.nulls;
  writer.writeTruth(voxels_[i], {m0[i], m1[i], m2[i]}, {n0[i], n1[i], n2[i]});
  for (std::size_t draw = 0; draw < reference.draws; ++draw) {
    if (isNull(draw, Verdict::kIllDefined)) writer.writeNullIllDefined(voxels_[i], draw);
  }
}

}  // namespace tav
