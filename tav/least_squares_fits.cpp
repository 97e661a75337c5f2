#include "tav/least_squares_fits.h"

#include <cmath>
#include <limits>

#include "simo/detrend.h"
#include "tav/reference_fits.h"

namespace tav {

std::unique_ptr<VoxelFits> makeVoxelFits(const VoxelJob& job) {
  if (job.fitForm == FitForm::kLeastSquares) return std::make_unique<LeastSquaresFits>(job);
  return std::make_unique<ReferenceFits>(job);
}

LeastSquaresFits::LeastSquaresFits(const VoxelJob& job)
    : job_(job),
      reference_{{}, simo::LaggedMoments(job.order)},
      voxel_{{}, simo::LaggedMoments(job.order)},
      cross_(job.order),
      pairFit_(job.order) {
  addSegments();
  reference_ = seriesOf(&VoxelSet::reference, 0);
  for (int row = 0; row < job.nrOfSurrogates; ++row)
    surrogates_.push_back(seriesOf(&VoxelSet::surrogates, row));
}

void LeastSquaresFits::addSegments() {
  std::size_t offset = 0;
  for (const VoxelSet& set : job_.sets) {
    for (const TAV_intv& interval : set.intervals) {
      const int length = interval.last - interval.first + 1;
      segments_.push_back({static_cast<std::size_t>(set.file), interval.first - 1, length, offset});
      offset += static_cast<std::size_t>(length);
    }
  }
  voxel_.residuals.resize(offset);
}

LeastSquaresFits::Series LeastSquaresFits::seriesOf(const simo::Matrix<float>* VoxelSet::*rows,
                                                    int row) const {
  Series series{std::vector<double>(voxel_.residuals.size()), simo::LaggedMoments(job_.order)};
  auto segment = segments_.begin();
  for (const VoxelSet& set : job_.sets) {
    const simo::Matrix<float>& matrix = *(set.*rows);
    const float* const course = matrix[matrix.rowBase + row] + matrix.colBase;
    for (std::size_t i = 0; i < set.intervals.size(); ++i, ++segment) {
      // Without anything left the own moments are 0, which no fit accepts.
      (void)simo::detrendRow(course + segment->first, segment->length, &series.residuals[segment->offset]);
    }
  }
  sumOwn(series);
  return series;
}

void LeastSquaresFits::sumOwn(Series& series) const {
  series.own.clear();
  for (const Segment& segment : segments_) {
    const double* const values = &series.residuals[segment.offset];
    series.own.add(values, values, segment.length);
  }
}

const VoxelMeasures& LeastSquaresFits::compute(std::size_t voxel, std::span<const VoxelData> data) {
  drawn_.clear();
  for (std::size_t draw = 0; draw < drawsPerVoxel(job_); ++draw) {
    if (job_.commonFirst) {
      drawn_.push_back(*job_.commonFirst + static_cast<std::uint32_t>(draw));
      continue;
    }
    const auto number = static_cast<unsigned>(job_.random->next());
    drawn_.push_back(number % static_cast<unsigned>(job_.nrOfSurrogates));
  }
  return computeDrawn(voxel, data, drawn_.data());
}

const VoxelMeasures& LeastSquaresFits::computeDrawn(std::size_t voxel, std::span<const VoxelData> data,
                                                    const std::uint32_t* drawn) {
  loadVoxel(voxel, data);
  measures_.nulls.assign(static_cast<std::size_t>(job_.nullDraws), {});
  measures_.nullsIllDefined = 0;
  measures_.isDefined = fit(reference_, measures_.truth);
  if (!measures_.isDefined) return measures_;
  for (auto& null : measures_.nulls) {
    if (surrogates_.empty() || !fit(surrogates_[*drawn++], null)) ++measures_.nullsIllDefined;
  }
  return measures_;
}

void LeastSquaresFits::loadVoxel(std::size_t voxel, std::span<const VoxelData> data) {
  for (const Segment& segment : segments_) {
    const auto volumes = static_cast<std::size_t>(job_.files[segment.file].nrOfVolumes);
    const std::size_t at = voxel * volumes + static_cast<std::size_t>(segment.first);
    double* const residuals = &voxel_.residuals[segment.offset];
    const VoxelData& of = data[segment.file];
    if (of.floats != nullptr) {
      (void)simo::detrendRow(of.floats + at, segment.length, residuals);
    } else {
      (void)simo::detrendRow(of.shorts + at, segment.length, residuals);
    }
  }
  sumOwn(voxel_);
}

bool LeastSquaresFits::fit(const Series& reference, std::array<float, kNrOfMeasures>& measures) {
  measures = {};
  if (voxel_.own(0, 0) == 0 || reference.own(0, 0) == 0) return false;
  if (!std::isfinite(reference.own(0, 0)) || !std::isfinite(voxel_.own(0, 0))) {
    measures.fill(std::numeric_limits<float>::quiet_NaN());
    return true;
  }
  cross_.clear();
  for (const Segment& segment : segments_)
    cross_.add(&reference.residuals[segment.offset], &voxel_.residuals[segment.offset], segment.length);
  const auto errors = pairFit_.errors(reference.own, voxel_.own, cross_);
  if (!errors) return false;
  const simo::Feedback feedback = simo::PairFit::feedback(*errors);
  measures = {static_cast<float>(feedback.xToY), static_cast<float>(feedback.yToX),
              static_cast<float>(feedback.instantaneous)};
  return true;
}

}  // namespace tav
