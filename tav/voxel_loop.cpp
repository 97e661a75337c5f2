#include "tav/voxel_loop.h"

#include <algorithm>
#include <limits>

#include "tav/log_pane.h"

namespace tav {
namespace {

int fileIndexOf(VtcFile* file, ConditionJob& condition) {
  auto& files = condition.files;
  const auto found = std::find(files.begin(), files.end(), file);
  if (found != files.end()) return static_cast<int>(found - files.begin());
  files.push_back(file);
  condition.job.files.push_back({file->isFloat(), file->header.nrOfVolumes});
  return static_cast<int>(files.size()) - 1;
}

// Prints 0%, 10%, ... 100%, each once; 0% for a single slice.
class Progress {
 public:
  Progress(bool wanted, int nrOfSlices) : wanted_(wanted), nrOfSlices_(nrOfSlices) {}

  void atSlice(int z) {
    const double done = nrOfSlices_ > 1 ? static_cast<double>(z) / (nrOfSlices_ - 1) : 0.0;
    const int percent = static_cast<int>(done * 100.0) / 10 * 10;
    if (!wanted_ || percent == printed_) return;
    logLine<32>("%s\t%d%%...", TAV_PROMPT, percent);
    printed_ = percent;
  }

 private:
  bool wanted_;
  int nrOfSlices_;
  int printed_ = -1;
};

// What all files can hold at once. A piece never reaches into the next slice.
std::size_t voxelsPerPiece(const std::vector<VtcFile*>& files) {
  std::size_t voxels = std::numeric_limits<std::size_t>::max();
  for (const VtcFile* const file : files) voxels = std::min(voxels, file->voxelsPerRead());
  return voxels;
}

bool readPiece(const std::vector<VtcFile*>& files, std::size_t nrOfVoxels, std::vector<VoxelData>& data,
               std::ostream& errors) {
  data.clear();
  for (VtcFile* const file : files) {
    if (!file->readVoxels(nrOfVoxels)) {
      errors << "Could not read data from vtc '" << file->name << "'\n"
             << "The file was corrupted (not of expected size) or made inaccessible";
      return false;
    }
    data.push_back({file->floatSlice.get(), file->shortSlice.get()});
  }
  return true;
}

VoxelResults resultsFrom(std::size_t voxel, const RawStores& stores, std::vector<VoxelStatus>& status) {
  VoxelResults results{{}, {}, status.data() + voxel, stores.furtherNulls};
  for (int measure = 0; measure < kNrOfMeasures; ++measure) {
    results.measures[static_cast<std::size_t>(measure)] = stores.observed.values(measure) + voxel;
    results.nullMeasures[static_cast<std::size_t>(measure)] = stores.null.values(measure) + voxel;
  }
  return results;
}

}  // namespace

ConditionJob makeConditionJob(const TAV_Cond_Pars& cond, const std::vector<const VoiTc*>& references,
                              const TAV_Pars& request, const RunOptions& options) {
  ConditionJob condition;
  VoxelJob& job = condition.job;
  job.order = request.arOrder;
  job.inclusionThreshold = request.firstTpInclThres;
  job.nrOfSurrogates = request.nSurrogateSims;
  job.nullDraws = options.nullDraws;
  job.lagPairForm = options.lagPairForm;
  for (std::size_t i = 0; i < references.size(); ++i) {
    const TAV_VTC_intv_set& set = cond.vtcIntvSets[i];
    const int file = fileIndexOf(set.trgVtc, condition);
    job.sets.push_back({file, &references[i]->tc, &references[i]->surrogates, set.intervals});
  }
  return condition;
}

int runVoxelLoop(const ConditionJob& condition, const TAV_Pars& request, VoxelPath& path,
                 const RawStores& stores, std::vector<VoxelStatus>& status, VoxelCounts& counts,
                 std::ostream& errors) {
  const std::size_t sliceVoxels =
      static_cast<std::size_t>(request.dimX) * static_cast<std::size_t>(request.dimY);
  if (stores.furtherNulls != nullptr) stores.furtherNulls->clear();
  status.assign(stores.observed.nrOfVoxels(), VoxelStatus::kComputed);
  for (VtcFile* const file : condition.files) file->rewind();
  path.begin(condition.job);
  const std::size_t pieceVoxels = std::min(voxelsPerPiece(condition.files), sliceVoxels);
  std::vector<VoxelData> data;
  Progress progress(request.showVerboseProgress, request.dimZ);
  for (int z = 0; z < request.dimZ; ++z) {
    progress.atSlice(z);
    for (std::size_t first = 0; first < sliceVoxels; first += pieceVoxels) {
      const std::size_t count = std::min(pieceVoxels, sliceVoxels - first);
      if (!readPiece(condition.files, count, data, errors)) return kTerminalError;
      const VoxelResults results = resultsFrom(static_cast<std::size_t>(z) * sliceVoxels + first, stores, status);
      path.compute(count, data, results, counts);
    }
  }
  return kSuccess;
}

}  // namespace tav
