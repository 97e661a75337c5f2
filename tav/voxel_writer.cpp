#include "tav/voxel_writer.h"

#include <algorithm>

#include "tav/reference_fits.h"

namespace tav {
namespace {

using Planes = std::array<float*, kNrOfMeasures>;

void put(const Planes& planes, std::size_t first, std::size_t count, const VoxelWriter::Rows& values) {
  for (std::size_t measure = 0; measure < planes.size(); ++measure)
    std::copy_n(values[measure], count, planes[measure] + first);
}

void putZeros(const Planes& planes, std::size_t first, std::size_t count) {
  for (float* const plane : planes) std::fill_n(plane + first, count, 0.0F);
}

VoxelWriter::Rows rowsOf(const VoxelWriter::Values& values) {
  return {values.data(), values.data() + 1, values.data() + 2};
}

template <class T>
void keepAbove(const T* firsts, std::size_t stride, T threshold, std::vector<std::uint8_t>& isIncluded) {
  for (std::size_t voxel = 0; voxel < isIncluded.size(); ++voxel)
    isIncluded[voxel] &= firsts[voxel * stride] > threshold ? 1U : 0U;
}

}  // namespace

// One loop over all voxels: first values lie a course apart, and the processor then waits for many
// of them at a time.
Inclusion::Inclusion(const VoxelJob& job, std::span<const VoxelData> data, std::size_t nrOfVoxels)
    : isIncluded_(nrOfVoxels, 1) {
  for (const VoxelSet& set : job.sets) {
    const auto file = static_cast<std::size_t>(set.file);
    const auto stride = static_cast<std::size_t>(job.files[file].nrOfVolumes);
    if (data[file].floats != nullptr) {
      keepAbove(data[file].floats, stride, static_cast<float>(job.inclusionThreshold), isIncluded_);
    } else {
      keepAbove(data[file].shorts, stride, job.inclusionThreshold, isIncluded_);
    }
  }
}

std::size_t Inclusion::runEnd(std::size_t voxel) const {
  const auto start = isIncluded_.begin() + static_cast<std::ptrdiff_t>(voxel);
  const std::uint8_t other = *start ^ 1U;
  return static_cast<std::size_t>(std::find(start, isIncluded_.end(), other) - isIncluded_.begin());
}

std::size_t Inclusion::count() const {
  return static_cast<std::size_t>(std::count(isIncluded_.begin(), isIncluded_.end(), 1));
}

VoxelWriter::VoxelWriter(const VoxelJob& job, std::size_t nrIncluded, const VoxelResults& results)
    : results_(results),
      furtherDraws_(static_cast<std::size_t>(job.nullDraws) - 1),
      further_(results.furtherRoom) {
  if (further_ == nullptr && results.furtherNulls != nullptr)
    further_ = &results.furtherNulls->append(nrIncluded);
}

void VoxelWriter::skip(std::size_t first, std::size_t count) {
  putZeros(results_.measures, first, count);
  putZeros(results_.nullMeasures, first, count);
  std::fill_n(results_.status + first, count, VoxelStatus::kBelowInclusion);
  results_.counts->skipped += static_cast<int>(count);
}

void VoxelWriter::write(std::size_t voxel, const VoxelMeasures& measures) {
  if (!measures.isDefined) return writeIllDefined(voxel);
  writeTruths(voxel, 1, rowsOf(measures.truth), rowsOf(measures.nulls[0]));
  results_.counts->surrogatesIllDefined += measures.nullsIllDefined;
  for (std::size_t draw = 1; draw < measures.nulls.size(); ++draw) writeFurther(draw, measures.nulls[draw]);
}

void VoxelWriter::takeFurtherDraws(std::size_t count, const Rows& measures, std::size_t stride) {
  for (int measure = 0; measure < kNrOfMeasures; ++measure) {
    const float* from = measures[static_cast<std::size_t>(measure)];
    for (std::size_t draw = 0; draw < furtherDraws_; ++draw, from += stride)
      std::copy_n(from, count, further_->draw(measure, draw) + nrWritten_);
  }
}

void VoxelWriter::writeIllDefined(std::size_t voxel) {
  putZeros(results_.measures, voxel, 1);
  putZeros(results_.nullMeasures, voxel, 1);
  results_.status[voxel] = VoxelStatus::kIllDefined;
  ++results_.counts->illDefined;
  ++nrWritten_;
  for (std::size_t draw = 1; draw <= furtherDraws_; ++draw) writeFurther(draw, {});
}

void VoxelWriter::writeTruths(std::size_t first, std::size_t count, const Rows& values,
                              const Rows& firstNulls) {
  put(results_.measures, first, count, values);
  put(results_.nullMeasures, first, count, firstNulls);
  std::fill_n(results_.status + first, count, VoxelStatus::kComputed);
  nrWritten_ += count;
}

void VoxelWriter::writeNullIllDefined(std::size_t voxel, std::size_t draw) {
  ++results_.counts->surrogatesIllDefined;
  if (draw == 0) return putZeros(results_.nullMeasures, voxel, 1);
  writeFurther(draw, {});
}

// Of the voxel written last.
void VoxelWriter::writeFurther(std::size_t draw, const Values& values) {
  for (int measure = 0; measure < kNrOfMeasures; ++measure)
    further_->draw(measure, draw - 1)[nrWritten_ - 1] = values[static_cast<std::size_t>(measure)];
}

}  // namespace tav
