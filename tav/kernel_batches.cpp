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
  const bool leastSquares = any.fitForm == FitForm::kLeastSquares;
  kernel::PlanSpec spec{any.order, any.nullDraws, leastSquares, any.nrOfSurrogates, {}};
  for (std::size_t set = 0; set < any.sets.size(); ++set) spec.sets.push_back(setSpec(jobs, set));
  return spec;
}

VoxelWriter::Rows rowsFrom(const std::vector<float> (&measures)[kNrOfMeasures], std::size_t i) {
  return {measures[0].data() + i, measures[1].data() + i, measures[2].data() + i};
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
    : job(voxelJob),
      draws(static_cast<std::size_t>(voxelJob.nullDraws)),
      drawsPerVoxel(perVoxel),
      rowOf(static_cast<std::uint32_t>(voxelJob.nrOfSurrogates)) {
  drawn.resize(kBatch * perVoxel);
  for (std::size_t cell = 0; job.commonFirst && cell < perVoxel; ++cell)
    std::fill_n(drawn.begin() + static_cast<std::ptrdiff_t>(cell * kBatch), kBatch,
                *job.commonFirst + static_cast<std::uint32_t>(cell));
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

void KernelBatches::Reference::draw(std::size_t nrOfVoxels) {
  if (job.commonFirst) return;              // set once and for all
  simo::RandomStream random = *job.random;  // its own, which nothing else can refer to, is faster
  for (std::size_t i = 0; i < nrOfVoxels; ++i) {
    for (std::size_t cell = 0; cell < drawsPerVoxel; ++cell)
      drawn[cell * kBatch + i] = rowOf(static_cast<std::uint32_t>(random.next()));
  }
  *job.random = random;
}

std::vector<std::uint32_t> KernelBatches::Reference::drawnFor(std::size_t i) const {
  std::vector<std::uint32_t> rows;
  for (std::size_t cell = 0; cell < drawsPerVoxel; ++cell) rows.push_back(drawn[cell * kBatch + i]);
  return rows;
}

VoxelFits& KernelBatches::Reference::fits() {
  if (ownFits == nullptr) ownFits = makeVoxelFits(job);
  return *ownFits;
}

KernelBatches::KernelBatches(std::span<const VoxelJob> jobs, const kernel::Kernel& kernel)
    : kernel_(kernel),
      plan_(std::make_shared<const kernel::Plan>(planSpec(jobs), kernel)),
      work_(plan_->view(), kernel.width) {
  for (const VoxelSet& set : jobs[0].sets) {
    const auto file = static_cast<std::size_t>(set.file);
    const VoxelFile& of = jobs[0].files[file];
    coursesOfSets_.push_back({file, static_cast<std::size_t>(of.nrOfVolumes) *
                                        (of.isFloat ? sizeof(float) : sizeof(std::uint16_t))});
  }
  for (const VoxelJob& job : jobs) references_.emplace_back(job, drawsPerVoxel(job));
}

KernelBatches::KernelBatches(const KernelBatches& other, std::span<simo::RandomStream* const> streams)
    : kernel_(other.kernel_),
      plan_(other.plan_),
      work_(plan_->view(), kernel_.width),
      coursesOfSets_(other.coursesOfSets_) {
  for (std::size_t i = 0; i < other.references_.size(); ++i) {
    VoxelJob job = other.references_[i].job;
    job.random = streams[i];
    references_.emplace_back(job, drawsPerVoxel(job));
  }
}

void KernelBatches::compute(std::size_t nrOfVoxels, std::span<const VoxelData> data,
                            std::span<const VoxelResults> results) {
  const VoxelJob& any = references_.front().job;
  const Inclusion inclusion(any, data, nrOfVoxels);
  std::deque<VoxelWriter> writers;
  for (std::size_t i = 0; i < references_.size(); ++i)
    writers.emplace_back(references_[i].job, inclusion.count(), results[i]);
  copies_.clear();
  for (std::size_t voxel = 0, end = 0; voxel < nrOfVoxels; voxel = end) {
    end = inclusion.runEnd(voxel);
    if (inclusion.includes(voxel)) {
      end = std::min(end, voxel + kBatch - voxels_.size());
      addVoxels(voxel, end, nrOfVoxels, data);
      if (voxels_.size() == kBatch) finishBatch(data, writers);
    } else {
      for (VoxelWriter& writer : writers) writer.skip(voxel, end - voxel);
    }
  }
  if (!voxels_.empty()) finishBatch(data, writers);
}

void KernelBatches::addVoxels(std::size_t first, std::size_t end, std::size_t nrInCall,
                              std::span<const VoxelData> data) {
  for (std::size_t voxel = first; voxel < end; ++voxel) {
    voxels_.push_back(voxel);
    for (const CourseOfSet& course : coursesOfSets_) {
      const VoxelData& values = data[course.file];
      const void* const firsts =
          values.floats != nullptr ? static_cast<const void*>(values.floats) : values.shorts;
      const auto* const bytes = static_cast<const unsigned char*>(firsts) + voxel * course.bytes;
      // Kernels read a little behind a course: the next one, but for the last courses of the data.
      const bool mayReadBehind = (nrInCall - 1 - voxel) * course.bytes >= kernel::extent(kernel::kReadSlack);
      courses_.push_back(mayReadBehind ? bytes : copyOf(bytes, course.bytes));
    }
  }
}

const void* KernelBatches::copyOf(const unsigned char* course, std::size_t bytes) {
  auto& copy =
      copies_.emplace_back(std::make_unique<unsigned char[]>(bytes + kernel::extent(kernel::kReadSlack)));
  std::memcpy(copy.get(), course, bytes);
  return copy.get();
}

void KernelBatches::finishBatch(std::span<const VoxelData> data, std::deque<VoxelWriter>& writers) {
  std::vector<kernel::ReferenceBatch> views;
  for (Reference& reference : references_) {
    reference.draw(voxels_.size());
    views.push_back(reference.view());
  }
  kernel::run(kernel_, plan_->view(), {voxels_.size(), courses_.data(), views.data()}, work_.view());
  for (std::size_t i = 0; i < references_.size(); ++i) store(references_[i], data, writers[i]);
  voxels_.clear();
  courses_.clear();
}

void KernelBatches::store(Reference& reference, std::span<const VoxelData> data, VoxelWriter& writer) {
  combineVerdicts(reference.verdicts, reference.nullVerdicts, reference.doubts);
  if (reference.draws > 1) writer.takeFurtherDraws(voxels_.size(), rowsFrom(reference.nulls, kBatch), kBatch);
  for (std::size_t i = 0, end = 0; i < voxels_.size(); i = end) {
    end = i + 1;
    if (reference.doubts[i] == 0) {
      while (end < voxels_.size() && reference.doubts[end] == 0 && voxels_[end] == voxels_[end - 1] + 1)
        ++end;
      writer.writeTruths(voxels_[i], end - i, rowsFrom(reference.measures, i), rowsFrom(reference.nulls, i));
    } else {
      storeDoubtful(reference, i, data, writer);
    }
  }
}

void KernelBatches::storeDoubtful(Reference& reference, std::size_t i, std::span<const VoxelData> data,
                                  VoxelWriter& writer) {
  using kernel::Verdict;
  const auto isNull = [&](std::size_t draw, Verdict verdict) {
    return reference.nullVerdicts[draw * kBatch + i] == verdict;
  };
  bool isUnsure = reference.verdicts[i] == Verdict::kUnsure;
  for (std::size_t draw = 0; reference.verdicts[i] == Verdict::kDone && draw < reference.draws; ++draw)
    isUnsure = isUnsure || isNull(draw, Verdict::kUnsure);
  if (isUnsure) {
    ++nrReferred_;
    const std::vector<std::uint32_t> drawn = reference.drawnFor(i);
    return writer.write(voxels_[i], reference.fits().computeDrawn(voxels_[i], data, drawn.data()));
  }
  if (reference.verdicts[i] == Verdict::kIllDefined) return writer.writeIllDefined(voxels_[i]);
  writer.writeTruths(voxels_[i], 1, rowsFrom(reference.measures, i), rowsFrom(reference.nulls, i));
  for (std::size_t draw = 0; draw < reference.draws; ++draw) {
    if (isNull(draw, Verdict::kIllDefined)) writer.writeNullIllDefined(voxels_[i], draw);
  }
}

}  // namespace tav
