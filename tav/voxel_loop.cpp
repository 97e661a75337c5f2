#include "tav/voxel_loop.h"

#include <algorithm>
#include <limits>

namespace tav {
namespace {

int fileIndexOf(VtcFile* file, std::vector<VtcFile*>& files) {
  const auto found = std::find(files.begin(), files.end(), file);
  if (found != files.end()) return static_cast<int>(found - files.begin());
  files.push_back(file);
  return static_cast<int>(files.size()) - 1;
}

VoxelJob makeJob(const TAV_Pars& request, const RunOptions& options) {
  VoxelJob job;
  job.order = request.arOrder;
  job.inclusionThreshold = request.firstTpInclThres;
  job.nrOfSurrogates = request.nSurrogateSims;
  job.nullDraws = options.nullDraws;
  job.fitForm = options.fitForm;
  return job;
}

// Reports 0%, 10%, ... 100%, each once; 0% for a single slice. With a line for each when the request
// wants them.
class Progress {
 public:
  Progress(const TAV_Pars& request, const RunLog& log)
      : log_(log), withLines_(request.showVerboseProgress), nrOfSlices_(request.dimZ) {}

  void atSlice(int z) {
    const double done = nrOfSlices_ > 1 ? static_cast<double>(z) / (nrOfSlices_ - 1) : 0.0;
    const int percent = static_cast<int>(done * 100.0) / 10 * 10;
    if (percent == reported_) return;
    if (withLines_) log_.line<32>("%s\t%d%%...", TAV_PROMPT, percent);
    log_.progress(percent);
    reported_ = percent;
  }

 private:
  const RunLog& log_;
  bool withLines_;
  int nrOfSlices_;
  int reported_ = -1;
};

// What all files can hold at once. A piece never reaches into the next slice.
std::size_t voxelsPerPiece(const std::vector<VtcFile*>& files) {
  std::size_t voxels = std::numeric_limits<std::size_t>::max();
  for (const VtcFile* const file : files) voxels = std::min(voxels, file->voxelsPerRead());
  return voxels;
}

// endOfSlice: voxels up to the end of the slice that the piece lies in.
bool readPiece(const std::vector<VtcFile*>& files, std::size_t nrOfVoxels, std::size_t endOfSlice,
               std::vector<VoxelData>& data, std::ostream& errors) {
  data.clear();
  for (VtcFile* const file : files) {
    if (!file->readVoxels(nrOfVoxels)) {
      reportUnreadable(files, file, endOfSlice, errors);
      return false;
    }
    data.push_back(file->piece());
  }
  return true;
}

}  // namespace

VoxelResults resultsFrom(std::size_t voxel, RawResult& result) {
  VoxelResults results{{}, {}, result.status.data() + voxel, result.furtherNulls.get(), &result.counts};
  for (int measure = 0; measure < kNrOfMeasures; ++measure) {
    results.measures[static_cast<std::size_t>(measure)] = result.observed->values(measure) + voxel;
    results.nullMeasures[static_cast<std::size_t>(measure)] = result.null->values(measure) + voxel;
  }
  return results;
}

void startResult(RawResult& result) {
  if (result.furtherNulls != nullptr) result.furtherNulls->clear();
  result.status.assign(result.observed->nrOfVoxels(), VoxelStatus::kComputed);
  result.counts = {};
}

ConditionJobs makeConditionJobs(const TAV_Cond_Pars& cond, const std::vector<PassReference>& references,
                                const TAV_Pars& request, const RunOptions& options) {
  ConditionJobs condition;
  std::vector<int> fileOfSet;
  for (const TAV_VTC_intv_set& set : cond.vtcIntvSets)
    fileOfSet.push_back(fileIndexOf(set.trgVtc, condition.files));
  VoxelJob job = makeJob(request, options);
  for (const VtcFile* const file : condition.files)
    job.files.push_back({file->isFloat(), file->header.nrOfVolumes});
  for (const PassReference& reference : references) {
    job.random = reference.random;
    job.sets.clear();
    for (std::size_t i = 0; i < reference.courses.size(); ++i) {
      const VoiTc& course = *reference.courses[i];
      job.sets.push_back({fileOfSet[i], &course.tc, &course.surrogates, cond.vtcIntvSets[i].intervals});
    }
    condition.jobs.push_back(job);
  }
  return condition;
}

int runVoxelLoop(const ConditionJobs& condition, const TAV_Pars& request, VoxelPath& path, const RunLog& log,
                 std::span<RawResult* const> results, std::ostream& errors) {
  const std::size_t sliceVoxels = gridOf(request).slice();
  for (RawResult* const result : results) startResult(*result);
  for (VtcFile* const file : condition.files) file->rewind();
  path.begin(condition.jobs);
  const std::size_t pieceVoxels = std::min(voxelsPerPiece(condition.files), sliceVoxels);
  std::vector<VoxelData> data;
  std::vector<VoxelResults> places;
  Progress progress(request, log);
  for (int z = 0; z < request.dimZ; ++z) {
    progress.atSlice(z);
    for (std::size_t first = 0; first < sliceVoxels; first += pieceVoxels) {
      const std::size_t count = std::min(pieceVoxels, sliceVoxels - first);
      const std::size_t endOfSlice = (static_cast<std::size_t>(z) + 1) * sliceVoxels;
      if (!readPiece(condition.files, count, endOfSlice, data, errors)) return kTerminalError;
      places.clear();
      for (RawResult* const result : results)
        places.push_back(resultsFrom(static_cast<std::size_t>(z) * sliceVoxels + first, *result));
      path.compute(count, data, places);
    }
  }
  return kSuccess;
}

void reportLoopDone(const TAV_Pars& request, const RunLog& log) {
  Progress progress(request, log);
  for (int z = 0; z < request.dimZ; ++z) progress.atSlice(z);
}

}  // namespace tav
