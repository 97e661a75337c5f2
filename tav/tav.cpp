#include "tav/tav.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "io/cnvtcfile.h"
#include "tav/condition.h"
#include "tav/parameter_log.h"
#include "tav/result_maps.h"

namespace tav {
namespace {

constexpr std::int32_t kInitialCrdCapacity = 1000;  // voxels
constexpr int kMaxNullDraws = 100;

void computeGrid(const TAV_Pars& request) {
  const std::int32_t resolution = std::max(request.vtcResolution, std::int32_t{1});  // -1: not yet known
  request.dimX = std::max((request.vtcXEnd - request.vtcXStart) / resolution, 0);
  request.dimY = std::max((request.vtcYEnd - request.vtcYStart) / resolution, 0);
  request.dimZ = std::max((request.vtcZEnd - request.vtcZStart) / resolution, 0);
}

// The voxel loop walks all files on the request's grid, so a file with another one must not pass.
int checkGrids(const std::vector<std::unique_ptr<VtcFile>>& files, const TAV_Pars& request,
               std::ostream& errors) {
  const io::GridSize grid = gridOf(request);
  for (const auto& file : files) {
    if (gridOf(file->header) == grid) continue;
    errors << "The bounding box or resolution of vtc '" << file->name << "' is not that of the request";
    return kInvalidParameters;
  }
  return kSuccess;
}

bool isFinite(const rawTAVMaps& maps, std::size_t voxel) {
  return std::isfinite(maps.values(0)[voxel]) && std::isfinite(maps.values(1)[voxel]) &&
         std::isfinite(maps.values(2)[voxel]);
}

void markNotFinite(const rawTAVMaps& maps, std::vector<VoxelStatus>& status) {
  for (std::size_t voxel = 0; voxel < status.size(); ++voxel) {
    if (status[voxel] == VoxelStatus::kComputed && !isFinite(maps, voxel))
      status[voxel] = VoxelStatus::kNotFinite;
  }
}

void startVoi(const TAV_VOI_Pars& voi, bool verbose, const RunLog& runLog, std::ostream& log) {
  if (verbose) runLog.line<128>("%s\n%s VOI: <b>%s</b>", TAV_PROMPT, TAV_PROMPT, voi.name.c_str());
  log << "VOI: " << voi.name << "\n" << std::string(voi.name.size() + 5, '*') << "\n";
}

void startCondition(const TAV_Cond_Pars& cond, bool verbose, const RunLog& runLog, std::ostream& log) {
  if (verbose) runLog.line<512>("%s\n%s\tCondition: <em>%s</em>", TAV_PROMPT, TAV_PROMPT, cond.name.c_str());
  log << "\n\tCondition: " << cond.name << "\n\t" << std::string(cond.name.size() + 11, '-') << "\n";
}

// Cleans up on every way out, exceptions included.
class CleanUpAtEnd {
 public:
  explicit CleanUpAtEnd(Computer& computer) : computer_(computer) {}
  ~CleanUpAtEnd() { computer_.CleanUp(); }
  CleanUpAtEnd(const CleanUpAtEnd&) = delete;
  CleanUpAtEnd& operator=(const CleanUpAtEnd&) = delete;

