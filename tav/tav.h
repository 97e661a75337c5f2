// The engine: turns one finished request into maps in the host's map set and result files.
#ifndef TAVMAP_TAV_TAV_H
#define TAVMAP_TAV_TAV_H

#include <cstdint>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "simo/smatrix.h"
#include "tav/raw_maps.h"
#include "tav/run_observer.h"
#include "tav/run_options.h"
#include "tav/tav_pars.h"
#include "tav/voxel_passes.h"
#include "tav/voxel_path.h"
#include "tav/vtc_cache.h"

namespace tav {

// One run. The host's operations must be bound. Runs on the caller's thread and blocks it;
// progress goes to the host's log pane when the request wants it.
//
// computeTAVs() is the entry. Its steps are public too, in their order of use; each returns a
// Status (1: success) and writes the reason of a failure to `errors`. Exhausted memory is an
// exception; computeTAVs() cleans up as it passes.
class Computer {
 public:
  // `observer` may be null; it must outlive the computer.
  explicit Computer(const RunOptions& options = {}, RunObserver* observer = nullptr);

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

  // Replaces the host's map set by one with a map per condition and map type.
  [[nodiscard]] int createVOIResultMAP(const TAV_VOI_Pars& voi, const TAV_Pars& request,
                                       std::ostream& errors);
  // Fills the raw map stores. References that follow in the request may be computed along, so that
  // their turn takes no time; the results are the same.
  [[nodiscard]] int compVOIConditionTAVs(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond,
                                         const TAV_Pars& request, std::ostringstream& log,
                                         std::ostream& errors);
  // Turns the raw map stores into the condition's maps and thresholds in the host.
  [[nodiscard]] int transferConditionResults(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond,
                                             int condIndex, const TAV_Pars& request, std::ostream& errors);
  // Has the host save the map set and writes the log beside it. Never fails for the caller: a log
  // that cannot be written is a warning in the log pane.
  [[nodiscard]] int saveVOIResultMAP(const TAV_VOI_Pars& voi, const TAV_Pars& request,
                                     std::ostringstream& log, std::ostream& errors);

  // Releases everything and deletes the host's map set; the result is that of the deletion. The
  // request's file pointers dangle afterwards.
  int CleanUp();

  std::vector<std::unique_ptr<VtcFile>> vtcFiles;  // in order of first opening
  std::vector<std::unique_ptr<VoiTc>> voiTcs;      // in order of fetching
  std::unique_ptr<rawTAVMaps> rawMaps1;            // from the true reference
  std::unique_ptr<rawTAVMaps> rawMaps2;            // from a drawn surrogate
  std::unique_ptr<FurtherNulls> furtherNulls;      // null unless several surrogates are drawn
  std::unique_ptr<simo::FosAvg<float>> fosAvg1;    // of the surrogate models
  std::unique_ptr<simo::FosOrth<float>> fosOrth1a;
  std::int32_t crdBufCapacity = 0;         // voxels
  std::unique_ptr<std::int32_t[]> crdBuf;  // 3 per voxel

 private:
  int computeVoi(const TAV_VOI_Pars& voi, const TAV_Pars& request, std::ostringstream& log,
                 std::ostream& errors);
  int computeCondition(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, int condIndex,
                       const TAV_Pars& request, std::ostringstream& log, std::ostream& errors);
  void makeStores(const TAV_Pars& request);
  int computeRawMaps(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond, const TAV_Pars& request,
                     std::ostream& errors);

  RunOptions options_;
  RunObserver* observer_;
  std::unique_ptr<VoxelPath> voxelPath_;
  std::unique_ptr<VoxelPasses> passes_;
  ConditionOutcome outcome_;  // of the condition computed last
};

}  // namespace tav

#endif
