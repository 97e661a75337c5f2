#include "tav/reference_fits.h"

#include <algorithm>

namespace tav {
ReferenceFits::Segment::Segment(const VoxelSet& set, const TAV_intv& interval)
    : first(interval.first),
      length(interval.last - interval.first + 1),
      reference(1, length, 0, 0),
      surrogates(set.surrogates->nRows, length, 0, 0) {
  const simo::Matrix<float>& course = *set.reference;
  const simo::Matrix<float>& rows = *set.surrogates;
  simo::dtrendRowsToRes(course, course.rowBase, course.rowBase + 1, first, first + length, reference, 0, 0);
  simo::dtrendRowsToRes(rows, rows.rowBase, rows.rowEnd, first, first + length, surrogates, 0, 0);
}

ReferenceFits::ReferenceFits(const VoxelJob& job) : job_(job) {
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
  for (int k = 0; k < job.nullDraws; ++k)
    nullAverages_.push_back(std::make_unique<simo::FosAvg<float>>(2, job.order));
  joint_ = std::make_unique<simo::FosOrth<float>>(2, job.order);
  single1_ = std::make_unique<simo::FosOrth<float>>(1, job.order);
  single2_ = std::make_unique<simo::FosOrth<float>>(1, job.order);
}

const VoxelMeasures& ReferenceFits::computeDrawn(std::size_t voxel, std::span<const VoxelData> data,
                                                 const std::uint32_t* drawn) {
  drawn_ = drawn;
  compute(voxel, data);
  drawn_ = nullptr;
  return measures_;
}

const VoxelMeasures& ReferenceFits::compute(std::size_t voxel, std::span<const VoxelData> data) {
  accumulate(voxel, data);
  measures_.nulls.assign(nullAverages_.size(), {});
  measures_.nullsIllDefined = 0;
  measures_.isDefined = fit(*averages_, measures_.truth);
  if (!measures_.isDefined) return measures_;
  for (std::size_t draw = 0; draw < nullAverages_.size(); ++draw) {
    if (!fit(*nullAverages_[draw], measures_.nulls[draw])) ++measures_.nullsIllDefined;
  }
  return measures_;
}

// Fills the true averages and those of every null draw from all intervals of all sets.
void ReferenceFits::accumulate(std::size_t voxel, std::span<const VoxelData> data) {
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

void ReferenceFits::accumulateSegment(const Segment& segment) {
  const int end = segment.first + segment.length;
  loadReference(segment.reference, 0, segment.length);
  simo::dtrendRowsToRes(*timeCourse_, 0, 1, segment.first, end, *work_, 1, 0);
  simo::accum_actavgs(*work_, 0, 2, 0, segment.length, *averages_);
  if (job_.nrOfSurrogates < 1) return;
  for (const auto& averages : nullAverages_) {
    loadReference(segment.surrogates, static_cast<int>(nextRow()), segment.length);
    simo::accum_actavgs(*work_, 0, 2, 0, segment.length, *averages);
  }
}

unsigned ReferenceFits::nextRow() {
  if (drawn_ != nullptr) return *drawn_++;
  return static_cast<unsigned>(job_.random->next()) % static_cast<unsigned>(job_.nrOfSurrogates);
}

void ReferenceFits::loadTimeCourse(std::size_t voxel, const VoxelData& data, int nrOfVolumes) {
  const auto count = static_cast<std::size_t>(nrOfVolumes);
  if (data.floats != nullptr) {
    std::copy_n(data.floats + voxel * count, count, timeCourse_->elements());
  } else {
    std::copy_n(data.shorts + voxel * count, count, timeCourse_->elements());
  }
}

void ReferenceFits::loadReference(const simo::Matrix<float>& rows, int row, int length) {
  std::copy_n(rows[row], length, (*work_)[0]);
}

bool ReferenceFits::fit(const simo::FosAvg<float>& averages, std::array<float, kNrOfMeasures>& measures) {
  measures = {};
  if (simo::gewekeX2Y(averages, 0, 1, *joint_, *single1_, *single2_, measures[0], measures[1], measures[2])) {
    return true;
  }
  measures = {};
  return false;
}

}  // namespace tav
