#include "tav/reference_path.h"

#include <algorithm>

namespace tav {
namespace {

void setZero(std::size_t voxel, const std::array<float*, kNrOfMeasures>& planes) {
  for (float* const plane : planes) plane[voxel] = 0.0F;
}

}  // namespace

ReferencePath::Segment::Segment(const VoxelSet& set, const TAV_intv& interval)
    : first(interval.first),
      length(interval.last - interval.first + 1),
      reference(1, length, 0, 0),
      surrogates(set.surrogates->nRows, length, 0, 0) {
  const simo::Matrix<float>& course = *set.reference;
  const simo::Matrix<float>& rows = *set.surrogates;
  simo::dtrendRowsToRes(course, course.rowBase, course.rowBase + 1, first, first + length, reference, 0, 0);
  simo::dtrendRowsToRes(rows, rows.rowBase, rows.rowEnd, first, first + length, surrogates, 0, 0);
}

void ReferencePath::begin(const VoxelJob& job) {
  job_ = job;
  sets_.clear();
  nrOfSegments_ = 0;
  int longest = 1;
  for (const VoxelSet& set : job.sets) {
    Set& own = sets_.emplace_back();
    own.file = set.file;
    for (const TAV_intv& interval : set.intervals) {
      longest = std::max(longest, own.segments.emplace_back(set, interval).length);
      ++nrOfSegments_;
    }
  }
  int mostVolumes = 1;
  for (const VoxelFile& file : job.files) mostVolumes = std::max(mostVolumes, file.nrOfVolumes);
  timeCourse_ = std::make_unique<simo::Matrix<float>>(1, mostVolumes, 0, 1);
  work_ = std::make_unique<simo::Matrix<float>>(2, longest, 0, 0);
  averages_ = std::make_unique<simo::FosAvg<float>>(2, job.order);
  nullAverages_.clear();
  for (int k = 0; k < job.nullDraws; ++k) nullAverages_.push_back(std::make_unique<simo::FosAvg<float>>(2, job.order));
  joint_ = std::make_unique<simo::FosOrth<float>>(2, job.order);
  single1_ = std::make_unique<simo::FosOrth<float>>(1, job.order);
  single2_ = std::make_unique<simo::FosOrth<float>>(1, job.order);
}

void ReferencePath::compute(std::size_t nrOfVoxels, std::span<const VoxelData> data, const VoxelResults& results,
                            VoxelCounts& counts) {
  nrIncluded_ = 0;
  furtherBlock_ = nullptr;
  if (results.furtherNulls != nullptr) {
    std::size_t toCome = 0;
    for (std::size_t voxel = 0; voxel < nrOfVoxels; ++voxel) toCome += isIncluded(voxel, data) ? 1U : 0U;
    furtherBlock_ = &results.furtherNulls->append(toCome);
  }
  for (std::size_t voxel = 0; voxel < nrOfVoxels; ++voxel) {
    setZero(voxel, results.measures);
    setZero(voxel, results.nullMeasures);
    if (!isIncluded(voxel, data)) {
      results.status[voxel] = VoxelStatus::kBelowInclusion;
      ++counts.skipped;
      continue;
    }
    accumulate(voxel, data);
    results.status[voxel] = fitVoxel(voxel, results);
    if (results.status[voxel] == VoxelStatus::kComputed) {
      fitNulls(voxel, results, counts);
    } else {
      ++counts.illDefined;
    }
    ++nrIncluded_;
  }
}

// Every set's first value must exceed the threshold; one that is not a number does not.
bool ReferencePath::isIncluded(std::size_t voxel, std::span<const VoxelData> data) const {
  return std::all_of(sets_.begin(), sets_.end(), [&](const Set& set) {
    const auto file = static_cast<std::size_t>(set.file);
    const std::size_t first = voxel * static_cast<std::size_t>(job_.files[file].nrOfVolumes);
    if (data[file].floats == nullptr) return data[file].shorts[first] > job_.inclusionThreshold;
    return data[file].floats[first] > static_cast<float>(job_.inclusionThreshold);
  });
}

// Fills the true averages and those of every null draw from all intervals of all sets.
void ReferencePath::accumulate(std::size_t voxel, std::span<const VoxelData> data) {
  averages_->clear();
  for (const auto& averages : nullAverages_) averages->clear();
  for (const Set& set : sets_) {
    const auto file = static_cast<std::size_t>(set.file);
    loadTimeCourse(voxel, data[file], job_.files[file].nrOfVolumes);
    for (const Segment& segment : set.segments) accumulateSegment(segment);
  }
  // The null averages stay sums, deliberately: the measures do not depend on a common factor, but
  // their last bits do.
  if (nrOfSegments_ > 0) averages_->scale(1.0F / static_cast<float>(nrOfSegments_));
}

void ReferencePath::accumulateSegment(const Segment& segment) {
  const int end = segment.first + segment.length;
  loadReference(segment.reference, 0, segment.length);
  simo::dtrendRowsToRes(*timeCourse_, 0, 1, segment.first, end, *work_, 1, 0);
  simo::accum_actavgs(*work_, 0, 2, 0, segment.length, *averages_, job_.lagPairForm);
  if (job_.nrOfSurrogates < 1) return;
  for (const auto& averages : nullAverages_) {
    const unsigned row = static_cast<unsigned>(simo::nextRandom()) % static_cast<unsigned>(job_.nrOfSurrogates);
    loadReference(segment.surrogates, static_cast<int>(row), segment.length);
    simo::accum_actavgs(*work_, 0, 2, 0, segment.length, *averages, job_.lagPairForm);
  }
}

void ReferencePath::loadTimeCourse(std::size_t voxel, const VoxelData& data, int nrOfVolumes) {
  const auto count = static_cast<std::size_t>(nrOfVolumes);
  if (data.floats != nullptr) {
    std::copy_n(data.floats + voxel * count, count, timeCourse_->elements());
  } else {
    std::copy_n(data.shorts + voxel * count, count, timeCourse_->elements());
  }
}

void ReferencePath::loadReference(const simo::Matrix<float>& rows, int row, int length) {
  std::copy_n(rows[row], length, (*work_)[0]);
}

VoxelStatus ReferencePath::fitVoxel(std::size_t voxel, const VoxelResults& results) {
  const auto& out = results.measures;
  const bool fitted = simo::gewekeX2Y(*averages_, 0, 1, *joint_, *single1_, *single2_, out[0][voxel], out[1][voxel],
                                      out[2][voxel]);
  return fitted ? VoxelStatus::kComputed : VoxelStatus::kIllDefined;
}

void ReferencePath::fitNulls(std::size_t voxel, const VoxelResults& results, VoxelCounts& counts) {
  for (std::size_t draw = 0; draw < nullAverages_.size(); ++draw) {
    std::array<float, kNrOfMeasures> null = {0.0F, 0.0F, 0.0F};
    if (!simo::gewekeX2Y(*nullAverages_[draw], 0, 1, *joint_, *single1_, *single2_, null[0], null[1], null[2])) {
      ++counts.surrogatesIllDefined;
      null = {0.0F, 0.0F, 0.0F};
    }
    for (std::size_t measure = 0; measure < null.size(); ++measure) {
      if (draw == 0) {
        results.nullMeasures[measure][voxel] = null[measure];
      } else {
        const std::size_t position = nrIncluded_ * (nullAverages_.size() - 1) + draw - 1;
        furtherBlock_->plane(static_cast<int>(measure))[position] = null[measure];
      }
    }
  }
}

}  // namespace tav
