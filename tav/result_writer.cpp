#include "tav/result_writer.h"

#include <algorithm>

#include "tav/reference_fits.h"

namespace tav {
namespace {

void put(const std::array<float*, kNrOfMeasures>& planes, std::size_t voxel,
         const ResultWriter::Values& values) {
  for (std::size_t measure = 0; measure < planes.size(); ++measure) planes[measure][voxel] = values[measure];
}

}  // namespace

bool Inclusion::includes(std::size_t voxel) const {
  return std::all_of(job_.sets.begin(), job_.sets.end(), [&](const VoxelSet& set) {
    const auto file = static_cast<std::size_t>(set.file);
    const std::size_t first = voxel * static_cast<std::size_t>(job_.files[file].nrOfVolumes);
    if (data_[file].floats == nullptr) return data_[file].shorts[first] > job_.inclusionThreshold;
    return data_[file].floats[first] > static_cast<float>(job_.inclusionThreshold);
  });
}

std::size_t Inclusion::count(std::size_t nrOfVoxels) const {
  std::size_t n = 0;
  for (std::size_t voxel = 0; voxel < nrOfVoxels; ++voxel) n += includes(voxel) ? 1U : 0U;
  return n;
}

ResultWriter::ResultWriter(const VoxelJob& job, std::size_t nrIncluded, const VoxelResults& results)
    : results_(results),
      furtherDraws_(static_cast<std::size_t>(job.nullDraws) - 1),
      further_(results.furtherNulls == nullptr ? nullptr : &results.furtherNulls->append(nrIncluded)) {}

void ResultWriter::skip(std::size_t voxel) {
  put(results_.measures, voxel, {});
  put(results_.nullMeasures, voxel, {});
  results_.status[voxel] = VoxelStatus::kBelowInclusion;
  ++results_.counts->skipped;
}

void ResultWriter::write(std::size_t voxel, const VoxelMeasures& measures) {
  if (!measures.isDefined) return writeIllDefined(voxel);
  writeTruth(voxel, measures.truth, measures.nulls[0]);
  results_.counts->surrogatesIllDefined += measures.nullsIllDefined;
  for (std::size_t draw = 1; draw < measures.nulls.size(); ++draw) writeFurther(draw, measures.nulls[draw]);
}

void ResultWriter::takeFurtherDraws(std::size_t count,
                                    const std::array<const float*, kNrOfMeasures>& measures,
                                    std::size_t stride) {
  for (int measure = 0; measure < kNrOfMeasures; ++measure) {
    const float* from = measures[static_cast<std::size_t>(measure)];
    for (std::size_t draw = 0; draw < furtherDraws_; ++draw, from += stride)
      std::copy_n(from, count, further_->draw(measure, draw) + nrWritten_);
  }
}

void ResultWriter::writeIllDefined(std::size_t voxel) {
  put(results_.measures, voxel, {});
  put(results_.nullMeasures, voxel, {});
  results_.status[voxel] = VoxelStatus::kIllDefined;
  ++results_.counts->illDefined;
  ++nrWritten_;
  for (std::size_t draw = 1; draw <= furtherDraws_; ++draw) writeFurther(draw, {});
}

void ResultWriter::writeTruth(std::size_t voxel, const Values& values, const Values& firstNull) {
  put(results_.measures, voxel, values);
  put(results_.nullMeasures, voxel, firstNull);
  results_.status[voxel] = VoxelStatus::kComputed;
  ++nrWritten_;
}

void ResultWriter::writeNullIllDefined(std::size_t voxel, std::size_t draw) {
  ++results_.counts->surrogatesIllDefined;
  if (draw == 0) return put(results_.nullMeasures, voxel, {});
  writeFurther(draw, {});
}

// Of the voxel written last.
void ResultWriter::writeFurther(std::size_t draw, const Values& values) {
  for (int measure = 0; measure < kNrOfMeasures; ++measure)
    further_->draw(measure, draw - 1)[nrWritten_ - 1] = values[static_cast<std::size_t>(measure)];
}

}  // namespace tav
