// The seam behind which the measures of the voxels are computed. The run reads the slices and
// owns the stores; a path turns consecutive voxels into measures.
//
// Several references may share one pass over the voxels. Each has its own stream of random numbers,
// so that its results do not depend on the others.
//
// Every path gives the same results, up to a documented tolerance, the same counters and status,
// and draws the same random numbers: from the reference's stream, in voxel order, for every voxel
// that is not skipped, nullDraws numbers in a row; in the written form for each set and each of its
// intervals. A path
// may draw ahead for the voxels of one call, but not across calls.
#ifndef TAVMAP_TAV_VOXEL_PATH_H
#define TAVMAP_TAV_VOXEL_PATH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "simo/random_stream.h"
#include "tav/fit_form.h"
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
  FitForm fitForm = FitForm::kWritten;
  simo::RandomStream* random = nullptr;  // of the surrogates; outlives the job
  // In least squares: draw k of every voxel is surrogate commonFirst + k, and nothing is drawn at
  // random; each draw then is one surrogate against all voxels.
  std::optional<std::uint32_t> commonFirst = std::nullopt;
};

// Surrogates that one voxel meets: nullDraws, in the written form for each interval. As many random
// numbers are drawn for it, in a row, unless they are common to all.
[[nodiscard]] std::size_t drawsPerVoxel(const VoxelJob& job);

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
  // In place of room that is added to furtherNulls: room for those that are not skipped.
  FurtherNulls::Block* furtherRoom = nullptr;
};

class VoxelPath {
 public:
  virtual ~VoxelPath() = default;
  // The name by which TAVMAP_KERNEL forces this path.
  [[nodiscard]] virtual const char* name() const = 0;
  // Prepares everything that depends on references and surrogates alone, one job per reference. The
  // jobs differ in nothing but references, surrogates and streams. Draws nothing.
  virtual void begin(std::span<const VoxelJob> jobs) = 0;
  // A path for another thread, with the jobs of the last begin() but streams of its own, one per job. It
  // shares what begin() prepared, also when this path has begun others since.
  [[nodiscard]] virtual std::unique_ptr<VoxelPath> beside(
      std::span<simo::RandomStream* const> streams) const = 0;
  // Computes `nrOfVoxels` voxels; `data` has one entry per file of the jobs, `results` one per job.
  virtual void compute(std::size_t nrOfVoxels, std::span<const VoxelData> data,
                       std::span<const VoxelResults> results) = 0;
};

// The path with this name (reference, scalar, baseline, avx2 or avx512); without a name the one that
// the environment variable TAVMAP_KERNEL names, else the fastest for this machine. Null, with the
// reason in `errors`, for a path that this program or this CPU does not have: a run that was to be
// forced never takes another path silently.
[[nodiscard]] std::unique_ptr<VoxelPath> makeVoxelPath(const std::string& name, std::ostream& errors);
[[nodiscard]] std::unique_ptr<VoxelPath> makeVoxelPath(std::ostream& errors);

}  // namespace tav

#endif
