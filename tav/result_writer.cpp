#include "tav/result_writer.h"

#include <algorithm>

#include "tav/reference_path.h"

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

ResultWriter::ResultWriter(const VoxelJob& job, std::size_t nrIncluded, const VoxelResults& results,
                           VoxelCounts& counts)
    : results_(results),
      counts_(counts),
      furtherDraws_(static_cast<std::size_t>(job.nullDraws) - 1),
      further_(results.furtherNulls == nullptr ? nullptr : &results.furtherNulls->append(nrIncluded)) {}

void ResultWriter::skip(std::size_t voxel) {
  put(results_.measures, voxel, {});
  put(results_.nullMeasures, voxel, {});
  results_.status[voxel] = VoxelStatus::kBelowInclusion;
  ++counts_.skipped;
}

void ResultWriter::write(std::size_t voxel, const VoxelMeasures& measures) {
  if (!measures.isDefined) return writeIllDefined(voxel);
  writeTruth(voxel, measures.truth);
  counts_.surrogatesIllDefined += measures.nullsIllDefined;
  for (std::size_t draw = 0; draw < measures.nulls.size(); ++draw)
    writeNull(voxel, draw, true, measures.nulls[draw]);
}

// A further draw's values are 0 from the start.
void ResultWriter::writeIllDefined(std::size_t voxel) {
  put(results_.measures, voxel, {});
  put(results_.nullMeasures, voxel, {});
  results_.status[voxel] = VoxelStatus::kIllDefined;
  ++counts_.illDefined;
  ++nrWritten_;
}

void ResultWriter::writeTruth(std::size_t voxel, const Values& values) {
  put(results_.measures, voxel, values);
  results_.status[voxel] = VoxelStatus::kComputed;
  ++nrWritten_;
}

void ResultWriter::writeNull(std::size_t voxel, std::size_t draw, bool isDefined, const Values& values) {
  if (!isDefined) ++counts_.surrogatesIllDefined;
  const Values shown = isDefined ? values : Values{};
  if (draw == 0) return put(results_.nullMeasures, voxel, shown);
  const std::size_t position = (nrWritten_ - 1) * furtherDraws_ + draw - 1;
  for (int measure = 0; measure < kNrOfMeasures; ++measure) {
    further_->plane(measure)[position] = shown[static_cast<std::size_t>(measure)];
  }
}

}  // namespace tav
