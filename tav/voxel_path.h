// The seam behind which the measures of the voxels are computed. The run reads the slices and
// owns the stores; a path turns consecutive voxels into measures.
//
// Several references may share one pass over the voxels. Each has its own stream of random numbers,
// so that its results do not depend on the others.
//
// Every path gives the same results, up to a documented tolerance, the same counters and status,
// and draws the same random numbers: from the reference's stream, in voxel order, for every voxel
// that is not skipped, for each set, for each of its intervals, nullDraws numbers in a row. A path
// may draw ahead for the voxels of one call, but not across calls.
#ifndef TAVMAP_TAV_VOXEL_PATH_H
#define TAVMAP_TAV_VOXEL_PATH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <span>
#include <vector>

#include "simo/lag_pair_form.h"
#include "simo/random_stream.h"
#include "tav/raw_maps.h"
#include "tav/run_observer.h"
#include "tav/tav_pars.h"

namespace tav {

// One distinct target file of a condition.
struct VoxelFile {
  bool isFloat;
  int nrOfVolumes;
};

// One interval set of a condition. The matrices outlive the job.
struct VoxelSet {
  int file;                               // index into VoxelJob::files
  const simo::Matrix<float>* reference;   // one row; column = volume, from 1
  const simo::Matrix<float>* surrogates;  // one row per surrogate, the same columns
  std::span<const TAV_intv> intervals;    // valid: longer than the order, inside file and reference
};

// What stays the same for all voxels of one reference and condition.
struct VoxelJob {
  std::vector<VoxelFile> files;
  std::vector<VoxelSet> sets;
  int order = 1;
  std::uint16_t inclusionThreshold = 0;
  int nrOfSurrogates = 0;
  int nullDraws = 1;
  simo::LagPairForm lagPairForm = simo::LagPairForm::kWritten;
  simo::RandomStream* random = nullptr;  // of the surrogates; outlives the job
};

// Time courses of consecutive voxels in one file, voxel after voxel. One pointer is null.
struct VoxelData {
  const float* floats;
  const std::uint16_t* shorts;
};

// Where the results of consecutive voxels and one reference go. All values of all voxels are written.
struct VoxelResults {
  std::array<float*, kNrOfMeasures> measures;
  std::array<float*, kNrOfMeasures> nullMeasures;  // of the first draw
  VoxelStatus* status;                             // every status but kNotFinite
  FurtherNulls* furtherNulls;                      // null when nullDraws is 1
  VoxelCounts* counts;                             // added to
};

class VoxelPath {
 public:
  virtual ~VoxelPath() = default;
  // The name by which TAVMAP_KERNEL forces this path.
  [[nodiscard]] virtual const char* name() const = 0;
  // Prepares everything that depends on references and surrogates alone, one job per reference. The
  // jobs differ in nothing but references, surrogates and streams. Draws nothing.
  virtual void begin(std::span<const VoxelJob> jobs) = 0;
  // Computes `nrOfVoxels` voxels; `data` has one entry per file of the jobs, `results` one per job.
  virtual void compute(std::size_t nrOfVoxels, std::span<const VoxelData> data,
                       std::span<const VoxelResults> results) = 0;
};

// The path that this run uses: the one that the environment variable TAVMAP_KERNEL names
// (reference, scalar, baseline, avx2 or avx512), else the fastest for this machine. Null, with the
// reason in `errors`, when the variable names a path that this program or this CPU does not have:
// a run that was to be forced never takes another path silently.
[[nodiscard]] std::unique_ptr<VoxelPath> makeVoxelPath(std::ostream& errors);

}  // namespace tav

#endif
