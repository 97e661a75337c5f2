// Which references go through the voxels together, and with which random numbers.
//
// The run asks for one reference and condition after the other. A pass over the voxels costs
// reading and detrending them, whatever the number of references, so the references behind the one
// asked for are computed along with it, as far as memory allows, and their results kept until they
// are asked for. Nothing of this shows in results: each reference draws the numbers that it would
// draw alone.
#ifndef TAVMAP_TAV_VOXEL_PASSES_H
#define TAVMAP_TAV_VOXEL_PASSES_H

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <vector>

#include "tav/raw_result.h"
#include "tav/run_options.h"
#include "tav/tav_pars.h"
#include "tav/voxel_loop.h"
#include "tav/voxel_path.h"

namespace tav {

class Computer;

class VoxelPasses {
 public:
  // All outlive the passes. computer: knows the time courses. random: the run's stream.
  VoxelPasses(const Computer& computer, const RunOptions& options, simo::RandomStream& random,
              const RunLog& log)
      : computer_(computer), options_(options), random_(random), log_(log) {}

  // The stream that a reference starts with, when it does not go on with the run's: for every
  // reference, in the request's order, before the first pass.
  void addStart(const simo::RandomStream& start) { starts_.push_back(start); }

  // Computes one reference under one condition into `result`, which has stores for the grid, or
  // exchanges it for what was computed along with an earlier reference. Both are elements of the
  // request; others are computed alone. Leaves the run's stream behind the draws. Returns a
  // Status.
  [[nodiscard]] int compute(const TAV_Pars& request, const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond,
                            VoxelPath& path, RawResult& result, std::ostream& errors);

 private:
  // A reference that is computed along, with one result per condition so far.
  struct Companion {
    std::size_t voi;
    simo::RandomStream random;
    std::vector<RawResult> results;
  };

  [[nodiscard]] int runLoop(const ConditionJobs& condition, const TAV_Pars& request, VoxelPath& path,
                            std::span<RawResult* const> results, std::ostream& errors);
  [[nodiscard]] bool takeResult(std::size_t voi, std::size_t cond, RawResult& result);
  void startGroup(const TAV_Pars& request, std::size_t voi);
  [[nodiscard]] bool continuesGroup(std::size_t voi, std::size_t cond) const;
  [[nodiscard]] std::size_t nrOfCompanions(const TAV_Pars& request, std::size_t voi) const;
  [[nodiscard]] std::size_t bytesPerReference(const TAV_Pars& request) const;
  [[nodiscard]] bool isFirstDone(const TAV_Pars& request) const;
  [[nodiscard]] std::vector<const VoiTc*> coursesOf(const TAV_VOI_Pars& voi, const TAV_Cond_Pars& cond) const;
  [[nodiscard]] RawResult makeResult(const TAV_Pars& request);
  void noteFirst(const ConditionJobs& condition, const RawResult& result);

  const Computer& computer_;
  const RunOptions& options_;
  simo::RandomStream& random_;
  const RunLog& log_;
  std::vector<simo::RandomStream> starts_;  // per reference, or none
  std::vector<Companion> companions_;       // of the reference computed last
  std::vector<RawResult> spare_;

  // Of the first reference, and so of each: conditions done, their voxels and draws.
  std::size_t condsNoted_ = 0;
  std::uint64_t includedPerVoi_ = 0, drawsPerVoi_ = 0;
};

}  // namespace tav

#endif