 private:
  Computer& computer_;
};

}  // namespace

Computer::Computer(const RunOptions& options, RunObserver* observer, MapStore* store)
    : options_(options),
      observer_(observer),
      runLog_(observer),
      store_(store == nullptr ? &ownStore_ : store) {
  options_.nullDraws = std::clamp(options_.nullDraws, 1, kMaxNullDraws);
}

int Computer::computeTAVs(const TAV_Pars& request, std::ostream& errors) {
  const CleanUpAtEnd cleanUp(*this);
  std::ostringstream voiLog;
  warnOfEqualResultNames(request, runLog_);
  int status = Init(request, errors);
  if (status != kSuccess) return status;
  status = simSurrogateVOITCs(request, voiLog, errors);
  if (status != kSuccess) return status;
  if (observer_ != nullptr) observer_->onReferences(voiTcs);
  for (const TAV_VOI_Pars& voi : request.vois) {
    voiLog.str("");
    status = computeVoi(voi, request, voiLog, errors);
    if (status != kSuccess) return status;
    if (observer_ != nullptr) observer_->onVoi(voi);
  }
  return kSuccess;
}

int Computer::computeVoi(const TAV_VOI_Pars& voi, const TAV_Pars& request, std::ostringstream& log,
                         std::ostream& errors) {
  logGlobalParameters(request, log);
  startVoi(voi, request.showVerboseProgress, runLog_, log);
  int status = createVOIResultMAP(voi, request, errors);
  int condIndex = 0;
  for (auto cond = request.conds.begin(); status == kSuccess && cond != request.conds.end(); ++cond) {
    status = computeCondition(voi, *cond, condIndex++, request, log, errors);
  }
  return status == kSuccess ? saveVOIResultMAP(voi, request, log, errors) : status;
}

int Computer::computeCondition(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, int condIndex,
                               const TAV_Pars& request, std::ostringstream& log, std::ostream& errors) {
  startCondition(cond, request.showVerboseProgress, runLog_, log);
  const int status = compVOIConditionTAVs(voi, cond, request, log, errors);
  if (status != kSuccess) return status;
  if (request.showVerboseProgress) {
    runLog_.line<128>("%s\n%s\tComputing maps and thresholds... ", TAV_PROMPT, TAV_PROMPT);
  }
  return transferConditionResults(voi, cond, condIndex, request, errors);
}

int Computer::Init(const TAV_Pars& request, std::ostream& errors) {
  computeGrid(request);
  if (!options_.voiTimeBases.empty() && options_.voiTimeBases.size() != request.vois.size()) {
    errors << "The run has " << options_.voiTimeBases.size() << " time bases for " << request.vois.size()
           << " references; it needs one for each, or none";
    return kInvalidParameters;
  }
  crdBuf = std::make_unique_for_overwrite<std::int32_t[]>(3 * static_cast<std::size_t>(kInitialCrdCapacity));
  crdBufCapacity = kInitialCrdCapacity;
  voxelPath_ = makeVoxelPath(options_.kernel, errors);
  if (voxelPath_ == nullptr) return kInvalidParameters;
  int status = openVTCFiles(request, errors);
  if (status == kSuccess) status = checkGrids(vtcFiles, request, errors);
  if (status == kSuccess) status = prefetchVOITCs(request, errors);
  if (status == kSuccess) makeStores(request);
  return status;
}

void Computer::makeStores(const TAV_Pars& request) {
  const bool fits = kept_ != nullptr && kept_->fits(gridOf(request).voxels(), options_.nullDraws);
  raw = fits ? std::move(*kept_)
             : RawResult(static_cast<unsigned>(request.dimX), static_cast<unsigned>(request.dimY),
                         static_cast<unsigned>(request.dimZ), options_.nullDraws);
  passes_ = std::make_unique<VoxelPasses>(*this, options_, random, runLog_);
}

void Computer::logGlobalParameters(const TAV_Pars& request, std::ostream& log) const {
  writeParameterLog(request, log);
  writeRunOptionsLog(options_, log);
}

int Computer::compVOIConditionTAVs(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond,
                                   const TAV_Pars& request, std::ostringstream& log, std::ostream& errors) {
  outcome_ = {};
  CheckedCondition checked;
  int status = checkCondition(*this, voi, cond, request, log, errors, checked);
  if (status != kSuccess) return status;
  status = passes_->compute(request, voi, cond, *voxelPath_, raw, errors);
  outcome_.status = std::move(raw.status);
  outcome_.counts = raw.counts;
  if (status != kSuccess) return status;
  reportCounts(outcome_.counts, request, runLog_, log);
  if (observer_ != nullptr) markNotFinite(*rawMaps1, outcome_.status);
  outcome_.voi = &voi;
  outcome_.cond = &cond;
  outcome_.request = &request;
  for (const TAV_VTC_intv_set& set : cond.vtcIntvSets)
    outcome_.courses.push_back(getFetchedVoiTc(voi.name, set.srcVtcName));
  outcome_.totalTimePoints = checked.totalTimePoints;
  outcome_.effectiveTimePoints = checked.effectiveTimePoints;
  return kSuccess;
}

}  // namespace tav
