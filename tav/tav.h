// The engine: turns one finished request into maps and logs in a store.
#ifndef TAVMAP_TAV_TAV_H
#define TAVMAP_TAV_TAV_H

#include <cstdint>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "simo/random_stream.h"
#include "simo/smatrix.h"
#include "tav/memory_store.h"
#include "tav/raw_result.h"
#include "tav/run_log.h"
#include "tav/run_options.h"
#include "tav/tav_pars.h"
#include "tav/voxel_passes.h"
#include "tav/voxel_path.h"
#include "tav/vtc_cache.h"

namespace tav {

// One run, on the caller's thread. Several may be under way in a process, on threads of their own or step
// by step on one: each has its own random numbers, files and memory, and results do not depend on the
// others. A request belongs to one run at a time, since the run fills its grid and file pointers.
//
// computeTAVs() is the entry. Its steps are public too, in their order of use; each returns a
// Status (1: success) and writes the reason of a failure to `errors`. Exhausted memory is an
// exception; computeTAVs() cleans up as it passes.
class Computer {
 public:
  // `observer` and `store` must outlive the computer. No observer: nobody listens. No store: the maps
  // are in memory until the next reference, for an observer to look at, and nothing is saved.
  explicit Computer(const RunOptions& options = {}, RunObserver* observer = nullptr,
                    MapStore* store = nullptr);
  Computer(const Computer&) = delete;
  Computer& operator=(const Computer&) = delete;

  // Stores that runs on one grid take in turn, instead of making and releasing their own; they outlive the
  // computer. One run at a time.
  void reuse(RawResult& stores) { kept_ = &stores; }

  // Computes and saves every reference and condition of the request. Always ends with CleanUp().
  [[nodiscard]] int computeTAVs(const TAV_Pars& request, std::ostream& errors);

  // Fills the request's grid, opens its files, fetches its time courses and makes the stores.
  [[nodiscard]] int Init(const TAV_Pars& request, std::ostream& errors);
  [[nodiscard]] int openVTCFiles(const TAV_Pars& request, std::ostream& errors);
  [[nodiscard]] int prefetchVOITCs(const TAV_Pars& request, std::ostream& errors);
  [[nodiscard]] int fetchVOITC(const TAV_Pars& request, const TAV_VOI_Pars& voi, const TAV_VTC_intv_set& set,
                               std::ostream& errors);
  // The first entry with these names, or null.
  [[nodiscard]] VtcFile* getOpenVtc(const std::string& name) const;
  [[nodiscard]] VoiTc* getFetchedVoiTc(const std::string& voiName, const std::string& vtcName) const;

  // Fits every reference course and simulates its surrogates.
  [[nodiscard]] int simSurrogateVOITCs(const TAV_Pars& request, std::ostringstream& log,
                                       std::ostream& errors);

  void logGlobalParameters(const TAV_Pars& request, std::ostream& log) const;

  // Replaces the store's map set by one with a map per condition and map type.
  [[nodiscard]] int createVOIResultMAP(const TAV_VOI_Pars& voi, const TAV_Pars& request,
                                       std::ostream& errors);
  // Fills the raw map stores. References that follow in the request may be computed along, so that
  // their turn takes no time; the results are the same.
  [[nodiscard]] int compVOIConditionTAVs(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond,
                                         const TAV_Pars& request, std::ostringstream& log,
                                         std::ostream& errors);
  // Turns the raw map stores into the condition's maps and thresholds in the store.
  [[nodiscard]] int transferConditionResults(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond,
                                             int condIndex, const TAV_Pars& request, std::ostream& errors);
  // Has the store save the map set and the log. Never fails for the caller: a log that cannot be saved
  // is a warning to the observer.
  [[nodiscard]] int saveVOIResultMAP(const TAV_VOI_Pars& voi, const TAV_Pars& request,
                                     std::ostringstream& log, std::ostream& errors);

  // Releases everything and discards the store's map set; the result is that of the deletion. The
  // request's file pointers dangle afterwards.
  int CleanUp();

  std::vector<std::unique_ptr<VtcFile>> vtcFiles;  // in order of first opening
  std::vector<std::unique_ptr<VoiTc>> voiTcs;      // in order of fetching
  RawResult raw;                                   // of the reference and condition computed last
  std::unique_ptr<rawTAVMaps>& rawMaps1 = raw.observed;
  std::unique_ptr<rawTAVMaps>& rawMaps2 = raw.null;
  simo::RandomStream random;               // of this run
  std::int32_t crdBufCapacity = 0;         // voxels
  std::unique_ptr<std::int32_t[]> crdBuf;  // 3 per voxel

 private:
  int computeVoi(const TAV_VOI_Pars& voi, const TAV_Pars& request, std::ostringstream& log,
                 std::ostream& errors);
  int computeCondition(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, int condIndex,
                       const TAV_Pars& request, std::ostringstream& log, std::ostream& errors);
  void makeStores(const TAV_Pars& request);
  int compareWithWholeMaps(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, const TAV_Pars& request,
                           const std::vector<std::size_t>& leftOut, std::ostream& errors);

  RunOptions options_;
  RunObserver* observer_;
  RunLog runLog_;
  MemoryStore ownStore_;
  MapStore* store_;
  RawResult* kept_ = nullptr;
  std::unique_ptr<VoxelPath> voxelPath_;
  std::unique_ptr<VoxelPasses> passes_;
  ConditionOutcome outcome_;  // of the condition computed last
};

}  // namespace tav

#endif
